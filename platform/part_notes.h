// The book of files that are being written beside their targets: by it the next start finds and removes what
// a killed program left.
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

// For a program that keeps no such book.
class NoPartNotes final : public PartNotes
{
public:
    void note(const Text&) override {}
    void done(const Text&) override {}

    static PartNotes& instance()
    {
        static NoPartNotes none;
        return none;
    }
};
