// SPDX-License-Identifier: GPL-3.0-or-later
// Genre numbers of ID3v1 and their names.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <string_view>

namespace tags
{

// "" for -1, "Unknown" for 80, the usual names otherwise; "" for a number without a name.
Text genreName(std::int16_t genre);

// The number that a tag's genre text stands for: "17", "(17)", "(17)Hard", or the name of a genre of the
// tag editor, "Rock" or "hip hop", in any case and with or without its blanks and hyphens. -1 for any other
// text, and for 255, the standards' own "none".
std::int16_t genreNumber(std::string_view text);

// The name of a genre in a text that stands for no number; "" where it names none.
Text genreWithoutNumber(std::string_view text);

}
