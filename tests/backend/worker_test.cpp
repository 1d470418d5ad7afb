// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/worker.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <atomic>
#include <vector>

using namespace std::chrono_literals;

namespace
{

using Clock = std::chrono::steady_clock;
using AtEnd = Worker::AtEnd;

// Holds up a call until it is let go.
struct Held {
    std::shared_ptr<std::atomic<bool>> hasBegun = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<std::atomic<bool>> isFree = std::make_shared<std::atomic<bool>>(false);

    void operator()(const std::stop_token&) const
    {
        *hasBegun = true;
        while (!*isFree)
            std::this_thread::sleep_for(1ms);
    }
    bool begins() const
    {
        return waitUntil([&] { return hasBegun->load(); });
    }
};

std::clock_t processorTime() { return std::clock(); }

}

TEST_CASE("Calls are carried out one after the other, in their order, on one other thread")
{
    std::vector<int> numbers;
    std::vector<std::thread::id> threads;
    Worker worker(AtEnd::joins);
    for (int i = 0; i < 100; ++i)
        worker.add([&, i](const std::stop_token&) {
            numbers.push_back(i);
            threads.push_back(std::this_thread::get_id());
        });
    worker.finish();
    REQUIRE(numbers.size() == 100);
    CHECK(std::ranges::is_sorted(numbers));
    CHECK(std::ranges::count(threads, threads.front()) == 100);
    CHECK(threads.front() != std::this_thread::get_id());
}

TEST_CASE("The end asks the call at work to stop, waits for it, and leaves out those behind it")
{
    std::atomic<bool> hasStopped = false;
    std::atomic<bool> isCarriedOut = false;
    std::atomic<bool> hasBegun = false;
    const auto held = std::make_shared<int>();
    {
        Worker worker(AtEnd::joins);
        worker.add([&](const std::stop_token& stop) {
            hasBegun = true;
            while (!stop.stop_requested())
                std::this_thread::sleep_for(1ms);
            hasStopped = true;
        });
        worker.add([&, held](const std::stop_token&) { isCarriedOut = true; });
        REQUIRE(waitUntil([&] { return hasBegun.load(); }));
        CHECK_FALSE(worker.isDoneBy(Clock::now() + 10ms));
    }
    CHECK(hasStopped);
    CHECK_FALSE(isCarriedOut);
    CHECK(held.use_count() == 1);
}

TEST_CASE("A call that is held up holds up no end for longer than nobody notices, and keeps what it needs")
{
    const Held held;
    const auto needed = std::make_shared<int>();
    const double best = atBest(100, [&] {
        *held.hasBegun = false;
        auto worker = std::make_unique<Worker>(AtEnd::abandons);
        worker->add([held, needed](const std::stop_token& stop) { held(stop); });
        REQUIRE(held.begins());
        const auto then = Clock::now();
        worker.reset();
        return millisecondsSince(then);
    });
    CHECK(best < 100);
    CHECK(needed.use_count() > 1);
    *held.isFree = true;
    CHECK(waitUntil([&] { return needed.use_count() == 1; }));
}

TEST_CASE("A turn comes behind calls and at the time that it gave, and on the same thread at the end")
{
    std::atomic<int> turns = 0;
    std::atomic<int> calls = 0;
    std::thread::id lastOwner;
    std::thread::id caller;
    struct Owned {
        explicit Owned(std::thread::id& whose) : owner(whose) {}
        ~Owned() { owner = std::this_thread::get_id(); }
        std::thread::id& owner;
    };
    {
        Worker worker(AtEnd::joins, [&, owned = std::make_shared<Owned>(lastOwner)] {
            ++turns;
            return Clock::now() + 5ms;
        });
        CHECK(turns == 0);
        worker.add([&](const std::stop_token&) {
            ++calls;
            caller = std::this_thread::get_id();
        });
        CHECK(waitUntil([&] { return calls == 1 && turns > 10; }));
    }
    CHECK(lastOwner == caller);
}

TEST_CASE("A worker that has nothing to do takes no processor time")
{
    Worker worker(AtEnd::joins);
    worker.add([](const std::stop_token&) {});
    worker.finish();
    const auto before = processorTime();
    std::this_thread::sleep_for(500ms);
    CHECK(static_cast<double>(processorTime() - before) / CLOCKS_PER_SEC < 0.1);
}
