// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/tasks.h"

#include <doctest/doctest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

using namespace codec;

TEST_CASE("Every task runs once, whatever the number of workers")
{
    for (const unsigned workers : {0u, 1u, 2u, 7u, 100u}) {
        CAPTURE(workers);
        std::vector<std::atomic<int>> runs(50);
        runTasks(workers, runs.size(), {}, [&](std::size_t i, const std::stop_token&) { ++runs[i]; });
        for (const auto& count : runs)
            CHECK(count == 1);
    }
    runTasks(3, 0, {}, [](std::size_t, const std::stop_token&) { FAIL("there is no task"); });
}

TEST_CASE("Tasks run side by side")
{
    std::atomic<int> running = 0;
    runTasks(3, 3, {}, [&](std::size_t, const std::stop_token&) {
        ++running;
        while (running < 3)
            std::this_thread::yield();
    });
    CHECK(running == 3);
}

TEST_CASE("The first failure stops the others and is thrown on")
{
    std::atomic<int> begun = 0;
    const auto task = [&](std::size_t i, const std::stop_token& stop) {
        ++begun;
        if (i == 1)
            throw 42;
        while (!stop.stop_requested())
            std::this_thread::yield();
        throw Stopped{};
    };
    CHECK_THROWS_AS(runTasks(2, 100, {}, task), int);
    CHECK(begun == 2);
}

TEST_CASE("Tasks end when the caller is asked to stop")
{
    std::stop_source stop;
    std::atomic<int> begun = 0;
    CHECK_THROWS_AS(runTasks(1, 100, stop.get_token(),
                             [&](std::size_t, const std::stop_token&) {
                                 ++begun;
                                 stop.request_stop();
                             }),
                    Stopped);
    CHECK(begun == 1);
}

TEST_CASE("Progress of several threads never goes back and ends at a thousand")
{
    std::vector<std::int32_t> told;
    Progress progress(80000, [&](std::int32_t thousandths) { told.push_back(thousandths); });
    runTasks(4, 8, {}, [&](std::size_t, const std::stop_token&) {
        for (int i = 0; i < 10000; ++i)
            progress.add(1);
    });
    CHECK(told.size() == 1000);
    CHECK(std::set<std::int32_t>(told.begin(), told.end()).size() == 1000);
    CHECK(std::is_sorted(told.begin(), told.end()));
    progress.add(5);
    CHECK(told.size() == 1000);
}
