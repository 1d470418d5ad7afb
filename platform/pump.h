// SPDX-License-Identifier: GPL-3.0-or-later
// The window events, run from inside a handler that waits.
#pragma once

class Pump
{
public:
    virtual ~Pump() = default;

    // Waits for at least one event of any window, timer or engine, runs what is there, and returns. Any
    // handler can run in it: what was read before a turn is read again after it.
    virtual void turn() = 0;

    // Does not come back. The window thread sleeps and serves no event; only ending the process ends it.
    virtual void standStill() = 0;
};
