// SPDX-License-Identifier: GPL-3.0-or-later
// Where the tags around the frames of an MP3 file end and begin: ID3v1, ID3v2, APE, Lyrics3.
#pragma once

#include "files/byte_source.h"

#include <cstdint>
#include <string_view>

namespace formats
{

// What an ID3v2 tag takes that begins with these ten bytes (section 3.1), a footer included; 0 where none
// begins.
std::int64_t id3v2Bytes(std::string_view head);

// Of those that stand one behind the other from byte `at` on.
std::int64_t endOfLeadingTags(files::ByteSource& file, std::int64_t at = 0);

// Of those that end one before the other at byte `end`.
std::int64_t startOfTrailingTags(files::ByteSource& file, std::int64_t end);

}
