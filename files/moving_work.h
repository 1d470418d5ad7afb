// SPDX-License-Identifier: GPL-3.0-or-later
// Work under a watchdog. It takes as long as it takes, such as copying a long file to a slow disk: it is
// waited for while it comes on, and left behind when it stands still.
#pragma once

#include "files/errand.h"

#include <atomic>

namespace files
{

// Told by the work as it comes on, watched by who waits for it.
class Steps
{
public:
    // Fails with 68 when nobody waits any more: what is not done by then is to be undone.
    void take()
    {
        if (isGivenUp_)
            throw Failure{Trouble::deviceUnavailable, noAnswer};
        ++count_;
    }

    int count() const { return count_; }
    void giveUp() { isGivenUp_ = true; }

private:
    std::atomic<int> count_{0};
    std::atomic<bool> isGivenUp_{false};
};

// The result of `work`; nothing when it takes no step for longer than `limit`, which gives it up, and at once
// while the question has no answer from before. `work` throws nothing but for want of memory.
template <typename Result>
std::optional<Result> resultWhileMoving(std::chrono::milliseconds limit, const Text& question,
                                        const std::function<Result(Steps&)>& work)
{
    if (isUnanswered(question))
        return std::nullopt;
    const auto steps = std::make_shared<Steps>();
    Errand<Result> errand([steps, work] { return work(*steps); });
    for (int before = 0; !errand.endsWithin(limit) && steps->count() != before;)
        before = steps->count();
    auto result = errand.result(std::chrono::milliseconds(0));
    if (!result) {
        steps->giveUp();
        keepUnanswered(question, errand.thread());
    }
    return result;
}

}
