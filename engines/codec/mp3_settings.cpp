// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/mp3_settings.h"

#include <cstdlib>
#include <span>

namespace codec
{

namespace
{

// clang-format off
constexpr int fullRate[] = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr int halfRate[] = { 8, 16, 24, 32, 40, 48, 56,  64,  80,  96, 112, 128, 144, 160};
// clang-format on

}

int sampleRate(const Mp3Settings& settings) { return settings.halfSampleRate ? 22050 : 44100; }

// Half way between two, the higher one.
int kilobits(const Mp3Settings& settings)
{
    const std::span<const int> rates = settings.halfSampleRate ? halfRate : fullRate;
    int nearest = rates.front();
    for (const int rate : rates)
        if (std::abs(rate * std::int64_t{1000} - settings.bitrate) <=
            std::abs(nearest * std::int64_t{1000} - settings.bitrate))
            nearest = rate;
    return nearest;
}

}
