// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/only_copy.h"

#include "tests/support/answer_of_child.h"
#include "tests/support/silent_server.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <filesystem>
#include <optional>
#include <thread>

namespace
{

struct Copies {
    TemporaryFolder folder;
    desktop::Environment environment{
        .executable = folder / "velmora", .home = folder / "home", .runtimeFolder = folder.path()};

    // Of another process that starts now.
    Text inTheWay() const
    {
        return answerOfChild([&]() -> Text {
            const pid_t holder = desktop::CopyLock(environment).holder();
            return holder == getppid() ? "this process" : std::to_string(holder);
        });
    }
};

}

TEST_CASE("A start while the first copy does not answer ends with a failure")
{
    const Copies copies;
    const desktop::CopyLock first(copies.environment);
    Child second([&] { desktop::OnlyCopy copy(copies.environment); });
    CHECK(second.wait() == 1);
}

TEST_CASE("A start while the first copy is ending goes on in its place")
{
    Copies copies;
    SilentServer bus(copies.folder / "socket");
    copies.environment.busAddress = "unix:path=" + copies.folder / "socket";
    std::optional<desktop::CopyLock> first(copies.environment);
    bool isAsked = false;
    std::thread ending([&] {
        isAsked = bus.await();
        first.reset();
    });
    const desktop::OnlyCopy copy(copies.environment);
    ending.join();
    CHECK(isAsked);
    CHECK(copies.inTheWay() == "this process");
}
