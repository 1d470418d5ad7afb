// SPDX-License-Identifier: GPL-3.0-or-later
// A future with a time limit, abandoned when it is late: work that may hang (a share whose server is down, a
// drive, another program) has a thread of its own, and who has waited long enough leaves it behind.
#pragma once

#include "platform/failure.h"
#include "platform/text.h"
#include "platform/thread.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace files
{

inline constexpr std::chrono::milliseconds patienceForLists{200};
inline constexpr std::chrono::milliseconds patienceForFiles{2000};

// A disk may have to wake up, and what is given up here may be a person's only list, or a tag that was just
// typed: longer than for files that are merely played.
inline constexpr std::chrono::milliseconds patienceForWriting{10'000};

// Why there is no answer, as a person should read it.
inline constexpr const char* noAnswer = "The disk or the network that it is on does not answer.";

// What an errand is without its result. Copies are one thread.
class ErrandThread
{
public:
    // `late` is called behind `work` when nobody waits any more.
    ErrandThread(std::function<void()> work, std::function<void()> late);

    // False when the work is abandoned: from `limit` on, and without a thread. Fails where memory ran out.
    bool isDoneWithin(std::chrono::milliseconds limit) const;

    // The same, but what it waits for a processor that others have does not count: no disk is to blame for
    // that.
    bool isDoneInOwnTime(std::chrono::milliseconds limit) const;

    bool endsWithin(std::chrono::milliseconds limit) const; // and abandons nothing

    bool hasEnded() const;

private:
    struct Shared;
    std::shared_ptr<Shared> state_;
    std::shared_ptr<Thread> thread_;
};

template <typename Result>
class Errand
{
public:
    // `work` holds what it needs, and fails for want of memory at most. `late` gets a result that is
    // abandoned, on the thread that made it.
    explicit Errand(
        const std::function<Result()>& work, const std::function<void(Result)>& late = [](Result) {}) :
        thread_([work, result = result_] { *result = work(); },
                [late, result = result_] { late(*std::exchange(*result, std::nullopt)); })
    {
    }

    // The result, once; nothing when it takes longer than `limit`, which abandons it.
    std::optional<Result> result(std::chrono::milliseconds limit)
    {
        return thread_.isDoneWithin(limit) ? std::exchange(*result_, std::nullopt) : std::nullopt;
    }

    std::optional<Result> resultInOwnTime(std::chrono::milliseconds limit)
    {
        return thread_.isDoneInOwnTime(limit) ? std::exchange(*result_, std::nullopt) : std::nullopt;
    }

    bool hasEnded() const { return thread_.hasEnded(); }
    bool endsWithin(std::chrono::milliseconds limit) const { return thread_.endsWithin(limit); }
    const ErrandThread& thread() const { return thread_; }

private:
    std::shared_ptr<std::optional<Result>> result_ = std::make_shared<std::optional<Result>>();
    ErrandThread thread_;
};

// Questions whose errand was abandoned and has not ended yet.
bool isUnanswered(const Text& question);
void keepUnanswered(const Text& question, const ErrandThread& thread);

// The answer of an errand that many may ask for. A question whose last asking has not been answered yet is
// not asked again: nothing at once.
template <typename Answer>
std::optional<Answer> answerWithin(
    std::chrono::milliseconds limit, const Text& question, const std::function<Answer()>& ask,
    const std::function<void(Answer)>& late = [](Answer) {})
{
    if (isUnanswered(question))
        return std::nullopt;
    Errand<Answer> errand(ask, late);
    auto answer = errand.resultInOwnTime(limit);
    if (!answer)
        keepUnanswered(question, errand.thread());
    return answer;
}

// The same for what can fail: its Failure comes to the caller, and 68 where there is no answer.
template <typename Answer>
Answer answerOrFailure(std::chrono::milliseconds limit, const Text& question,
                       const std::function<Answer()>& ask)
{
    struct Attempt {
        std::optional<Answer> answer;
        Failure failure;
    };
    auto outcome = answerWithin<Attempt>(limit, question, [ask] {
        Attempt each;
        guarded([&](const Failure& failure) { each.failure = failure; }, [&] { each.answer = ask(); });
        return each;
    });
    if (!outcome)
        throw Failure{Trouble::deviceUnavailable, noAnswer};
    if (!outcome->answer)
        throw std::move(outcome->failure);
    return *std::move(outcome->answer);
}

}
