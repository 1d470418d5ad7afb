// SPDX-License-Identifier: GPL-3.0-or-later
// What a small file holds, such as the system and the program itself keep.
#pragma once

#include "files/descriptor.h"
#include "platform/text.h"

namespace files
{

// "" for what is not there or cannot be read.
Text contentOf(const Text& path);

// From where the file stands.
Text contentOf(const Descriptor& file);

}
