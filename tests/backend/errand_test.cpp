// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/errand.h"
#include "files/moving_work.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <ctime>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace
{

// A system that has no room for another thread.
class NoThreads
{
public:
    NoThreads()
    {
        pthread_getattr_default_np(&before_);
        pthread_attr_t greedy;
        pthread_attr_init(&greedy);
        pthread_attr_setstacksize(&greedy, std::size_t{1} << 46);
        REQUIRE(pthread_setattr_default_np(&greedy) == 0);
        pthread_attr_destroy(&greedy);
    }
    ~NoThreads()
    {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }

private:
    pthread_attr_t before_;
};

// Work that is held up until it is let go.
struct HeldUp {
    std::shared_ptr<std::atomic<bool>> isFree = std::make_shared<std::atomic<bool>>(false);

    std::unique_ptr<int> operator()() const
    {
        while (!*isFree)
            std::this_thread::sleep_for(1ms);
        return std::make_unique<int>(7);
    }
};

using Number = std::unique_ptr<int>;

}

TEST_CASE("An errand has its result once")
{
    files::Errand<Number> errand([] { return std::make_unique<int>(7); });
    const auto result = errand.result(30s);
    REQUIRE(result);
    CHECK(**result == 7);
    CHECK(errand.hasEnded());
    CHECK_FALSE(errand.result(30s));
}

TEST_CASE("An errand that is late is abandoned, and its result goes where late ones go")
{
    const HeldUp work;
    std::atomic<int> late{0};
    files::Errand<Number> errand(work, [&](const Number& number) { late = *number; });
    CHECK_FALSE(errand.result(1ms));
    CHECK_FALSE(errand.hasEnded());
    *work.isFree = true;
    REQUIRE(waitUntil([&] { return late == 7; }));
    CHECK(errand.hasEnded());
    CHECK_FALSE(errand.result(30s));
}

TEST_CASE("An errand that is late and has no memory left goes nowhere")
{
    const HeldUp work;
    std::atomic<bool> isTold{false};
    files::Errand<Number> errand(
        [work]() -> Number {
            work();
            throw std::bad_alloc();
        },
        [&](const Number&) { isTold = true; });
    CHECK_FALSE(errand.result(1ms));
    *work.isFree = true;
    CHECK(waitUntil([&] { return errand.hasEnded(); }));
    CHECK_FALSE(isTold);
}

TEST_CASE("An errand outlasts whoever sent it, and lets go of what it holds")
{
    std::weak_ptr<std::atomic<bool>> held;
    {
        const HeldUp work;
        held = work.isFree;
        CHECK_FALSE(files::Errand<Number>(work).result(0ms));
    }
    REQUIRE(held.lock());
    *held.lock() = true;
    CHECK(waitUntil([&] { return held.expired(); }));
}

namespace
{

// Other work that wants the one processor on which this thread, and those that it begins, may run.
class Crowd
{
public:
    Crowd()
    {
        sched_getaffinity(0, sizeof before_, &before_);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        REQUIRE(sched_setaffinity(0, sizeof one, &one) == 0);
        for (int i = 0; i < 8; ++i)
            others_.emplace_back([](const std::stop_token& stop) {
                while (!stop.stop_requested())
                    continue;
            });
    }
    ~Crowd() { sched_setaffinity(0, sizeof before_, &before_); }

private:
    cpu_set_t before_;
    std::vector<std::jthread> others_;
};

std::chrono::nanoseconds ownProcessorTime()
{
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

}

TEST_CASE("A question that has to wait for the processor is not taken for one that hangs")
{
    const Crowd crowd;
    const std::function<int()> ask = [] {
        while (ownProcessorTime() < 25ms)
            continue;
        return 7;
    };
    for (int time = 0; time < 3; ++time)
        CHECK(files::answerWithin<int>(50ms, "busy", ask) == 7);
}

TEST_CASE("A question that takes the processor for too long is late like any other")
{
    std::atomic<bool> isFree = false;
    std::atomic<int> late = 0;
    const std::function<int()> ask = [&] {
        while (!isFree)
            continue;
        return 7;
    };
    CHECK_FALSE(files::answerWithin<int>(20ms, "long", ask, [&](int answer) { late = answer; }));
    isFree = true;
    CHECK(waitUntil([&] { return late == 7; }));
}

TEST_CASE("Where no thread is to be had, an errand has ended without a result, at once")
{
    bool isAsked = false;
    const std::function<int()> ask = [&] {
        isAsked = true;
        return 7;
    };
    {
        const NoThreads none;
        files::Errand<int> errand(ask);
        CHECK(errand.hasEnded());
        CHECK_FALSE(errand.result(1h));
        CHECK_FALSE(files::answerWithin<int>(1h, "no thread", ask));
    }
    CHECK_FALSE(isAsked);
    CHECK(files::answerWithin<int>(30s, "no thread", ask) == 7);
}

TEST_CASE("Work that comes on is waited for however long it takes, and work that stands still is given up")
{
    std::atomic<bool> isFree{false};
    std::atomic<bool> isUndone{false};
    const std::function<int(files::Steps&)> slow = [&](files::Steps& steps) {
        for (int i = 0; i < 50; ++i) {
            std::this_thread::sleep_for(100ms);
            steps.take();
        }
        return 7;
    };
    const std::function<int(files::Steps&)> still = [&](files::Steps& steps) {
        steps.take();
        while (!isFree)
            std::this_thread::sleep_for(1ms);
        isUndone = !succeeds([&] { steps.take(); });
        return 8;
    };
    CHECK(files::resultWhileMoving<int>(2s, "moving", slow) == 7);
    CHECK_FALSE(files::resultWhileMoving<int>(100ms, "still", still));
    CHECK(files::isUnanswered("still"));
    CHECK_FALSE(files::resultWhileMoving<int>(30s, "still", still));
    isFree = true;
    CHECK(waitUntil([] { return !files::isUnanswered("still"); }));
    CHECK(isUndone);
}
