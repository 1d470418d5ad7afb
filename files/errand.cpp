// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/errand.h"

#include "platform/mutex.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <exception>
#include <fstream>
#include <new>
#include <system_error>
#include <vector>

using namespace std::chrono_literals;

namespace files
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr auto betweenLooks = 10ms;
constexpr int looksInARow = 2; // any thread stands still for a moment
constexpr auto mostForTheProcessor = 10s;

// Whether the system says of a thread of this process that it runs, or would if it had a processor.
bool runs(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    Text line;
    std::getline(file, line);
    return line.rfind(") R ") != Text::npos; // behind its name
}

}

// The one that comes first settles it: the work with its end, or the asker who has waited long enough.
struct ErrandThread::Shared {
    enum class Fate { open, done, abandoned };

    bool settles(Fate as)
    {
        auto open = Fate::open;
        return outcome.compare_exchange_strong(open, as);
    }

    void begins()
    {
        pthread_getcpuclockid(pthread_self(), &processorTime);
        thread = gettid();
    }

    // Memory that runs out is the asker's to meet, as if it had done the work itself.
    void run(const std::function<void()>& work)
    {
        begins();
        try {
            work();
        } catch (const std::bad_alloc&) {
            shortage = std::current_exception();
        }
    }

    // By something else than a processor that others have.
    bool isHeldUp(std::chrono::milliseconds limit) const
    {
        const pid_t id = thread;
        if (id == 0)
            return false;
        timespec used{};
        clock_gettime(processorTime, &used);
        return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec) >= limit ||
               !runs(id);
    }

    std::atomic<Fate> outcome = Fate::open;
    std::atomic<pid_t> thread = 0; // 0 until it begins
    clockid_t processorTime = 0;
    std::exception_ptr shortage; // set before it is done
};

ErrandThread::ErrandThread(std::function<void()> work, std::function<void()> late) :
    state_(std::make_shared<Shared>()), thread_(std::make_shared<Thread>())
{
    try {
        *thread_ = Thread([work = std::move(work), late = std::move(late), state = state_] {
            state->run(work);
            if (!state->settles(Shared::Fate::done) && !state->shortage)
                late();
        });
    } catch (const std::system_error&) { // no thread to be had
    }
}

bool ErrandThread::isDoneWithin(std::chrono::milliseconds limit) const
{
    thread_->endsWithin(limit);
    state_->settles(Shared::Fate::abandoned);
    if (state_->outcome != Shared::Fate::done) {
        thread_->leave(); // or it would be kept for a question that may never come
        return false;
    }
    if (state_->shortage)
        std::rethrow_exception(state_->shortage);
    return true;
}

bool ErrandThread::isDoneInOwnTime(std::chrono::milliseconds limit) const
{
    const auto end = Clock::now() + limit + mostForTheProcessor;
    int heldUp = 0;
    auto pause = limit;
    while (!thread_->endsWithin(pause) && heldUp < looksInARow && Clock::now() < end) {
        heldUp = state_->isHeldUp(limit) ? heldUp + 1 : 0;
        pause = betweenLooks;
    }
    return isDoneWithin(0ms);
}

bool ErrandThread::endsWithin(std::chrono::milliseconds limit) const { return thread_->endsWithin(limit); }

bool ErrandThread::hasEnded() const { return thread_->hasEnded(); }

namespace
{

class Unanswered
{
public:
    // Errands may be asked for until the very end of the process.
    static Unanswered& all()
    {
        static auto* const questions = new Unanswered;
        return *questions;
    }

    void add(const Text& question, const ErrandThread& thread)
    {
        const Lock lock(mutex_);
        questions_.emplace_back(question, thread);
    }

    bool holds(const Text& question)
    {
        const Lock lock(mutex_);
        std::erase_if(questions_, [](const auto& one) { return one.second.hasEnded(); });
        return std::ranges::any_of(questions_, [&](const auto& one) { return one.first == question; });
    }

private:
    Mutex mutex_;
    std::vector<std::pair<Text, ErrandThread>> questions_ GUARDED_BY(mutex_);
};

}

bool isUnanswered(const Text& question) { return Unanswered::all().holds(question); }

void keepUnanswered(const Text& question, const ErrandThread& thread)
{
    Unanswered::all().add(question, thread);
}

}
