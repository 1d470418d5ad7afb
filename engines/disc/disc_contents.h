// SPDX-License-Identifier: GPL-3.0-or-later
// A disc's table of contents.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <vector>

namespace disc
{

inline constexpr std::int32_t sectorsPerSecond = 75;
inline constexpr std::int32_t sectorBytes = 2352; // of audio
inline constexpr std::int32_t sectorFrames = 588; // of 44100 Hz, 16 bits, stereo

// The lead-out begins at 99:59:74 at the latest, and times count from two seconds before sector 0 (IEC
// 60908).
inline constexpr std::int32_t mostSectors = 100 * 60 * sectorsPerSecond - 1 - 2 * sectorsPerSecond;

// Sectors count from the start of the program area: most first tracks start at 0.
struct DiscTrack {
    bool isAudio = true;
    std::int32_t start = 0;
    std::int32_t sectors = 0; // up to where the next track starts, or its session ends
    bool isMissing = false;   // a number that the disc leaves out: a disc may begin with track 4

    bool operator==(const DiscTrack&) const = default;
};

struct DiscContents {
    std::vector<DiscTrack> tracks; // track 1 first; none without a disc
    std::int32_t leadOut = 0;
    Text trouble = {}; // why a disc has no tracks, as a person should read it; none without a disc

    bool operator==(const DiscContents&) const = default;
};

}
