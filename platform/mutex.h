// SPDX-License-Identifier: GPL-3.0-or-later
// A mutex, its lock and a condition variable, and what clang's thread-safety analysis is told of them: the
// preset `analysis` does not compile where a member is touched without the mutex that it is said to be
// guarded by.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

// The names are those of clang's own manual ("Thread Safety Analysis").
// clang-format off
#ifdef __clang__
#define THREAD_ANALYSIS(word) __attribute__((word))
#else
#define THREAD_ANALYSIS(word)
#endif
#define CAPABILITY(kind)          THREAD_ANALYSIS(capability(kind))
#define SCOPED_CAPABILITY         THREAD_ANALYSIS(scoped_lockable)
#define GUARDED_BY(mutex)         THREAD_ANALYSIS(guarded_by(mutex))
#define REQUIRES(...)             THREAD_ANALYSIS(requires_capability(__VA_ARGS__))
#define EXCLUDES(...)             THREAD_ANALYSIS(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...)              THREAD_ANALYSIS(acquire_capability(__VA_ARGS__))
#define RELEASE(...)              THREAD_ANALYSIS(release_capability(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS THREAD_ANALYSIS(no_thread_safety_analysis)
// clang-format on

class CAPABILITY("mutex") Mutex
{
private:
    friend class Lock;
    std::mutex mutex_;
};

// Holds a mutex for as long as it lives, but for the time between `unlock` and `lock`.
class SCOPED_CAPABILITY Lock
{
public:
    explicit Lock(Mutex& mutex) ACQUIRE(mutex) : lock_(mutex.mutex_) {}
    ~Lock() RELEASE() {}
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void unlock() RELEASE() { lock_.unlock(); }
    void lock() ACQUIRE() { lock_.lock(); }

private:
    friend class Condition;
    std::unique_lock<std::mutex> lock_;
};

// A condition variable. It may wake for nothing, so that every wait stands in a loop that looks for itself.
class Condition
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    void notifyOne() { changed_.notify_one(); }
    void notifyAll() { changed_.notify_all(); }

    void wait(Lock& lock) { changed_.wait(lock.lock_); }

    // False at `time`.
    bool waitUntil(Lock& lock, TimePoint time)
    {
        return changed_.wait_until(lock.lock_, time) == std::cv_status::no_timeout;
    }

    // Loops by itself until `ready`, which is called with the lock held. False after a stop, and at `time`.
    template <typename Ready>
    bool wait(Lock& lock, const std::stop_token& stop, Ready ready, TimePoint time = TimePoint::max())
    {
        return changed_.wait_until(lock.lock_, stop, time, ready);
    }

private:
    std::condition_variable_any changed_;
};
