// SPDX-License-Identifier: GPL-3.0-or-later
// Takes a stream's sound at the pace at which it would be heard, where no sound server does.
#pragma once

#include "engines/audio/stream.h"

#include <memory>

namespace audio
{

class SilentClock
{
public:
    explicit SilentClock(std::shared_ptr<Stream> stream) : stream_(std::move(stream)) {}

    void advance(Stream::Clock::time_point now);
    Stream::Clock::time_point nextAdvance(Stream::Clock::time_point now) const;

private:
    std::shared_ptr<Stream> stream_;
    Stream::Clock::time_point began_ = Stream::Clock::now();
    std::int64_t taken_ = 0; // frames
};

}
