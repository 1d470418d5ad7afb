// SPDX-License-Identifier: GPL-3.0-or-later
// A parallel for: work on several cores.
#pragma once

#include "platform/mutex.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stop_token>

namespace codec
{

// Thrown by work that was asked to stop: nothing went wrong.
struct Stopped {
};

inline void throwIfStopped(const std::stop_token& stop)
{
    if (stop.stop_requested())
        throw Stopped{};
}

unsigned coreCount(); // at least 1

// Runs task(0, stop) to task(count - 1, stop), handed out in this order, on `workers` threads in all, the
// caller's among them. The first failure asks the running tasks to stop, leaves out the rest, and is thrown
// on when all have ended. A machine that has no more threads to give does the same on fewer.
void runTasks(unsigned workers, std::size_t count, const std::stop_token& stop,
              const std::function<void(std::size_t, const std::stop_token&)>& task);

// Takes thousandths, 0 to 1000; each at most once, never going back, from one thread at a time.
using Report = std::function<void(std::int32_t)>;

// Adds up the work that several threads have done.
class Progress
{
public:
    Progress(std::int64_t total, Report report) : total_(total), report_(std::move(report)) {}

    void add(std::int64_t done);

private:
    std::int64_t total_;
    Report report_;
    Mutex mutex_;
    std::int64_t done_ GUARDED_BY(mutex_) = 0;
    std::int32_t reported_ GUARDED_BY(mutex_) = 0;
};

}
