// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/second_start.h"

#include "platform/post.h"
#include "tests/support/private_bus.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <memory>

namespace
{

struct NoWindow final : Post {
    void post(std::function<void()>) override {}
};

// Names on that bus that this process owns, by the bus's own tool.
bool isOnBus(const PrivateBus& bus)
{
    const Text name = "process" + std::to_string(getpid());
    Spawned tool({"dbus-send", "--bus=" + bus.address, "--print-reply", "--dest=org.freedesktop.DBus", "/",
                  "org.freedesktop.DBus.ListNames"});
    Text line;
    for (int lines = 0; lines < 50 && line.find(name) == Text::npos; ++lines)
        line = tool.line();
    return line.find(name) != Text::npos;
}

double endOf(std::unique_ptr<desktop::SecondStarts> starts)
{
    const auto then = std::chrono::steady_clock::now();
    starts.reset();
    return millisecondsSince(then);
}

}

TEST_CASE("A bus that hangs after it was met does not hold up the end")
{
    const double best = atBest(100, [] {
        PrivateBus bus;
        REQUIRE(bus.runs());
        NoWindow window;
        auto starts = std::make_unique<desktop::SecondStarts>(bus.address, window);
        REQUIRE(waitUntil([&] { return isOnBus(bus); }));
        bus.daemon.hang();
        return endOf(std::move(starts));
    });
    CHECK(best < 100);
}

TEST_CASE("A bus that hangs before it is met does not hold up the end")
{
    const double best = atBest(100, [] {
        PrivateBus bus;
        REQUIRE(bus.runs());
        NoWindow window;
        bus.daemon.hang();
        auto starts = std::make_unique<desktop::SecondStarts>(bus.address, window);
        usleep(50'000); // as a start takes until it ends at the earliest
        const double milliseconds = endOf(std::move(starts));
        bus.daemon.wakeUp();
        return milliseconds;
    });
    CHECK(best < 100);
}
