// SPDX-License-Identifier: GPL-3.0-or-later
// What the encoder makes of a sound.
#pragma once

#include <cstdint>

namespace codec
{

struct Mp3Settings {
    std::int32_t bitrate = 128000; // bits per second; the nearest that the format has is used
    bool halfSampleRate = false;   // true: 22.05 kHz, false: 44.1 kHz
};

int sampleRate(const Mp3Settings& settings); // hertz
int kilobits(const Mp3Settings& settings);   // thousands of bits per second, one that the format has

}
