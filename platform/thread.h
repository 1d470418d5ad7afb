// SPDX-License-Identifier: GPL-3.0-or-later
// A thread that its owner waits for as long as it likes, or leaves behind: then it ends when it can, on what
// its work holds.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

class Thread
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    Thread() = default; // none, which has ended

    // Fails with std::system_error where there is no thread to be had.
    explicit Thread(std::function<void()> work);
    Thread(Thread&& other) noexcept = default;
    Thread& operator=(Thread&& other) noexcept;
    ~Thread(); // leaves it

    // What the work held has gone, too.
    bool hasEnded() const;

    // Waits for that; false when it takes longer.
    bool endsBy(TimePoint time);
    bool endsWithin(std::chrono::milliseconds limit);

    void join();
    void leave(); // its end can still be asked for

private:
    struct End;
    std::shared_ptr<End> end_;
    std::thread thread_;
};
