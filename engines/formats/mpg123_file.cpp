// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mpg123_file.h"

#include <algorithm>
#include <mpg123.h>
#include <sys/types.h>

namespace formats
{

namespace
{

// How much damage is skipped in one place before the file counts as ended, bytes.
constexpr long resyncLimit = 64 * 1024;

// A frame can draw on so many before it: after a seek they must be decoded first, or its samples are not
// exact.
constexpr long framesBeforeSeek = 10;

void configure(mpg123_handle* handle, Mpg123File::Options options)
{
    mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_SKIP_ID3V2, 0);
    mpg123_param(handle, options.gapless ? MPG123_ADD_FLAGS : MPG123_REMOVE_FLAGS, MPG123_GAPLESS, 0);
    mpg123_param(handle, MPG123_RESYNC_LIMIT, resyncLimit, 0);
    mpg123_param(handle, MPG123_PREFRAMES, framesBeforeSeek, 0);
    mpg123_format_none(handle);
    if (options.forceStereo)
        mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_FORCE_STEREO, 0);
    mpg123_format2(handle, 0, options.forceStereo ? MPG123_STEREO : MPG123_MONO | MPG123_STEREO,
                   MPG123_ENC_SIGNED_16);
}

}

// The part of the file between the tags, as the library reads it.
struct Mpg123File::Reader {
    files::FileWindow window;
    std::int64_t begin;
    std::int64_t end;
    std::int64_t at = begin;

    static ssize_t read(void* self, void* into, size_t size)
    {
        auto& reader = *static_cast<Reader*>(self);
        const std::int64_t left = std::max<std::int64_t>(reader.end - reader.at, 0);
        const auto wanted = std::min<std::int64_t>(static_cast<std::int64_t>(size), left);
        const auto got = reader.window.read(into, static_cast<std::size_t>(wanted), reader.at);
        reader.at += got;
        return got;
    }

    static off_t seek(void* self, off_t offset, int whence)
    {
        auto& reader = *static_cast<Reader*>(self);
        const std::int64_t from =
            whence == SEEK_SET ? reader.begin : (whence == SEEK_END ? reader.end : reader.at);
        if (from + offset < reader.begin)
            return -1;
        reader.at = from + offset;
        return reader.at - reader.begin;
    }
};

Mpg123File::Mpg123File(std::shared_ptr<const files::InputFile> file, const Mp3Facts& facts, Options options) :
    reader_(new Reader{files::FileWindow(std::move(file)), facts.place.begin, facts.place.end})
{
    static const int ready = mpg123_init();
    if (ready != MPG123_OK)
        return;
    handle_ = mpg123_new(nullptr, nullptr);
    if (handle_ == nullptr)
        return;
    configure(handle_, options);
    if (facts.place.isShort)
        mpg123_param(handle_, MPG123_ADD_FLAGS, MPG123_NO_READAHEAD, 0);
    mpg123_replace_reader_handle(handle_, Reader::read, Reader::seek, nullptr);
    isOpen_ = mpg123_open_handle(handle_, reader_.get()) == MPG123_OK && learnFormat();
    rate_ = nextRate_;
}

Mpg123File::~Mpg123File() { mpg123_delete(handle_); }

bool Mpg123File::learnFormat()
{
    long rate = 0;
    int encoding = 0;
    if (mpg123_getformat(handle_, &rate, &channels_, &encoding) != MPG123_OK)
        return false;
    nextRate_ = static_cast<int>(rate);
    return true;
}

std::size_t Mpg123File::read(std::span<std::int16_t> samples)
{
    std::size_t bytes = 0;
    int result = MPG123_NEW_FORMAT;
    while (bytes == 0 && nextRate_ == rate_ && result == MPG123_NEW_FORMAT) {
        result = mpg123_read(handle_, samples.data(), samples.size_bytes(), &bytes);
        if (result == MPG123_NEW_FORMAT)
            learnFormat();
    }
    if (bytes == 0)
        rate_ = nextRate_;
    return bytes / sizeof(std::int16_t);
}

bool Mpg123File::seek(std::int64_t sample) { return mpg123_seek(handle_, sample, SEEK_SET) >= 0; }

bool Mpg123File::seekFrame(std::int64_t frame, int rate)
{
    rate_ = nextRate_ = rate;
    return mpg123_seek_frame(handle_, frame, SEEK_SET) >= 0;
}

std::int64_t Mpg123File::countSamples()
{
    return mpg123_scan(handle_) == MPG123_OK ? static_cast<std::int64_t>(mpg123_length(handle_)) : 0;
}

}
