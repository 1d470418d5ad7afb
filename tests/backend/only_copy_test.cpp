// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/only_copy.h"

#include "tests/support/answer_of_child.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/socket.h>
#include <sys/un.h>

#include <filesystem>
#include <optional>
#include <thread>

namespace
{

// A bus that takes who comes and never says a word.
struct SilentBus {
    explicit SilentBus(const Text& path)
    {
        sockaddr_un address{AF_UNIX, {}};
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        REQUIRE(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
        REQUIRE(listen(listener, 1) == 0);
    }
    ~SilentBus()
    {
        close(guest);
        close(listener);
    }
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

    void await() { guest = accept(listener, nullptr, nullptr); }

    int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int guest = -1;
};

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
    SilentBus bus(copies.folder / "socket");
    copies.environment.busAddress = "unix:path=" + copies.folder / "socket";
    std::optional<desktop::CopyLock> first(copies.environment);
    std::thread ending([&] {
        bus.await(); // the first one is asked
        first.reset();
    });
    const desktop::OnlyCopy copy(copies.environment);
    ending.join();
    CHECK(copies.inTheWay() == "this process");
}
