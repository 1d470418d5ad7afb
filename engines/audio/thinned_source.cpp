// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/thinned_source.h"

#include <vector>

namespace audio
{

namespace
{

constexpr int highestRate = 192000;

class ThinnedSource final : public PcmSource
{
public:
    ThinnedSource(std::shared_ptr<PcmSource> source, int factor) : source_(std::move(source)), factor_(factor)
    {
    }

    std::size_t read(std::span<std::int16_t> samples) override;
    int rate() const override { return source_->rate() / factor_; }
    void seek(std::int64_t frame) override;

private:
    std::int16_t average(std::size_t first) const;

    std::shared_ptr<PcmSource> source_;
    int factor_;
    std::vector<std::int16_t> read_; // the frames that are not part of a whole one yet stay at its start
    std::size_t kept_ = 0;           // samples
};

std::int16_t ThinnedSource::average(std::size_t first) const
{
    int sum = 0;
    for (int step = 0; step < factor_; ++step)
        sum += read_[first + static_cast<std::size_t>(step) * 2];
    return static_cast<std::int16_t>(sum / factor_);
}

std::size_t ThinnedSource::read(std::span<std::int16_t> samples)
{
    const std::size_t group = static_cast<std::size_t>(factor_) * 2;
    std::size_t groups = 0;
    while (groups == 0) {
        read_.resize(samples.size() * static_cast<std::size_t>(factor_));
        const std::size_t frames = source_->read(std::span(read_).subspan(kept_));
        if (frames == 0)
            return 0;
        kept_ += frames * 2;
        groups = kept_ / group;
    }
    for (std::size_t sample = 0; sample < groups * 2; ++sample)
        samples[sample] = average(sample / 2 * group + sample % 2);
    read_.erase(read_.begin(), read_.begin() + static_cast<std::ptrdiff_t>(groups * group));
    kept_ -= groups * group;
    return groups;
}

void ThinnedSource::seek(std::int64_t frame)
{
    kept_ = 0;
    source_->seek(frame * factor_);
}

}

OpenedSound playable(OpenedSound sound)
{
    const int factor = (sound.timeline.rate() - 1) / highestRate + 1;
    if (factor < 2)
        return sound;
    sound.timeline = Timeline({{sound.timeline.frames() / factor, sound.timeline.rate() / factor}});
    sound.source = std::make_shared<ThinnedSource>(std::move(sound.source), factor);
    return sound;
}

}
