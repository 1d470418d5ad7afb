// SPDX-License-Identifier: GPL-3.0-or-later
// Where the sectors of a disc image lie in its files.
#pragma once

#include "engines/disc/cue_sheet.h"
#include "engines/disc/disc_contents.h"

#include <optional>
#include <span>
#include <vector>

namespace disc
{

// A run of sectors that lie behind each other in one file, or are in none and silent.
struct SectorExtent {
    std::int32_t start = 0; // on the disc
    std::int32_t sectors = 0;
    std::optional<std::size_t> file = std::nullopt;
    std::int64_t offset = 0; // bytes, in the file
    std::int32_t bytesOfSector = 0;
    bool isAudio = true;

    std::int32_t end() const { return start + sectors; }
    bool operator==(const SectorExtent&) const = default;
};

struct ImageLayout {
    DiscContents contents;
    std::vector<SectorExtent> extents; // without gaps, from sector 0 to the lead-out; none of them empty

    bool operator==(const ImageLayout&) const = default;
};

// As on a pressed disc, a track lasts until the next one's index 1: the gap before that belongs to it. A file
// is on the disc whole, its last sector also where the file ends within it. `fileBytes` has a length for each
// file of the sheet, 0 for a missing one. Nothing for more than any disc holds.
std::optional<ImageLayout> layoutOf(const CueSheet& sheet, std::span<const std::int64_t> fileBytes);

}
