// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_id.h"

#include "platform/numbers.h"

#include <algorithm>
#include <cstdio>

namespace disc
{

namespace
{

constexpr std::int32_t leadInPause = 150; // sectors from the disc's very beginning to sector 0
constexpr std::uint32_t checksumModulus = 255;

std::uint32_t seconds(std::int32_t sector)
{
    return static_cast<std::uint32_t>(std::max(sector + leadInPause, 0) / sectorsPerSecond);
}

std::uint32_t digitSum(std::uint32_t number)
{
    std::uint32_t sum = 0;
    for (; number > 0; number /= 10)
        sum += number % 10;
    return sum;
}

// Those that the disc leaves out count nowhere.
std::vector<DiscTrack> tracksOn(const DiscContents& disc)
{
    auto tracks = disc.tracks;
    std::erase_if(tracks, [](const DiscTrack& each) { return each.isMissing; });
    return tracks;
}

}

Text discId(const DiscContents& disc)
{
    const auto tracks = tracksOn(disc);
    std::uint32_t sum = 0;
    for (const DiscTrack& track : tracks)
        sum += digitSum(seconds(track.start));
    const std::uint32_t first = tracks.empty() ? 0 : seconds(tracks.front().start);
    const std::uint32_t length = (seconds(disc.leadOut) - first) & 0xFFFF;
    const auto count = static_cast<std::uint32_t>(tracks.size()) & 0xFF;
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", (sum % checksumModulus) << 24 | length << 8 | count);
    return digits;
}

Text queryCommand(const DiscContents& disc)
{
    const auto tracks = tracksOn(disc);
    Text command = "cddb query " + discId(disc) + ' ' + std::to_string(tracks.size());
    for (const DiscTrack& track : tracks)
        command += ' ' + textOf(track.start + leadInPause);
    return command + ' ' + std::to_string(seconds(disc.leadOut));
}

}
