// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/frame_decoder.h"

#include "platform/failure.h"

#include <algorithm>
#include <mpg123.h>

namespace codec
{

namespace
{

// How much damage is skipped in one place before the file counts as ended, bytes.
constexpr long resyncLimit = 64 * 1024;

struct Deleter {
    void operator()(mpg123_handle* handle) const { mpg123_delete(handle); }
};

ssize_t readSource(void* source, void* bytes, std::size_t count)
{
    return static_cast<DecoderInput*>(source)->read(bytes, count);
}

off_t seekSource(void* source, off_t offset, int whence)
{
    return static_cast<DecoderInput*>(source)->seek(offset, whence);
}

void require(int result)
{
    if (result != MPG123_OK)
        throw Failure{Trouble::deviceInputOutput, mpg123_plain_strerror(result)};
}

void allowRates(mpg123_handle* handle)
{
    const long* rates = nullptr;
    std::size_t count = 0;
    mpg123_rates(&rates, &count);
    require(mpg123_format_none(handle));
    for (std::size_t i = 0; i < count; ++i)
        require(mpg123_format(handle, rates[i], MPG123_MONO | MPG123_STEREO, MPG123_ENC_SIGNED_16));
}

}

std::int64_t MemorySource::read(void* bytes, std::size_t count)
{
    count = std::min(count, bytes_.size() - at_);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), count, static_cast<std::uint8_t*>(bytes));
    at_ += count;
    return static_cast<std::int64_t>(count);
}

struct FrameDecoder::Parts {
    std::unique_ptr<mpg123_handle, Deleter> handle;
    SoundFormat format;

    void prepareFile(bool isShort)
    {
        require(mpg123_param(handle.get(), MPG123_RESYNC_LIMIT, resyncLimit, 0));
        if (isShort)
            require(mpg123_param(handle.get(), MPG123_ADD_FLAGS, MPG123_NO_READAHEAD, 0));
    }

    void prepareFrames()
    {
        require(mpg123_param(handle.get(), MPG123_REMOVE_FLAGS, MPG123_GAPLESS, 0));
        require(mpg123_param(handle.get(), MPG123_ADD_FLAGS, MPG123_IGNORE_INFOFRAME, 0));
    }

    // From now on this format alone: later parts of another one are converted to it.
    void keepFormat()
    {
        if (format.rate != 0)
            return;
        long rate = 0;
        int encoding = 0;
        require(mpg123_getformat(handle.get(), &rate, &format.channels, &encoding));
        format.rate = static_cast<int>(rate);
        require(mpg123_format_none(handle.get()));
        require(mpg123_format(handle.get(), rate, format.channels, encoding));
    }
};

FrameDecoder::FrameDecoder(DecoderInput& source, Kind kind) : parts_(std::make_unique<Parts>())
{
    mpg123_init();
    int error = MPG123_OK;
    parts_->handle.reset(mpg123_new(nullptr, &error));
    require(error);
    auto* handle = parts_->handle.get();
    require(mpg123_param(handle, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_SKIP_ID3V2, 0));
    if (kind == Kind::Frames)
        parts_->prepareFrames();
    else
        parts_->prepareFile(kind == Kind::ShortFile);
    allowRates(handle);
    require(mpg123_replace_reader_handle(handle, readSource, seekSource, nullptr));
    require(mpg123_open_handle(handle, &source));
}

FrameDecoder::~FrameDecoder() = default;

bool FrameDecoder::next(std::span<const std::int16_t>& samples)
{
    for (;;) {
        off_t number = 0;
        unsigned char* bytes = nullptr;
        std::size_t count = 0;
        const int result = mpg123_decode_frame(parts_->handle.get(), &number, &bytes, &count);
        if (result == MPG123_NEW_FORMAT) {
            parts_->keepFormat();
            continue;
        }
        if (result != MPG123_OK)
            return false;
        samples = {reinterpret_cast<const std::int16_t*>(bytes), count / sizeof(std::int16_t)};
        return true;
    }
}

SoundFormat FrameDecoder::format() const { return parts_->format; }

}
