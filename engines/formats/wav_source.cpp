// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_source.h"

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

WavSource::WavSource(const std::shared_ptr<const files::InputFile>& file) : wav_(file)
{
    if (wav_.hasFailed())
        throw files::brokenOff();
    if (!wav_.isOpen())
        throw notWav(wav_.reason());
    if (wav_.channels() > maxChannels || wav_.rate() < minRate || wav_.rate() > maxRate)
        throw notWav("This number of channels or samples a second cannot be encoded.");
    mix_ = wav_.stereoMix();
    frames_ = std::min(wav_.frames(), file->size() * maxFramesInByte);
}

void WavSource::seek(std::int64_t frame)
{
    if (!wav_.seek(frame))
        throw files::brokenOff();
    at_ = frame;
}

void WavSource::read(SoundBlock& block, std::size_t frames)
{
    const auto count = std::min(frames, static_cast<std::size_t>(frames_ - at_));
    fill(count);
    block.left.resize(count);
    block.right.resize(count);
    split(block);
    at_ += static_cast<std::int64_t>(count);
}

// What libsndfile does not give, though announced, stays silent.
void WavSource::fill(std::size_t count)
{
    interleaved_.assign(count * width(), 0);
    wav_.read(interleaved_);
    if (wav_.hasFailed())
        throw files::brokenOff();
    for (float& sample : interleaved_)
        sample = limited(sample * fullScale);
}

void WavSource::split(SoundBlock& block) const
{
    for (std::size_t i = 0; i < block.frames(); ++i) {
        const auto frame = std::span(interleaved_).subspan(i * width(), width());
        const auto stereo = width() > 2 ? mix_(frame) : StereoMix::StereoFrame{frame.front(), frame.back()};
        block.left[i] = stereo.left;
        block.right[i] = stereo.right;
    }
}

}
