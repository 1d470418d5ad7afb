// SPDX-License-Identifier: GPL-3.0-or-later
// A disk that is worn out, pulled out or held by a server that refuses: below one folder, the calls of some
// names to the system end in an error. Answered for the system as the small disk is (tests/small_disk); one
// at a time.
#pragma once

#include "platform/text.h"

#include <climits>

class FailingDisk
{
public:
    struct When {
        int after = 0; // so many calls are carried out before
        int times = INT_MAX;
    };

    // `calls` as the C library names them, without the 64 behind some, with blanks between.
    FailingDisk(const Text& folder, const char* calls, int error) : FailingDisk(folder, calls, error, When())
    {
    }
    FailingDisk(const Text& folder, const char* calls, int error, When when);
    ~FailingDisk();
    FailingDisk(const FailingDisk&) = delete;
    FailingDisk& operator=(const FailingDisk&) = delete;

    int failures() const; // so far
};
