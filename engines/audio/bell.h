// SPDX-License-Identifier: GPL-3.0-or-later
// An auto-reset event: wakes one waiting thread. A ring that comes before the wait is not lost.
#pragma once

#include "platform/mutex.h"

#include <chrono>

namespace audio
{

class Bell
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    void ring()
    {
        const Lock lock(mutex_);
        rung_ = true;
        rang_.notifyOne();
    }

    // Returns when it rings, or at `time`.
    void waitUntil(TimePoint time)
    {
        Lock lock(mutex_);
        while (!rung_ && rang_.waitUntil(lock, time))
            continue;
        rung_ = false;
    }

private:
    Mutex mutex_;
    Condition rang_;
    bool rung_ GUARDED_BY(mutex_) = false;
};

}
