// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/gain.h"

#include <cmath>

namespace audio
{

namespace
{

constexpr int rampsPerSecond = 200;

}

Gain::Gain(std::shared_ptr<const Levels> levels, int rate) :
    levels_(std::move(levels)), rampFrames_(rate / rampsPerSecond), aim_(levels_->get()),
    now_(factorsOf(aim_))
{
}

Gain::Factors Gain::factorsOf(Levels::Pair levels)
{
    return {static_cast<float>(levels.left) / 100, static_cast<float>(levels.right) / 100};
}

void Gain::aimAt(Levels::Pair levels)
{
    aim_ = levels;
    framesToGo_ = rampFrames_;
    const Factors there = factorsOf(levels);
    for (std::size_t channel = 0; channel < steps_.size(); ++channel)
        steps_[channel] = (there[channel] - now_[channel]) / static_cast<float>(rampFrames_ + 1);
}

void Gain::step()
{
    if (framesToGo_ == 0) {
        now_ = factorsOf(aim_);
        return;
    }
    --framesToGo_;
    for (std::size_t channel = 0; channel < steps_.size(); ++channel)
        now_[channel] += steps_[channel];
}

void Gain::apply(std::int16_t* samples, std::size_t frames)
{
    if (const auto levels = levels_->get(); levels != aim_)
        aimAt(levels);
    if (framesToGo_ == 0 && now_ == Factors{1, 1})
        return;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        step();
        for (const float factor : now_) {
            *samples = static_cast<std::int16_t>(std::lrint(static_cast<float>(*samples) * factor));
            ++samples;
        }
    }
}

}
