// SPDX-License-Identifier: GPL-3.0-or-later
// What a CDDB server answers (the freedb "CDDB server protocol", level 6, and its "xmcd" entry format).
// Pure, and safe with any bytes.
#pragma once

#include "platform/text.h"

#include <optional>
#include <vector>

namespace disc
{

// An entry of the database.
struct CddbMatch {
    Text category;
    Text discId;
};

// The entries that an answer to "cddb query" offers, the server's best first; none for a disc it does not
// know. Nothing for what is no such answer.
std::optional<std::vector<CddbMatch>> matchesIn(std::string_view answer);

// In UTF-8, each in one line. A disc without " / " in its title has the whole of it as artist.
struct DiscTitles {
    Text artist;
    std::vector<Text> tracks; // the first track's first; "" where there is none
};

// The titles that an answer to "cddb read" holds. Nothing for what is no such answer, or not the whole of
// one.
std::optional<DiscTitles> titlesIn(std::string_view answer);

}
