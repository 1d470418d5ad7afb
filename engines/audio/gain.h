// SPDX-License-Identifier: GPL-3.0-or-later
// Brings samples to the output levels: a level of 100 leaves them as they are, 50 halves them. A new level is
// reached in 5 ms, so that it does not click.
#pragma once

#include "engines/audio/levels.h"

#include <array>
#include <cstddef>
#include <memory>

namespace audio
{

class Gain
{
public:
    Gain(std::shared_ptr<const Levels> levels, int rate);

    void apply(std::int16_t* samples, std::size_t frames); // interleaved stereo

private:
    using Factors = std::array<float, 2>;

    static Factors factorsOf(Levels::Pair levels);
    void aimAt(Levels::Pair levels);
    void step();

    std::shared_ptr<const Levels> levels_;
    int rampFrames_;
    int framesToGo_ = 0;
    Levels::Pair aim_;
    Factors now_;
    Factors steps_{};
};

}
