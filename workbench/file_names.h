// SPDX-License-Identifier: GPL-3.0-or-later
// The names of the files that the flows write.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <string_view>

// What stands between a track's number and a file name: the nine characters that some file system forbids
// become "_".
Text cleanFileName(std::string_view name);

// The WAV file of a ripped track. A directory as long as a drive's root counts as one and takes no separator;
// any other takes one, also when it ends in one already.
Text rippedFilePath(std::string_view directory, std::string_view name);

// position x 100 / length, for a progress bar. Fails with 6 when the product does not fit 32 bits.
float percentOf(std::int32_t position, std::int32_t length);
