// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_file.h"

#include "engines/formats/wav_layout.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sndfile.h>

namespace formats
{

namespace
{

constexpr int wavTypes[] = {SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64};

struct CloseSound {
    void operator()(SNDFILE* sound) const { sf_close(sound); }
};

sf_count_t writeNothing(const void*, sf_count_t, void*) { return 0; }

}

struct WavFile::Parts {
    explicit Parts(std::shared_ptr<const files::InputFile> from) :
        layout(wavLayout(from)), size(from->size()), window(std::move(from))
    {
    }

    std::optional<WavLayout> layout;
    std::int64_t size; // bytes, when it was opened
    files::FileWindow window;
    std::int64_t at = 0; // byte
    SF_INFO info{};
    std::unique_ptr<SNDFILE, CloseSound> sound;
    std::int64_t frame = 0; // that is read next
    Text reason = "This is not a WAV file.";

    void open();
    void passTo(std::int64_t frame);
    void fillSize(char* bytes, std::int64_t count) const;
    template <typename Sample>
    std::size_t read(std::span<Sample> samples, sf_count_t (*readFrames)(SNDFILE*, Sample*, sf_count_t));
    int coding() const { return info.format & SF_FORMAT_SUBMASK; }

    static sf_count_t length(void* self) { return static_cast<Parts*>(self)->size; }
    static sf_count_t tell(void* self) { return static_cast<Parts*>(self)->at; }
    static sf_count_t seekByte(sf_count_t offset, int whence, void* self);
    static sf_count_t readBytes(void* into, sf_count_t count, void* self);
};

// The library takes many more kinds of file, and has to read far into some to say what they are.
void WavFile::Parts::open()
{
    SF_VIRTUAL_IO io{length, seekByte, readBytes, writeNothing, tell};
    at = frame = 0;
    info = {};
    sound.reset(layout ? sf_open_virtual(&io, SFM_READ, &info, this) : nullptr);
    if (!sound && layout)
        reason = sf_strerror(nullptr);
    const bool isWav = std::ranges::count(wavTypes, info.format & SF_FORMAT_TYPEMASK) > 0;
    if (!isWav || info.samplerate <= 0 || info.channels <= 0)
        sound.reset();
}

sf_count_t WavFile::Parts::seekByte(sf_count_t offset, int whence, void* self)
{
    auto& parts = *static_cast<Parts*>(self);
    const std::int64_t from = whence == SEEK_SET ? 0 : (whence == SEEK_END ? parts.size : parts.at);
    parts.at = std::max<std::int64_t>(from + offset, 0);
    return parts.at;
}

sf_count_t WavFile::Parts::readBytes(void* into, sf_count_t count, void* self)
{
    auto& parts = *static_cast<Parts*>(self);
    const auto got = parts.window.read(into, static_cast<std::size_t>(count), parts.at);
    parts.fillSize(static_cast<char*>(into), got);
    parts.at += got;
    return got;
}

void WavFile::Parts::fillSize(char* bytes, std::int64_t count) const
{
    if (!layout->isUnfilled)
        return;
    for (int i = 0; i < layout->sizeBytes; ++i)
        if (const auto to = layout->sizeAt + i; to >= at && to < at + count)
            bytes[to - at] = static_cast<char>(layout->sizeByte(i));
}

template <typename Sample>
std::size_t WavFile::Parts::read(std::span<Sample> samples,
                                 sf_count_t (*readFrames)(SNDFILE*, Sample*, sf_count_t))
{
    if (!sound)
        return 0;
    const auto wanted = std::ssize(samples) / info.channels;
    const auto got = std::max<sf_count_t>(readFrames(sound.get(), samples.data(), wanted), 0);
    frame += got;
    return static_cast<std::size_t>(got);
}

void WavFile::Parts::passTo(std::int64_t target)
{
    std::array<float, 4096> passed;
    const auto inPiece = static_cast<std::int64_t>(passed.size()) / info.channels;
    while (sound && frame < target) {
        const auto got = sf_readf_float(sound.get(), passed.data(), std::min(inPiece, target - frame));
        if (got <= 0)
            return;
        frame += got;
    }
}

WavFile::WavFile(std::shared_ptr<const files::InputFile> file) :
    parts_(std::make_unique<Parts>(std::move(file)))
{
    parts_->open();
}

WavFile::~WavFile() = default;

bool WavFile::isOpen() const { return parts_->sound != nullptr; }

const Text& WavFile::reason() const { return parts_->reason; }

int WavFile::rate() const { return parts_->info.samplerate; }

int WavFile::channels() const { return parts_->info.channels; }

std::int64_t WavFile::frames() const { return parts_->info.frames; }

std::int32_t WavFile::bitsPerSecond() const
{
    const double seconds = static_cast<double>(frames()) / rate();
    const int stated = sf_current_byterate(parts_->sound.get());
    const double bytes = stated > 0 || seconds == 0 ? stated : static_cast<double>(parts_->size) / seconds;
    return static_cast<std::int32_t>(std::clamp(bytes * 8, 0.0, 2147483647.0));
}

bool WavFile::isPcm16() const { return parts_->coding() == SF_FORMAT_PCM_16; }

bool WavFile::isFloat() const
{
    return parts_->coding() == SF_FORMAT_FLOAT || parts_->coding() == SF_FORMAT_DOUBLE;
}

StereoMix WavFile::stereoMix() const { return StereoMix(channels(), parts_->layout->places); }

bool WavFile::seek(std::int64_t frame)
{
    if (frame == parts_->frame)
        return true;
    if (sf_seek(parts_->sound.get(), frame, SEEK_SET) == frame) {
        parts_->frame = frame;
        return true;
    }
    if (frame < parts_->frame || parts_->info.seekable)
        parts_->open();
    parts_->passTo(frame);
    return isOpen() && parts_->frame == frame;
}

std::size_t WavFile::read(std::span<std::int16_t> samples) { return parts_->read(samples, sf_readf_short); }

std::size_t WavFile::read(std::span<float> samples) { return parts_->read(samples, sf_readf_float); }

bool WavFile::hasFailed() const { return parts_->window.hasFailed(); }

}
