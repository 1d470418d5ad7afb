// SPDX-License-Identifier: GPL-3.0-or-later
// The calls of a process that change something below one folder, VELMORA_FIRE_BELOW: each is counted, and
// written down in VELMORA_FIRE_LOG, with its bytes where VELMORA_FIRE_BYTES is set. At the one whose number
// is VELMORA_FIRE_AT the fault VELMORA_FIRE_FAULT happens: "kill", "torn" (half a write, then killed),
// "short" (half a write), or the name of an error.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace fire
{

struct Change {
    const char* kind;
    std::string path;
    int file = -1;           // what is open, for what is done to an open file
    off_t at = 0;            // where a write begins, and how long a file becomes
    std::string second = {}; // the new name
    std::size_t size = 0;    // of a write
};

bool isWatched(const std::string& path);

// Carries it out, or lets the fault happen: -1 then, with the error set. `call` is given how many bytes it
// may write. One at a time, so that the numbers are in the order in which things happened.
ssize_t carryOut(const Change& change, const std::function<ssize_t(std::size_t size)>& call);

}
