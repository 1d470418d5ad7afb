// Where the frames of a sound lie in time. A sound has one rate, or stretches of several, as joined files
// have.
#pragma once

#include <cstdint>
#include <vector>

class Timeline
{
public:
    struct Stretch {
        std::int64_t frames;
        int rate; // hertz
    };

    Timeline() = default; // of no length
    explicit Timeline(std::vector<Stretch> stretches) : stretches_(std::move(stretches)) {}

    int rate() const; // of the first stretch, in which `even` counts; 0 when there is none

    std::int64_t frames() const;

    // A place in frames of the sound, counted as if all of it had the first rate, and back.
    std::int64_t even(std::int64_t frame) const;
    std::int64_t frameAtEven(std::int64_t even) const;

    std::int32_t milliseconds(std::int64_t frame) const;
    std::int64_t frameAtMilliseconds(std::int32_t milliseconds) const;

private:
    std::vector<Stretch> stretches_;
};
