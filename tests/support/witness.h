// SPDX-License-Identifier: GPL-3.0-or-later
// Other programs, as witnesses.
#pragma once

#include "platform/text.h"

#include <cstdio>
#include <sys/wait.h>

// All that `command` says, for a shell; nothing when it fails.
inline Text saidBy(const Text& command)
{
    std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    Text said;
    char piece[4096];
    while (const auto got = std::fread(piece, 1, sizeof piece, pipe))
        said.append(piece, got);
    return pclose(pipe) == 0 ? said : Text();
}
