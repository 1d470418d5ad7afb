// SPDX-License-Identifier: GPL-3.0-or-later
// The tag of an MP3 file, with the fields and numbers of ID3v1.
#pragma once

#include "platform/text.h"

#include <cstdint>

namespace tags
{

struct Tag {
    Text title;
    Text artist;
    Text album;
    Text comment;
    std::int16_t year = 0;        // 0: no year
    std::int16_t genreIndex = -1; // -1: none
    Text genreName = {};          // where a text names a genre that has no number

    bool operator==(const Tag&) const = default;
};

}
