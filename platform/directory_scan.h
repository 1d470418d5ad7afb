// SPDX-License-Identifier: GPL-3.0-or-later
// The walk through a folder's entries.
#pragma once

#include "platform/text.h"

#include <cstdint>

struct FoundFile {
    static constexpr std::uint32_t directory = 0x10;
    static constexpr std::uint32_t archive = 0x20;
    static constexpr std::uint32_t plainNormal = 0x80;

    std::uint32_t attributes = 0;
    Text name; // a fixed-length buffer: the name ends at the first NUL
};

class DirectoryScan
{
public:
    using Handle = std::intptr_t;
    static constexpr Handle invalid = -1;

    virtual ~DirectoryScan() = default;

    // Starts a scan and finds the first entry, "." and ".." before all others. `pattern` is a folder, a
    // separator and a file pattern; "*.*" matches names without a dot, too. `invalid` when nothing can be
    // found, also because the folder does not answer.
    virtual Handle FindFirstFile(const Text& pattern, FoundFile& found) = 0;

    virtual bool FindNextFile(Handle scan, FoundFile& found) = 0; // false when the entries end
    virtual void FindClose(Handle scan) = 0;
};
