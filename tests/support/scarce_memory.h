// SPDX-License-Identifier: GPL-3.0-or-later
// Memory that runs out, for one piece of it at a time.
#pragma once

#include "platform/failure.h"

#include <algorithm>
#include <functional>
#include <new>
#include <random>
#include <vector>

// While it lives, the Nth piece of memory that is asked for is refused, whichever thread asks, and no other.
class ScarceMemory
{
public:
    explicit ScarceMemory(long nth);
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    bool hasRefused() const;
};

// What the program's window thread would have met: "" where `work` came to its end. What is not handled there
// ends the program in words.
inline Text endOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const Failure& failure) {
        return failure.description;
    } catch (const std::bad_alloc&) {
        return "Out of memory";
    }
    return "";
}

struct TriedWork {
    Text end;
    bool wasRefused;
};

inline TriedWork tried(long nth, const std::function<void()>& work)
{
    const ScarceMemory memory(nth);
    Text end = endOf(work);
    return {std::move(end), memory.hasRefused()};
}

// Calls `attempt` with 1, 2, 3 ... until it is false, which it is where nothing was refused any more. Behind
// the first `all` some are left out, by a fixed seed. Gives the number of the last.
inline long tryEach(const std::function<bool(long nth)>& attempt, long all = 200, long longestStep = 16)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<long> step(1, longestStep);
    long nth = 1;
    while (attempt(nth))
        nth += nth < all ? 1 : step(random);
    return nth;
}
