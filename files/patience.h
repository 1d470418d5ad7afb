// SPDX-License-Identifier: GPL-3.0-or-later
// Questions to a file system that may not answer: a share whose server is down, a disk that hangs. They are
// asked on a thread of their own; who has waited long enough leaves it behind.
#pragma once

#include "platform/text.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace patience
{

inline constexpr std::chrono::milliseconds forLists{200};
inline constexpr std::chrono::milliseconds forFiles{2000};

// True when `work` was done within `limit`. Otherwise `late` is called behind it, on that thread. A question
// whose last asking has not been answered yet is not asked again: false at once.
bool doneWithin(
    std::chrono::milliseconds limit, const Text& question, const std::function<void()>& work,
    const std::function<void()>& late = [] {});

// The answer of `ask`, which holds what it needs and throws nothing; nothing when it takes longer than
// `limit`. `late` gets the answer that comes after that, on the thread that asked.
template <typename Answer>
std::optional<Answer> answerWithin(
    std::chrono::milliseconds limit, const Text& question, const std::function<Answer()>& ask,
    const std::function<void(Answer)>& late = [](Answer) {})
{
    const auto answer = std::make_shared<std::optional<Answer>>();
    const bool inTime = doneWithin(
        limit, question, [=] { *answer = ask(); }, [=] { late(*std::move(*answer)); });
    return inTime ? std::move(*answer) : std::nullopt;
}

}
