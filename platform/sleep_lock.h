// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps the system awake while a disc is read or written.
#pragma once

#include "platform/text.h"

class SleepLock
{
public:
    virtual ~SleepLock() = default;

    // From any thread, in pairs; never wait and never fail.
    virtual void begin(const Text& reason) = 0; // as the desktop may show it: "Writing a disc"
    virtual void end() = 0;
};
