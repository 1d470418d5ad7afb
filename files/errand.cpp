// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/errand.h"

#include "platform/mutex.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <vector>

namespace files
{

// The one that comes first settles it: the work with its end, or the asker who has waited long enough.
struct ErrandThread::State {
    enum class Outcome { open, done, abandoned };

    bool settles(Outcome as)
    {
        auto open = Outcome::open;
        return outcome.compare_exchange_strong(open, as);
    }

    std::atomic<Outcome> outcome = Outcome::open;
};

ErrandThread::ErrandThread(std::function<void()> work, std::function<void()> late) :
    state_(std::make_shared<State>()), thread_(std::make_shared<Thread>())
{
    try {
        *thread_ = Thread([work = std::move(work), late = std::move(late), state = state_] {
            work();
            if (!state->settles(State::Outcome::done))
                late();
        });
    } catch (const std::system_error&) { // no thread to be had
    }
}

bool ErrandThread::isDoneWithin(std::chrono::milliseconds limit) const
{
    thread_->endsWithin(limit);
    state_->settles(State::Outcome::abandoned);
    return state_->outcome == State::Outcome::done;
}

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
