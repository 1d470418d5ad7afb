// SPDX-License-Identifier: GPL-3.0-or-later
// A queue of calls, and a thread that carries them out one after the other. The thread begins with the first.
#pragma once

#include "platform/thread.h"

#include <stop_token>

// That a person does not notice, when the program ends beside a server that does not answer.
inline constexpr std::chrono::milliseconds patienceAtEnd{20};

class Worker
{
public:
    // The stop is asked for when the worker ends.
    using Call = std::function<void(const std::stop_token& stop)>;

    // Called behind calls, and again at the time that it gave last.
    using Turn = std::function<Thread::TimePoint()>;

    enum class AtEnd {
        joins,    // waits for the call at work
        abandons, // only as long as nobody notices: a server may hold it up, so it holds what it needs
    };

    explicit Worker(AtEnd atEnd, Turn turn = nullptr);
    ~Worker(); // stops the call at work, and leaves out those that wait
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void add(Call call); // from any thread; never waits

    // Waits until every call has been carried out; false when it takes longer.
    bool isDoneBy(Thread::TimePoint time);
    void finish() { isDoneBy(Thread::TimePoint::max()); }

private:
    struct Queue;

    AtEnd atEnd_;
    std::shared_ptr<Queue> queue_; // outlives this object while a call is held up
};
