// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/opened_sound.h"

#include "engines/formats/wav_file.h"
#include "engines/formats/wav_layout.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace audio
{

namespace
{

// The engine that asks for it counts in frames of MPEG.
constexpr int stepFrames = 1152;

std::int16_t toSample(float value)
{
    const float scaled = std::clamp(value * 32768, -32768.0F, 32767.0F);
    return static_cast<std::int16_t>(std::lrint(scaled));
}

class WavPcm final : public PcmSource
{
public:
    explicit WavPcm(const std::shared_ptr<const files::InputFile>& file) : wav_(file) {}

    const formats::WavFile& wav() const { return wav_; }

    std::size_t read(std::span<std::int16_t> samples) override
    {
        const bool isReady = wav_.channels() == 2 && !wav_.isFloat();
        return isReady ? wav_.read(samples) : readMixed(samples);
    }

    int rate() const override { return rate_; }
    void seek(std::int64_t frame) override { wav_.seek(frame); }

private:
    std::size_t readMixed(std::span<std::int16_t> samples)
    {
        const auto channels = static_cast<std::size_t>(wav_.channels());
        unmixed_.resize(samples.size() / 2 * channels);
        const std::size_t frames = wav_.read(unmixed_);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const auto mixed = mix_(std::span(unmixed_).subspan(frame * channels, channels));
            samples[frame * 2] = toSample(mixed.left);
            samples[frame * 2 + 1] = toSample(mixed.right);
        }
        return frames;
    }

    formats::WavFile wav_;
    int rate_ = wav_.rate();
    formats::StereoMix mix_ = wav_.isOpen() ? wav_.stereoMix() : formats::StereoMix(2);
    std::vector<float> unmixed_;
};

}

std::optional<OpenedSound> openWavSound(const Text& path)
{
    const auto file = files::InputFile::open(path);
    const auto layout = file ? formats::wavLayout(file) : std::nullopt;
    if (!layout)
        return std::nullopt;
    if (layout->coding == formats::WavLayout::mpegLayerThree)
        return openMp3Sound(path);
    auto source = std::make_shared<WavPcm>(file);
    const auto& wav = source->wav();
    if (!wav.isOpen())
        return std::nullopt;
    return OpenedSound{source, Timeline({{wav.frames(), wav.rate()}}), wav.bitsPerSecond(), stepFrames};
}

}
