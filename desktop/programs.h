// SPDX-License-Identifier: GPL-3.0-or-later
// Finding and starting other programs.
#pragma once

#include "platform/text.h"

#include <sys/resource.h>

#include <optional>
#include <vector>

namespace desktop
{

// The first program of that name in the folders of `searchPath`, as PATH lists them; a name with a separator
// is a path already. "" when there is none.
Text programAt(const Text& searchPath, const Text& name);

// Starts a program by its path, the first of `words`, the others being its arguments, in a session of its own
// with no open files. It is no child of this process, and outlives it. A `stackLimit` is its soft limit of
// the stack. 0, or the error number of the system.
int startDetached(const std::vector<Text>& words, std::optional<rlim_t> stackLimit);

}
