// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a private profile file: sections in brackets, one key and value a line, comments behind a
// semicolon. Names match without regard to case; blanks around names and values do not count; of several
// sections or keys of one name the first counts. Lines end in LF, with or without a CR before it.
#pragma once

#include "platform/text.h"

#include <optional>
#include <string_view>

namespace files
{

// The key's value without one pair of quotes; it ends at a NUL. Nothing when the section or the key is
// missing, or a line holds the key alone.
std::optional<std::string_view> profileValue(std::string_view text, std::string_view section,
                                             std::string_view key);

// `text` with the key's value replaced, or with the key added behind its section's last line, or with the
// section added at the end. Every other byte stays. The same text when the value is there already.
Text profileWith(std::string_view text, std::string_view section, std::string_view key,
                 std::string_view value);

// Whether the names and the value have a place in such a file: what holds a line end or NUL, a section with a
// bracket, and a key that would be read as something else, have none.
bool fitsProfile(std::string_view section, std::string_view key, std::string_view value);

}
