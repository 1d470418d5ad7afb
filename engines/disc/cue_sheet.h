// SPDX-License-Identifier: GPL-3.0-or-later
// What a CUE sheet says: which files a disc image is made of, and where its tracks lie in them.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace disc
{

// The form is that of the CDRWIN user's guide. Sectors are those of its times, 75 to the second.
struct CueSheet {
    enum class Kind { binary, motorola, wave }; // raw sectors, the same with samples swapped, a WAV file

    struct File {
        Text name; // as written, without quotes
        Kind kind = Kind::binary;
    };

    struct Index {
        std::int32_t number = 0; // 0 where the gap before the track begins, 1 where the track does
        std::size_t file = 0;
        std::int32_t sector = 0; // from the file's start
    };

    struct Track {
        std::int32_t number = 0;
        bool isAudio = true;
        std::int32_t bytesOfSector = 0; // in the file
        std::int32_t pregap = 0;        // sectors of silence that are in no file, before the first index
        std::int32_t postgap = 0;       // the same behind the track
        std::vector<Index> indexes;     // rising in their numbers and, within a file, in their places
    };

    std::vector<File> files;
    std::vector<Track> tracks; // 1 to 99, rising in their numbers, each with an index 1
};

// Nothing for what is no sheet, or one that cannot be followed to its end. Safe with any bytes.
std::optional<CueSheet> cueSheetIn(std::string_view text);

}
