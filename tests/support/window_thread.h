// SPDX-License-Identifier: GPL-3.0-or-later
// What stands in for the window thread and the desktop when a control works on threads of its own.
#pragma once

#include "platform/post.h"
#include "platform/shell.h"
#include "tests/support/wait_until.h"

#include <deque>
#include <functional>
#include <mutex>
#include <vector>

// Keeps what is posted until the test lets it run.
class WindowThread final : public Post
{
public:
    void post(std::function<void()> call) override
    {
        const std::lock_guard lock(mutex_);
        calls_.push_back(std::move(call));
    }

    // Runs the calls as they come until the condition holds; false when that takes too long.
    template <typename Condition>
    bool runUntil(Condition condition)
    {
        return waitUntil([&] { return condition() || (runNext(), false); }, std::chrono::seconds(120));
    }

    bool runNext()
    {
        std::function<void()> call;
        {
            const std::lock_guard lock(mutex_);
            if (calls_.empty())
                return false;
            call = std::move(calls_.front());
            calls_.pop_front();
        }
        call();
        return true;
    }

    std::size_t waiting() const
    {
        const std::lock_guard lock(mutex_);
        return calls_.size();
    }

private:
    mutable std::mutex mutex_;
    std::deque<std::function<void()>> calls_;
};

class ToldDesktop final : public Shell
{
public:
    void startProgram(const Text&) override {}
    void notify(const Text& title, const Text& message) override
    {
        const std::lock_guard lock(mutex_);
        notes_.push_back(title + " | " + message);
    }

    std::vector<Text> notes() const
    {
        const std::lock_guard lock(mutex_);
        return notes_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Text> notes_;
};
