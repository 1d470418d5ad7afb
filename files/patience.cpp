// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/patience.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

namespace
{

// The questions that somebody stopped waiting for. The threads that still ask them outlive everything else.
class Unanswered
{
public:
    static Unanswered& all()
    {
        static auto* const questions = new Unanswered;
        return *questions;
    }

    void add(const Text& question)
    {
        const std::lock_guard lock(mutex_);
        questions_.insert(question);
    }
    void remove(const Text& question)
    {
        const std::lock_guard lock(mutex_);
        questions_.erase(questions_.find(question));
    }
    bool holds(const Text& question) const
    {
        const std::lock_guard lock(mutex_);
        return questions_.contains(question);
    }

private:
    mutable std::mutex mutex_;
    std::multiset<Text> questions_;
};

class Asking
{
public:
    Asking(Text question, std::function<void()> work, std::function<void()> late) :
        question_(std::move(question)), work_(std::move(work)), late_(std::move(late))
    {
    }

    void run()
    {
        work_();
        if (end())
            return;
        Unanswered::all().remove(question_);
        late_();
    }

    // False when the time is over.
    bool wait(std::chrono::milliseconds limit)
    {
        std::unique_lock lock(mutex_);
        if (change_.wait_for(lock, limit, [this] { return isDone_; }))
            return true;
        isLeft_ = true;
        Unanswered::all().add(question_);
        return false;
    }

private:
    // False when nobody waits any more.
    bool end()
    {
        const std::lock_guard lock(mutex_);
        isDone_ = true;
        change_.notify_all();
        return !isLeft_;
    }

    const Text question_;
    const std::function<void()> work_;
    const std::function<void()> late_;
    std::mutex mutex_;
    std::condition_variable change_;
    bool isDone_ = false;
    bool isLeft_ = false;
};

}

bool patience::doneWithin(std::chrono::milliseconds limit, const Text& question,
                          const std::function<void()>& work, const std::function<void()>& late)
{
    if (Unanswered::all().holds(question))
        return false;
    const auto asking = std::make_shared<Asking>(question, work, late);
    try {
        std::thread([asking] { asking->run(); }).detach();
    } catch (const std::system_error&) { // no thread to be had
        return false;
    }
    return asking->wait(limit);
}
