// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/worker.h"

#include "platform/mutex.h"

#include <deque>
#include <optional>
#include <utility>

struct Worker::Queue {
    explicit Queue(Turn each) : turn(std::move(each)) {}

    // What a call held, and what the turn held, goes on the thread that used it.
    void run()
    {
        for (Call call; take(call);)
            call(stop.get_token());
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

    Thread::TimePoint turned() const { return turn ? turn() : Thread::TimePoint::max(); }

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
        std::deque<Call> leftOut;
        const Lock lock(mutex);
        stop.request_stop();
        leftOut.swap(waiting);
        changed.notifyAll();
    }

    Turn turn; // the thread's own
    std::stop_source stop;
    Mutex mutex;
    Condition changed;
    std::deque<Call> waiting GUARDED_BY(mutex);
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
