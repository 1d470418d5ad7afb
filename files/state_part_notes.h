// SPDX-License-Identifier: GPL-3.0-or-later
// Part notes in the user's state folder: one file a process, locked for as long as the process lives.
#pragma once

#include "files/descriptor.h"
#include "platform/mutex.h"
#include "platform/part_notes.h"

#include <set>

namespace files
{

class StatePartNotes final : public PartNotes
{
public:
    explicit StatePartNotes(const Text& stateFolder);
    ~StatePartNotes() override;

    void note(const Text& partPath) override;
    void done(const Text& partPath) override;
    void whole(const std::vector<WholePart>& parts) override;

private:
    bool isKnown(const Text& target);
    void begin() REQUIRES(mutex_);

    Mutex mutex_;
    const Text folder_;
    Text path_ GUARDED_BY(mutex_);
    Descriptor file_ GUARDED_BY(mutex_);
    std::set<Text> open_ GUARDED_BY(mutex_);
    std::set<Text> targets_ GUARDED_BY(mutex_); // beside which no lost part lies any more
};

// For the program's start, over the part files that processes noted which ended without removing them: those
// that are whole together take their places, the others are removed. Those of a process that still runs stay,
// and those on a disk that does not answer, until the next start.
void removeNotedParts(const Text& stateFolder);

}
