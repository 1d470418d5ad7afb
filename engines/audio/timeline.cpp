// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/timeline.h"

#include <algorithm>
#include <limits>

namespace audio
{

std::int64_t Timeline::frames() const
{
    std::int64_t sum = 0;
    for (const auto& stretch : stretches_)
        sum += stretch.frames;
    return sum;
}

std::int64_t Timeline::even(std::int64_t frame) const
{
    std::int64_t sum = 0;
    for (const auto& stretch : stretches_) {
        const std::int64_t part = std::min(frame, stretch.frames);
        sum += part * base() / stretch.rate;
        frame -= part;
    }
    return sum;
}

std::int64_t Timeline::frameAtEven(std::int64_t even) const
{
    std::int64_t sum = 0;
    for (const auto& stretch : stretches_) {
        const std::int64_t frames = std::min(even * stretch.rate / base(), stretch.frames);
        sum += frames;
        even -= frames * base() / stretch.rate;
    }
    return sum;
}

std::int32_t Timeline::milliseconds(std::int64_t frame) const
{
    if (stretches_.empty())
        return 0;
    const std::int64_t exact = even(frame) * 1000 / base();
    return static_cast<std::int32_t>(std::min<std::int64_t>(exact, std::numeric_limits<std::int32_t>::max()));
}

std::int64_t Timeline::frameAtMilliseconds(std::int32_t milliseconds) const
{
    // The first frame that `milliseconds` gives this number for.
    return frameAtEven((static_cast<std::int64_t>(std::max(milliseconds, 0)) * rate() + 999) / 1000);
}

}
