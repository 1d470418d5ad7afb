// SPDX-License-Identifier: GPL-3.0-or-later
// Which file a path means.
#pragma once

#include "platform/text.h"

#include <optional>

namespace files
{

// `path` where that exists; else the first entry of its folder, in the order of a scan, whose name differs
// from the path's last one in letters A to Z alone; else `path` again. Nothing when the file system does not
// answer within two seconds.
std::optional<Text> fileToOpen(const Text& path);

}
