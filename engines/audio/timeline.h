// SPDX-License-Identifier: GPL-3.0-or-later
// Where the frames of a sound lie in time. A sound has one rate, or, from joined files, stretches of several.
#pragma once

#include <cstdint>
#include <vector>

namespace audio
{

class Timeline
{
public:
    struct Stretch {
        std::int64_t frames;
        int rate; // hertz
    };

    Timeline() = default; // of no length
    explicit Timeline(std::vector<Stretch> stretches) : stretches_(std::move(stretches)) {}

    int rate() const { return stretches_.empty() ? 0 : base(); } // hertz, of the first stretch

    std::int64_t frames() const;

    // A place in frames of the sound, counted as if all of it had the first rate, and back.
    std::int64_t even(std::int64_t frame) const;
    std::int64_t frameAtEven(std::int64_t even) const;

    std::int32_t milliseconds(std::int64_t frame) const;
    std::int64_t frameAtMilliseconds(std::int32_t milliseconds) const;

private:
    int base() const { return stretches_.front().rate; }

    std::vector<Stretch> stretches_;
};

}
