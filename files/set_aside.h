// SPDX-License-Identifier: GPL-3.0-or-later
// Puts a damaged database out of the way, so that a new one can begin under its name.
#pragma once

#include "platform/text.h"

#include <sys/types.h>

namespace files
{

struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;

    bool operator==(const FileIdentity&) const = default;
};

FileIdentity identityOf(const Text& path); // zeros for a missing file

// Renames the file and what belongs to it, ".damaged" behind its name; an earlier one set aside goes. Leaves
// a file that is not `damaged` in peace: another process has met the same damage, and begun anew already.
void setAside(const Text& path, const FileIdentity& damaged);

}
