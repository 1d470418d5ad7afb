// What keeps the program's timers at their full rate: while something sounds they run at it, a still program
// ticks slowly.
#pragma once

class Activity
{
public:
    virtual ~Activity() = default;

    // From any thread, in pairs.
    virtual void begin() = 0;
    virtual void end() = 0;
};
