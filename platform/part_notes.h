// The book of files that are being written beside their targets: what a crash leaves is found by it and
// removed.
#pragma once

#include "platform/text.h"

class PartNotes
{
public:
    virtual ~PartNotes() = default;

    // From any thread; never fail.
    virtual void note(const Text& partPath) = 0; // before the file is made
    virtual void done(const Text& partPath) = 0; // when the file is renamed or removed
};
