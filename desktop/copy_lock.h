// SPDX-License-Identifier: GPL-3.0-or-later
// Two copies of the program on one settings store, or in one application folder, would undo each other's
// writes for ever: the second one finds the first by this advisory lock.
#pragma once

#include "desktop/places.h"
#include "files/descriptor.h"

#include <sys/types.h>

namespace desktop
{

// Holds for the process's life: the system lets go of it, however the process ends. No program that is
// started inherits it.
class CopyLock
{
public:
    explicit CopyLock(const Environment& environment);

    // The process that is in the way; -1 for one that has not said its number yet, 0 when this one has its
    // place. Where no lock can be kept at all, nobody is in the way.
    pid_t holder() const { return holder_; }

private:
    files::Descriptor taken(const Text& lockFolder, const char* use, const Text& shared);

    files::Descriptor store_;
    files::Descriptor folder_;
    pid_t holder_ = 0;
};

}
