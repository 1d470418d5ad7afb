// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/errand.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace files
{

struct ErrandThread::State {
    // False when nobody waits any more.
    bool end()
    {
        const std::lock_guard lock(mutex);
        hasEnded = true;
        ended.notify_all();
        return !isAbandoned;
    }

    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;
    bool isAbandoned = false;
};

ErrandThread::ErrandThread(std::function<void()> work, std::function<void()> late) :
    state_(std::make_shared<State>())
{
    try {
        std::thread([work = std::move(work), late = std::move(late), state = state_] {
            work();
            if (!state->end())
                late();
        }).detach();
    } catch (const std::system_error&) { // no thread to be had
        state_->isAbandoned = true;
        state_->hasEnded = true;
    }
}

bool ErrandThread::isDoneWithin(std::chrono::milliseconds limit) const
{
    std::unique_lock lock(state_->mutex);
    if (!state_->ended.wait_for(lock, limit, [this] { return state_->hasEnded; }))
        state_->isAbandoned = true;
    return !state_->isAbandoned;
}

bool ErrandThread::hasEnded() const
{
    const std::lock_guard lock(state_->mutex);
    return state_->hasEnded;
}

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
        const std::lock_guard lock(mutex_);
        questions_.emplace_back(question, thread);
    }

    bool holds(const Text& question)
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(questions_, [](const auto& one) { return one.second.hasEnded(); });
        return std::ranges::any_of(questions_, [&](const auto& one) { return one.first == question; });
    }

private:
    std::mutex mutex_;
    std::vector<std::pair<Text, ErrandThread>> questions_;
};

}

bool isUnanswered(const Text& question) { return Unanswered::all().holds(question); }

void keepUnanswered(const Text& question, const ErrandThread& thread)
{
    Unanswered::all().add(question, thread);
}

}
