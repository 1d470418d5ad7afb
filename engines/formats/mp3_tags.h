// SPDX-License-Identifier: GPL-3.0-or-later
// Where the tags around the frames of an MP3 file end and begin: ID3v1, ID3v2, APE, Lyrics3.
#pragma once

#include "files/input_file.h"

#include <cstdint>

namespace formats
{

// Of those that stand one behind the other from byte `at` on.
std::int64_t endOfLeadingTags(files::FileWindow& window, std::int64_t at = 0);

// Of those that end one before the other at byte `end`.
std::int64_t startOfTrailingTags(const files::InputFile& file, std::int64_t end);

}
