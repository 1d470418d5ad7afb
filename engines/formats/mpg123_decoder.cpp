// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mpg123_decoder.h"

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

mpg123_handle* newHandle()
{
    [[maybe_unused]] static const int ready = mpg123_init();
    return mpg123_new(nullptr, nullptr);
}

void configure(mpg123_handle* handle, const Mpg123Decoder::Options& options)
{
    const bool gapless = options.gapless && !options.isCut;
    mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_SKIP_ID3V2, 0);
    mpg123_param(handle, gapless ? MPG123_ADD_FLAGS : MPG123_REMOVE_FLAGS, MPG123_GAPLESS, 0);
    mpg123_param(handle, MPG123_RESYNC_LIMIT, resyncLimit, 0);
    if (options.isShort)
        mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_NO_READAHEAD, 0);
    if (options.isCut)
        mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_IGNORE_INFOFRAME, 0);
}

}

// What the library reads, its places counted from the first byte of the front.
struct Mpg123Decoder::Reader {
    FrameInput input;
    bool isSeekable;
    files::FileWindow window{input.file};
    std::int64_t at = 0;

    std::int64_t frontBytes() const { return std::ssize(input.front); }
    std::int64_t inFile() const { return input.begin + at - frontBytes(); }
    std::int64_t end() const { return frontBytes() + input.end - input.begin; }

    std::int64_t give(void* into, std::int64_t wanted)
    {
        if (at >= frontBytes())
            return window.read(into, static_cast<std::size_t>(wanted), inFile());
        const auto given = std::min(wanted, frontBytes() - at);
        std::copy_n(input.front.begin() + at, given, static_cast<std::uint8_t*>(into));
        return given;
    }

    static ssize_t read(void* self, void* into, size_t size)
    {
        auto& reader = *static_cast<Reader*>(self);
        const auto left = std::max<std::int64_t>(reader.end() - reader.at, 0);
        const auto given = reader.give(into, std::min(static_cast<std::int64_t>(size), left));
        reader.at += given;
        return given;
    }

    static off_t seek(void* self, off_t offset, int whence)
    {
        auto& reader = *static_cast<Reader*>(self);
        const std::int64_t from = whence == SEEK_SET ? 0 : whence == SEEK_END ? reader.end() : reader.at;
        if (!reader.isSeekable || from + offset < 0)
            return -1;
        return reader.at = from + offset;
    }
};

Mpg123Decoder::Mpg123Decoder(FrameInput input, Options options) :
    reader_(new Reader{std::move(input), !options.isCut}), handle_(newHandle())
{
    configure(handle_, options);
    allow(0, options.channels);
    mpg123_replace_reader_handle(handle_, Reader::read, Reader::seek, nullptr);
    isOpen_ = mpg123_open_handle(handle_, reader_.get()) == MPG123_OK && learnRate();
    rate_ = nextRate_;
    if (options.keepsRate)
        allow(rate_, options.channels);
}

Mpg123Decoder::~Mpg123Decoder() { mpg123_delete(handle_); }

// A rate of 0 is every rate.
void Mpg123Decoder::allow(int rate, int channels)
{
    mpg123_format_none(handle_);
    mpg123_format2(handle_, rate, channels == 1 ? MPG123_MONO : MPG123_STEREO, MPG123_ENC_SIGNED_16);
}

bool Mpg123Decoder::learnRate()
{
    long rate = 0;
    int channels = 0;
    int encoding = 0;
    if (mpg123_getformat(handle_, &rate, &channels, &encoding) != MPG123_OK)
        return false;
    nextRate_ = static_cast<int>(rate);
    return true;
}

bool Mpg123Decoder::hasFailed() const { return reader_->window.hasFailed(); }

std::int64_t Mpg123Decoder::position() const { return reader_->inFile(); }

bool Mpg123Decoder::next(std::span<const std::int16_t>& samples)
{
    off_t number = 0;
    unsigned char* bytes = nullptr;
    std::size_t count = 0;
    int result = MPG123_NEW_FORMAT;
    while (result == MPG123_NEW_FORMAT)
        result = mpg123_decode_frame(handle_, &number, &bytes, &count);
    samples = {reinterpret_cast<const std::int16_t*>(bytes), count / sizeof(std::int16_t)};
    return result == MPG123_OK;
}

std::size_t Mpg123Decoder::read(std::span<std::int16_t> samples)
{
    std::size_t bytes = 0;
    int result = MPG123_NEW_FORMAT;
    while (bytes == 0 && nextRate_ == rate_ && result == MPG123_NEW_FORMAT) {
        result = mpg123_read(handle_, samples.data(), samples.size_bytes(), &bytes);
        if (result == MPG123_NEW_FORMAT)
            learnRate();
    }
    if (bytes == 0)
        rate_ = nextRate_;
    return bytes / sizeof(std::int16_t);
}

void Mpg123Decoder::seek(std::int64_t sample)
{
    mpg123_param(handle_, MPG123_PREFRAMES, framesBeforeSeek, 0);
    mpg123_seek(handle_, sample, SEEK_SET);
}

void Mpg123Decoder::seekFrame(std::int64_t frame, int rate)
{
    rate_ = nextRate_ = rate;
    mpg123_param(handle_, MPG123_PREFRAMES, framesBeforeSeek, 0);
    mpg123_seek_frame(handle_, frame, SEEK_SET);
}

std::int64_t Mpg123Decoder::countSamples()
{
    return mpg123_scan(handle_) == MPG123_OK ? static_cast<std::int64_t>(mpg123_length(handle_)) : 0;
}

}
