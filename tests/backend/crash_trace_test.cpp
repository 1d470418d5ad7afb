// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/crash_trace.h"

#include "tests/fakes/scripted_services.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <sys/resource.h>
#include <thread>

namespace
{

struct Desk {
    TemporaryFolder temporary;
    Text folder = temporary / "state/Velmora"; // not there yet
    Text trace = folder + "/crash.txt";
    RecordingShell shell;

    // How a process ended that leaves traces and does this.
    int endOf(const std::function<void()>& deed) const
    {
        return Child([&] {
                   const rlimit none{};
                   setrlimit(RLIMIT_CORE, &none);
                   for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTERM, SIGINT})
                       std::signal(signal, SIG_DFL); // the test's own
                   desktop::traceCrashes(folder, "9.8.7-build");
                   deed();
               })
            .wait();
    }
};

// A sanitizer that looks for it would take its say.
[[gnu::no_sanitize("undefined")]] void writeToNowhere()
{
    volatile char* volatile nowhere = nullptr;
    *nowhere = 1; // NOLINT(clang-analyzer-core.NullDereference): it is to crash
}

// Not to be seen through by the compiler, which would make a loop of it. In large steps: the thread sanitizer
// notes each call, and has room for 65,536 at a time.
[[gnu::noinline]] int deep(volatile int* above)
{
    volatile int here[256];
    here[0] = *above + 1;
    return here[0] < 0 ? 0 : deep(here) + here[0];
}

}

TEST_CASE("A fatal signal leaves the build, the signal and the stack, and ends the process as it would have")
{
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        CAPTURE(signal);
        const Desk desk;
        CHECK(desk.endOf([signal] { raise(signal); }) == 128 + signal);
        const Text trace = fileBytes(desk.trace);
        CHECK(trace.starts_with("Velmora 9.8.7-build\nsignal " + std::to_string(signal) + "\naddress 0x"));
        CHECK(trace.find("backend_tests") != Text::npos);
        CHECK(std::ranges::count(trace, '\n') > 8);
    }
}

TEST_CASE("Nothing is left by what is no crash")
{
    for (const int signal : {SIGKILL, SIGTERM, SIGINT, SIGHUP}) {
        const Desk desk;
        CHECK(desk.endOf([signal] { raise(signal); }) == 128 + signal);
        CHECK_FALSE(std::filesystem::exists(desk.folder));
    }
    const Desk desk;
    CHECK(desk.endOf([] {}) == 0);
    CHECK_FALSE(std::filesystem::exists(desk.folder));
}

TEST_CASE("A failed access, a stack that ran out and another thread's crash leave a trace")
{
    struct Case {
        Text what;
        void (*deed)();
        int signal;
    };
    const Case cases[] = {
        {"an access to nowhere", writeToNowhere, SIGSEGV},
        {"a stack that ran out",
         [] {
             volatile int bottom = 0;
             std::exit(deep(&bottom));
         },
         SIGSEGV},
        {"another thread", [] { std::thread([] { std::abort(); }).join(); }, SIGABRT},
        {"a failure that nobody takes", [] { std::thread([] { throw 1; }).join(); }, SIGABRT},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Desk desk;
        CHECK(desk.endOf(c.deed) == 128 + c.signal);
        CHECK(fileBytes(desk.trace).find("\nsignal " + std::to_string(c.signal) + "\n") != Text::npos);
    }
}

TEST_CASE("Many threads that crash together end the process once")
{
    const Desk desk;
    const int end = desk.endOf([] {
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([] { raise(SIGSEGV); });
        for (auto& thread : threads)
            thread.join();
    });
    CHECK(end == 128 + SIGSEGV);
    const Text trace = fileBytes(desk.trace);
    CHECK(trace.find("Velmora") == trace.rfind("Velmora 9.8.7"));
}

TEST_CASE("A signal that somebody handles stays theirs")
{
    const Desk desk;
    CHECK(desk.endOf([&] {
        std::signal(SIGFPE, [](int) { _exit(5); });
        desktop::traceCrashes(desk.folder, "another");
        raise(SIGFPE);
    }) == 5);
    CHECK_FALSE(std::filesystem::exists(desk.folder));
}

TEST_CASE("Where a trace cannot be written the process ends all the same")
{
    const Desk desk;
    putFile(desk.temporary / "state", "a file where the folder would be");
    CHECK(desk.endOf([] { raise(SIGSEGV); }) == 128 + SIGSEGV);
    CHECK(fileBytes(desk.temporary / "state") == "a file where the folder would be");
}

TEST_CASE("A trace is not written through a link")
{
    const Desk desk;
    std::filesystem::create_directories(desk.folder);
    putFile(desk.temporary / "mine", "mine");
    std::filesystem::create_symlink(desk.temporary / "mine", desk.trace);
    CHECK(desk.endOf([] { raise(SIGSEGV); }) == 128 + SIGSEGV);
    CHECK(fileBytes(desk.temporary / "mine") == "mine");
}

TEST_CASE("A trace is told of once, and kept until the next crash")
{
    Desk desk;
    desktop::tellOfCrash(desk.folder, desk.shell);
    CHECK(desk.shell.told.empty());
    desk.endOf([] { raise(SIGSEGV); });
    const Text trace = fileBytes(desk.trace);
    for (int start = 0; start < 2; ++start) {
        desktop::tellOfCrash(desk.folder, desk.shell);
        CHECK(desk.shell.told == std::vector<Text>{"Velmora crashed: What is known of it is in " +
                                                   desk.folder + "/last crash.txt."});
        CHECK(fileBytes(desk.folder + "/last crash.txt") == trace);
        CHECK(namesInFolder(desk.folder) == std::set<Text>{"last crash.txt"});
    }
}
