// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/silent_clock.h"

#include <algorithm>
#include <array>

namespace audio
{

using namespace std::chrono_literals;

namespace
{

constexpr auto pace = 20ms;

}

void SilentClock::advance(Stream::Clock::time_point now)
{
    const std::chrono::duration<double> time = now - began_;
    const auto due = static_cast<std::int64_t>(time.count() * stream_->rate());
    std::array<std::int16_t, 2048> unheard;
    while (taken_ < due) {
        const auto frames = std::min<std::int64_t>(due - taken_, unheard.size() / 2);
        stream_->write(unheard.data(), static_cast<std::size_t>(frames));
        taken_ += frames;
    }
    stream_->heard(taken_, now);
}

Stream::Clock::time_point SilentClock::nextAdvance(Stream::Clock::time_point now) const
{
    return std::min(now + pace, stream_->nextLook(now));
}

}
