// SPDX-License-Identifier: GPL-3.0-or-later
// Wakes one waiting thread. A ring that comes before the wait is not lost.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace audio
{

class Bell
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    void ring()
    {
        const std::lock_guard lock(mutex_);
        rung_ = true;
        rang_.notify_one();
    }

    // Returns when it rings, or at `time`.
    void waitUntil(TimePoint time)
    {
        std::unique_lock lock(mutex_);
        rang_.wait_until(lock, time, [&] { return rung_; });
        rung_ = false;
    }

    bool isRung() const
    {
        const std::lock_guard lock(mutex_);
        return rung_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable rang_;
    bool rung_ = false;
};

}
