// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/thread.h"

#include "platform/mutex.h"
#include "platform/out_of_memory.h"

#include <utility>

struct Thread::End {
    void come()
    {
        const Lock lock(mutex);
        hasCome = true;
        comes.notifyAll();
    }

    bool comesBy(TimePoint time)
    {
        Lock lock(mutex);
        while (!hasCome && comes.waitUntil(lock, time))
            continue;
        return hasCome;
    }

    Mutex mutex;
    Condition comes;
    bool hasCome GUARDED_BY(mutex) = false;
};

Thread::Thread(std::function<void()> work) :
    end_(std::make_shared<End>()), thread_([work = std::move(work), end = end_]() mutable {
        leavingOut(work);
        work = nullptr;
        end->come();
    })
{
}

Thread& Thread::operator=(Thread&& other) noexcept
{
    end_.swap(other.end_);
    thread_.swap(other.thread_);
    return *this;
}

Thread::~Thread() { leave(); }

bool Thread::hasEnded() const { return !end_ || end_->comesBy({}); }

bool Thread::endsBy(TimePoint time)
{
    if (end_ && !end_->comesBy(time))
        return false;
    join();
    return true;
}

bool Thread::endsWithin(std::chrono::milliseconds limit)
{
    return endsBy(std::chrono::steady_clock::now() + limit);
}

void Thread::join()
{
    if (thread_.joinable())
        thread_.join();
}

void Thread::leave()
{
    if (thread_.joinable())
        thread_.detach();
}
