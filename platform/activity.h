// SPDX-License-Identifier: GPL-3.0-or-later
// What keeps the program's timers going: while something sounds they run, a still program ticks slowly. Both
// calls also wake a window thread that waits.
#pragma once

class Activity
{
public:
    virtual ~Activity() = default;

    // From any thread, in pairs.
    virtual void begin() = 0;
    virtual void end() = 0;
};
