// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_source.h"

#include "engines/formats/wav_file.h"
#include "platform/failure.h"

#include <algorithm>
#include <cmath>

namespace formats
{

namespace
{

constexpr float fullScale = 32768;
constexpr int maxChannels = 64;
constexpr int minRate = 1000;
constexpr int maxRate = 768000;

// No WAV coding packs more. A damaged header may announce hours in a few bytes.
constexpr std::int64_t maxFramesInByte = 8;

Failure notWav(const Text& reason) { return Failure{Trouble::deviceInputOutput, reason}; }

// A float file may hold anything; the encoder must not see what is no number, nor more than full scale.
float limited(float sample)
{
    if (std::abs(sample) <= fullScale)
        return sample;
    return std::isnan(sample) ? 0 : std::copysign(fullScale, sample);
}

}

struct WavSource::Parts {
    explicit Parts(const std::shared_ptr<const files::InputFile>& file) : wav(file) {}

    WavFile wav;
    StereoMix mix{2};
    std::vector<float> interleaved;
    std::int64_t frames = 0;
    std::int64_t at = 0;

    // What libsndfile does not give, though announced, stays silent.
    void fill(std::size_t count)
    {
        interleaved.assign(count * channels(), 0);
        wav.read(interleaved);
        if (wav.hasFailed())
            throw Failure(Trouble::deviceInputOutput);
        for (float& sample : interleaved)
            sample = limited(sample * fullScale);
    }

    void split(SoundBlock& block) const
    {
        for (std::size_t i = 0; i < block.frames(); ++i) {
            const auto frame = std::span(interleaved).subspan(i * channels(), channels());
            const auto stereo = channels() > 2 ? mix(frame) : StereoMix::Frame{frame.front(), frame.back()};
            block.left[i] = stereo.left;
            block.right[i] = stereo.right;
        }
    }

    std::size_t channels() const { return static_cast<std::size_t>(wav.channels()); }
};

WavSource::WavSource(const std::shared_ptr<const files::InputFile>& file) : parts_(new Parts(file))
{
    const auto& wav = parts_->wav;
    if (wav.hasFailed())
        throw Failure(Trouble::deviceInputOutput);
    if (!wav.isOpen())
        throw notWav(wav.reason());
    if (wav.channels() > maxChannels || wav.rate() < minRate || wav.rate() > maxRate)
        throw notWav("This number of channels or samples a second cannot be encoded.");
    parts_->mix = wav.stereoMix();
    parts_->frames = std::min(wav.frames(), file->size() * maxFramesInByte);
}

WavSource::~WavSource() = default;

int WavSource::rate() const { return parts_->wav.rate(); }

int WavSource::channels() const { return std::min(parts_->wav.channels(), 2); }

std::int64_t WavSource::frames() const { return parts_->frames; }

void WavSource::seek(std::int64_t frame)
{
    if (!parts_->wav.seek(frame))
        throw Failure(Trouble::deviceInputOutput);
    parts_->at = frame;
}

void WavSource::read(SoundBlock& block, std::size_t frames)
{
    const std::int64_t left = parts_->frames - parts_->at;
    const auto count =
        static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(frames), left));
    block.left.resize(count);
    block.right.resize(count);
    parts_->fill(count);
    parts_->split(block);
    parts_->at += static_cast<std::int64_t>(count);
}

}
