// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/desktop_sleep_lock.h"

#include "tests/support/private_bus.h"
#include "tests/support/timing.h"

#include <doctest/doctest.h>

#include <chrono>

TEST_CASE("The login manager keeps the system awake until everything has ended")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned login({SLEEP_SERVICE, bus.address, "login"});
    REQUIRE(login.line() == "ready");
    desktop::DesktopSleepLock lock(bus.address, "");
    lock.begin("Reading a disc");
    CHECK(login.line() == "sleep|Velmora|Reading a disc|block");
    lock.begin("Writing a disc");
    lock.end();
    lock.end();
    CHECK(login.line() == "let go");
    lock.begin("Writing a disc");
    CHECK(login.line() == "sleep|Velmora|Writing a disc|block");
    lock.end();
    CHECK(login.line() == "let go");
}

TEST_CASE("The portal does it where there is no login manager")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned portal({SLEEP_SERVICE, bus.address, "portal"});
    REQUIRE(portal.line() == "ready");
    for (const Text& systemBus : {Text(), Text("unix:path=/nowhere"), bus.address}) {
        CAPTURE(systemBus);
        desktop::DesktopSleepLock lock(systemBus, bus.address);
        lock.begin("Reading a disc");
        CHECK(portal.line() == "4|Reading a disc");
        lock.end();
        CHECK(portal.line() == "let go");
    }
}

TEST_CASE("The program's end lets the system sleep")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned login({SLEEP_SERVICE, bus.address, "login"});
    REQUIRE(login.line() == "ready");
    {
        desktop::DesktopSleepLock lock(bus.address, "");
        lock.begin("Reading a disc");
        CHECK(login.line() == "sleep|Velmora|Reading a disc|block");
    }
    CHECK(login.line() == "let go");
}

TEST_CASE("A desktop that gives no lock costs nothing, and nobody waits for one")
{
    const double best = atBest(100, [] {
        const auto begun = std::chrono::steady_clock::now();
        desktop::DesktopSleepLock lock("", "unix:path=/nowhere");
        for (int i = 0; i < 100; ++i) {
            lock.begin("Reading a disc");
            lock.end();
        }
        return millisecondsSince(begun);
    });
    CHECK(best < 100);
}

TEST_CASE("Nothing is asked for before something begins")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned login({SLEEP_SERVICE, bus.address, "login"});
    REQUIRE(login.line() == "ready");
    const desktop::DesktopSleepLock idle(bus.address, "");
    desktop::DesktopSleepLock other(bus.address, "");
    other.begin("The first to ask");
    CHECK(login.line() == "sleep|Velmora|The first to ask|block");
    other.end();
}

TEST_CASE("A login manager that hangs does not hold up the end")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned login({SLEEP_SERVICE, bus.address, "login"});
    REQUIRE(login.line() == "ready");
    login.hang();
    const double best = atBest(100, [&] {
        auto lock = std::make_unique<desktop::DesktopSleepLock>(bus.address, "");
        lock->begin("Reading a disc");
        const auto then = std::chrono::steady_clock::now();
        lock.reset();
        return millisecondsSince(then);
    });
    login.wakeUp();
    CHECK(best < 100);
}
