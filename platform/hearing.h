// SPDX-License-Identifier: GPL-3.0-or-later
// What an engine is doing, for those who only watch: asking changes nothing.
#pragma once

#include <cstdint>

class Hearing
{
public:
    enum class State {
        idle,     // nothing open, opened only, stopped or at its end
        sounding, // also while the sound is still on its way
        halted,   // "Play" goes on from the place
    };

    virtual State state() const = 0;
    virtual std::int32_t place() const = 0; // milliseconds

protected:
    ~Hearing() = default;
};
