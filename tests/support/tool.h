// SPDX-License-Identifier: GPL-3.0-or-later
// Other programs, as witnesses.
#pragma once

#include "platform/text.h"

#include <cstdio>
#include <sys/wait.h>
#include <vector>

struct ToolResult {
    int status = -1; // 0: it succeeded
    Text words;      // all that it said
};

// Runs the first of `arguments` with the others and waits for it.
inline ToolResult runTool(const std::vector<Text>& arguments)
{
    Text command;
    for (const auto& argument : arguments)
        command += "'" + argument + "' ";
    ToolResult result;
    std::FILE* pipe = popen((command + "2>&1").c_str(), "r");
    if (!pipe)
        return result;
    char buffer[4096];
    while (const auto got = std::fread(buffer, 1, sizeof buffer, pipe))
        result.words.append(buffer, got);
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}
