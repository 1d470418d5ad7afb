// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/worker.h"

#include "platform/mutex.h"
#include "platform/out_of_memory.h"

#include <list>
#include <optional>
#include <utility>

struct Worker::Queue {
    explicit Queue(Turn each) : turn(std::move(each)) {}

    // What a call held, and what the turn held, goes on the thread that used it.
    void run()
    {
        for (Call call; take(call);)
            leavingOut([&] { call(stop.get_token()); });
        turn = nullptr;
    }

    bool take(Call& call)
    {
        call = nullptr;
        auto next = turned();
        Lock lock(mutex);
        isAtWork = false;
        changed.notifyAll();
        while (waiting.empty() && !stop.stop_requested())
            if (!changed.waitUntil(lock, next)) {
                lock.unlock();
                next = turned();
                lock.lock();
            }
        if (stop.stop_requested())
            return false;
        call = std::move(waiting.front());
        waiting.pop_front();
        return isAtWork = true;
    }

    Thread::TimePoint turned() const
    {
        auto next = Thread::TimePoint::max();
        if (turn)
            persisting([&] { next = turn(); });
        return next;
    }

    // Most workers of a run have nothing to do: their threads are never made.
    void add(Call call, const std::shared_ptr<Queue>& self)
    {
        const Lock lock(mutex);
        if (!thread)
            thread.emplace([self] { self->run(); });
        waiting.push_back(std::move(call));
        changed.notifyAll();
    }

    Thread leave()
    {
        const Lock lock(mutex);
        return std::move(thread).value_or(Thread());
    }

    bool isDoneBy(Thread::TimePoint time)
    {
        Lock lock(mutex);
        while ((isAtWork || !waiting.empty()) && changed.waitUntil(lock, time))
            continue;
        return !isAtWork && waiting.empty();
    }

    void end()
    {
        std::list<Call> leftOut;
        const Lock lock(mutex);
        stop.request_stop();
        leftOut.swap(waiting);
        changed.notifyAll();
    }

    Turn turn; // the thread's own
    std::stop_source stop;
    Mutex mutex;
    Condition changed;
    std::list<Call> waiting GUARDED_BY(mutex); // an empty one needs no memory, at the end either
    bool isAtWork GUARDED_BY(mutex) = false;
    std::optional<Thread> thread GUARDED_BY(mutex); // its own work holds this, too, until it ends
};

Worker::Worker(AtEnd atEnd, Turn turn) : atEnd_(atEnd), queue_(std::make_shared<Queue>(std::move(turn))) {}

Worker::~Worker()
{
    queue_->end();
    Thread thread = queue_->leave();
    if (atEnd_ == AtEnd::joins)
        thread.join();
    thread.endsWithin(patienceAtEnd);
}

void Worker::add(Call call) { queue_->add(std::move(call), queue_); }

bool Worker::isDoneBy(Thread::TimePoint time) { return queue_->isDoneBy(time); }
