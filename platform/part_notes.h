// SPDX-License-Identifier: GPL-3.0-or-later
// The book of files that are being written beside their targets: by it the next start finds what a killed
// program left, and removes it or brings it to its end.
#pragma once

#include "platform/text.h"

#include <vector>

// A part that is whole, and the place that it is to take.
struct WholePart {
    Text part;
    Text place;
};

class PartNotes
{
public:
    virtual ~PartNotes() = default;

    // From any thread; never fail.
    virtual void note(const Text& partPath) = 0; // before the file is made
    virtual void done(const Text& partPath) = 0; // when the file is renamed or removed

    // These parts belong together, are on the disk whole, and take their places in this order from now on.
    virtual void whole(const std::vector<WholePart>&) {}
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
