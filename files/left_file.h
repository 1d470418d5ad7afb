// SPDX-License-Identifier: GPL-3.0-or-later
// A file as its writer left it, and the question whether it still is.
#pragma once

#include "files/descriptor.h"
#include "files/trust.h"
#include "platform/text.h"

#include <sys/stat.h>

#include <cstdint>

namespace files
{

class LeftFile
{
public:
    // `file` has its content and stands under its name.
    LeftFile(std::uint64_t revision, Descriptor file, Trust trust);

    // Provably the same content: the same file, untouched when it was last looked at, and the same revision
    // asked for.
    bool holds(const Text& path, std::uint64_t revision);

private:
    bool isUntouched(const Text& path) const;

    std::uint64_t revision_;
    Descriptor file_; // kept open: comparing its last bytes is one call then
    struct stat status_ = {};
    Text lastBytes_;
    Trust trust_;
};

// For the writer, before a file is left: gives it a time of change that no later change can have.
void stampPrecisely(const Descriptor& file);

}
