// SPDX-License-Identifier: GPL-3.0-or-later
// A share whose server is down: whatever is asked of the file system below one folder waits for a minute.
// Stands before the C library, linked or preloaded; a preloaded one hangs below the folder
// VELMORA_HUNG_SHARE, from when the file VELMORA_HUNG_SHARE_WHEN exists where that is named.
#pragma once

#include "tests/support/wait_until.h"

class HungShare
{
public:
    enum class Holds {
        everything,
        contents,    // openings, and what is read
        reads,       // what is read, of files that can be opened
        secondReads, // what is read, but for the first piece of it
        writings,    // what is written, and the room for it
    };

    explicit HungShare(const char* folder, Holds what = Holds::everything); // absolute; one at a time
    ~HungShare();                                                           // the server answers again
    HungShare(const HungShare&) = delete;
    HungShare& operator=(const HungShare&) = delete;

    int waiting() const; // questions that are held up
};

// A thread that asks may come that far after who has waited for it went on.
inline bool holdsUp(const HungShare& share, int questions)
{
    return waitUntil([&] { return share.waiting() == questions; });
}
