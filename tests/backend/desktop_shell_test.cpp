// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/desktop_shell.h"

#include "desktop/programs.h"
#include "desktop/tool_registry.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/private_bus.h"
#include "tests/support/spawned.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/timing.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <iterator>
#include <sstream>
#include <thread>

namespace
{

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

template <typename Condition>
bool comesTrue(Condition condition)
{
    const auto start = Clock::now();
    while (!condition() && secondsSince(start) < 10)
        usleep(1000);
    return condition();
}

// A folder of programs that write down what they are, as the search path.
struct Programs {
    TemporaryFolder folder;
    Text output = folder / "output";
    desktop::Environment environment{.searchPath = "relative::" + folder.path() + ":/usr/bin:/bin"};

    Text program(const Text& name, const Text& script, mode_t mode = 0755)
    {
        putFile(folder / name, "#!/bin/sh\n" + script + "\n");
        chmod((folder / name).c_str(), mode);
        return folder / name;
    }
    // Prints its name and arguments, one a line, into the output in one step.
    Text recorder(const Text& name)
    {
        const Text new_ = output + ".new";
        return program(name, "printf '%s\\n' \"${0##*/}\" \"$@\" > '" + new_ + "'; mv '" + new_ + "' '" +
                                 output + "'");
    }
    Text started(const Text& path)
    {
        std::filesystem::remove(output);
        desktop::DesktopShell(environment).startProgram(path);
        CHECK(comesTrue([&] { return std::filesystem::exists(output); }));
        return fileBytes(output);
    }
    int failure(const Text& path)
    {
        return failureOf([&] { desktop::DesktopShell(environment).startProgram(path); });
    }
};

// What goes to standard error while it lives.
class CapturedErrors
{
public:
    CapturedErrors() : before_(dup(STDERR_FILENO))
    {
        const int file = open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        dup2(file, STDERR_FILENO);
        close(file);
    }
    ~CapturedErrors() { restore(); }

    Text soFar() const { return fileBytes(path_); }
    Text text()
    {
        restore();
        return fileBytes(path_);
    }

private:
    void restore()
    {
        if (before_ >= 0) {
            dup2(before_, STDERR_FILENO);
            close(before_);
        }
        before_ = -1;
    }

    TemporaryFolder folder_;
    Text path_ = folder_ / "errors";
    int before_;
};

Spawned service(const PrivateBus& bus, std::vector<Text> abilities = {})
{
    abilities.insert(abilities.begin(), {NOTIFICATION_SERVICE, bus.address});
    return Spawned(abilities);
}

}

TEST_CASE("A program is started by its path, blanks and all, or by its words")
{
    Programs programs;
    const Text blank = programs.recorder("my tool");
    const Text tool = programs.recorder("tool");
    const struct {
        const char* what;
        Text path;
        Text recorded;
    } cases[] = {
        {"a path", tool, "tool\n"},
        {"a path with blanks", blank, "my tool\n"},
        {"a path and arguments", tool + " one  two ", "tool\none\ntwo\n"},
        {"a name", "tool", "tool\n"},
        {"a name and an argument", "tool info-overview", "tool\ninfo-overview\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(programs.started(c.path) == c.recorded);
    }
}

TEST_CASE("Starting fails where there is no program")
{
    Programs programs;
    const struct {
        const char* what;
        Text path;
        int number;
    } cases[] = {
        {"nothing", "", 53},
        {"blanks", "  ", 53},
        {"a path to nothing", programs.folder / "none", 53},
        {"a name that is nowhere", "no-such-program", 53},
        {"a folder", programs.folder.path(), 53},
        {"a name in a relative folder of the path", "relative", 53},
        {"a file that is no program", programs.program("text", "", 0644), 70},
        {"a program of an unknown kind", programs.folder / "rubbish", 75},
        {"a script without its interpreter", programs.folder / "orphan", 53},
    };
    putFile(programs.folder / "rubbish", "\x01\x02");
    chmod((programs.folder / "rubbish").c_str(), 0755);
    putFile(programs.folder / "orphan", "#!/no/such/interpreter\n");
    chmod((programs.folder / "orphan").c_str(), 0755);
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(programs.failure(c.path) == c.number);
    }
}

TEST_CASE("A started program is nobody's child, has a session of its own and no open files of ours")
{
    Programs programs;
    const int careless =
        fcntl(STDERR_FILENO, F_DUPFD, 77); // without close-on-exec, as a library may leave one
    const Text own = "/proc/$$/fd/";
    const Text report = programs.output + ".new";
    const Text tool = programs.program("tool", "{ cut -d' ' -f4,6 /proc/$$/stat; readlink " + own + "0 " +
                                                   own + "2; ls " + own + "; } > '" + report + "'; mv '" +
                                                   report + "' '" + programs.output + "'");
    std::istringstream answers(programs.started(tool));
    close(careless);
    pid_t parent = 0, session = 0;
    Text input, errors;
    answers >> parent >> session >> input >> errors;
    const std::set<Text> files{std::istream_iterator<Text>(answers), {}};
    CHECK(parent != getpid());
    CHECK(session != getsid(0));
    CHECK(input == "/dev/null");
    CHECK(errors == "/dev/null");
    CHECK(files.count("1") == 1);
    CHECK(files.count(std::to_string(careless)) == 0);
    CHECK(waitpid(-1, nullptr, WNOHANG) == -1); // no zombie, no child at all
}

TEST_CASE("A started program ignores and holds back no signal that this one does")
{
    Programs programs;
    const Text report = programs.output + ".new";
    const Text tool = programs.program("tool", "grep Sig[BI] /proc/self/status > '" + report + "'; mv '" +
                                                   report + "' '" + programs.output + "'");
    const int numbers[] = {SIGPIPE, SIGHUP, SIGINT, SIGQUIT};
    std::vector<sighandler_t> before;
    for (const int number : numbers)
        before.push_back(signal(number, SIG_IGN));
    sigset_t all, maskBefore;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &maskBefore);
    const Text said = programs.started(tool);
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    for (std::size_t i = 0; i < before.size(); ++i)
        signal(numbers[i], before[i]);
    CHECK(said == "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

TEST_CASE("A started program gets the stack that this one was given")
{
    Programs programs;
    const Text report = programs.output + ".new";
    const Text tool = programs.program("tool", "ulimit -s > '" + report + "'; mv '" + report + "' '" +
                                                   programs.output + "'");
    rlimit before;
    REQUIRE(getrlimit(RLIMIT_STACK, &before) == 0);
    const rlimit raised{std::min<rlim_t>(before.rlim_max, 256 << 20), before.rlim_max};
    REQUIRE(setrlimit(RLIMIT_STACK, &raised) == 0);
    desktop::DesktopShell(programs.environment, 4 << 20).startProgram(tool);
    CHECK(comesTrue([&] { return std::filesystem::exists(programs.output); }));
    CHECK(fileBytes(programs.output) == "4096\n");
    setrlimit(RLIMIT_STACK, &before);
}

TEST_CASE("Starting does not wait for the program, which outlives the shell")
{
    Programs programs;
    const Text pipe = programs.folder / "pipe";
    REQUIRE(mkfifo(pipe.c_str(), 0600) == 0);
    const Text tool =
        programs.program("tool", "read line < '" + pipe + "'; echo done > '" + programs.output + "'");
    const auto start = Clock::now();
    desktop::DesktopShell(programs.environment).startProgram(tool);
    CHECK(secondsSince(start) < 5);
    CHECK_FALSE(std::filesystem::exists(programs.output));
    putFile(pipe, "go\n");
    CHECK(comesTrue([&] { return fileBytes(programs.output) == "done\n"; }));
}

TEST_CASE("The registry offers the first tool that the desktop has")
{
    constexpr std::uint32_t localMachine = 0x80000002;
    constexpr const char* key = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
    Programs programs;
    desktop::ToolRegistry registry(programs.folder.path());
    Registry::Key open = 77;
    CHECK(registry.RegOpenKeyEx(localMachine, key, 0x2003F, open) == 2);
    CHECK(open == 0);

    const auto value = [&] {
        Text buffer(1024, '\0');
        std::uint32_t size = 1024, type = 0;
        REQUIRE(registry.RegOpenKeyEx(localMachine, key, 0x2003F, open) == 0);
        REQUIRE(registry.RegQueryValueEx(open, "PATH", type, buffer, size) == 0);
        CHECK(registry.RegCloseKey(open) == 0);
        CHECK(type == 1);
        CHECK(buffer.size() == 1024);
        CHECK(buffer[size - 1] == '\0');
        return buffer.substr(0, size - 1);
    };
    programs.program("hardinfo", "");
    CHECK(value() == programs.folder / "hardinfo");
    programs.recorder("gnome-control-center");
    CHECK(value() == programs.folder / "gnome-control-center info-overview");
    CHECK(programs.started(value()) == "gnome-control-center\ninfo-overview\n");
    programs.program("kinfocenter", "", 0644);
    CHECK(value() == programs.folder / "gnome-control-center info-overview");
    programs.program("kinfocenter", "");
    CHECK(value() == programs.folder / "kinfocenter");
}

TEST_CASE("The registry has nothing else")
{
    constexpr std::uint32_t localMachine = 0x80000002;
    Programs programs;
    programs.program("hardinfo", "");
    desktop::ToolRegistry registry(programs.folder.path());
    Registry::Key key = 77;
    CHECK(registry.RegOpenKeyEx(localMachine, "SOFTWARE\\Microsoft\\Shared Tools Location", 0, key) == 2);
    CHECK(key == 0);
    CHECK(registry.RegOpenKeyEx(0x80000001, "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", 0, key) == 2);
    REQUIRE(registry.RegOpenKeyEx(localMachine, "software\\microsoft\\shared tools\\msinfo", 0, key) == 0);
    Text buffer(8, '#');
    std::uint32_t size = 8, type = 0;
    CHECK(registry.RegQueryValueEx(key, "MSINFO", type, buffer, size) == 2);
    CHECK(registry.RegQueryValueEx(key, "path", type, buffer, size) == 234);
    CHECK(size == (programs.folder / "hardinfo").size() + 1);
    CHECK(buffer == "########");
    buffer = Text(size, '#');
    CHECK(registry.RegQueryValueEx(key, "path", type, buffer, size) == 0); // which just fits
    CHECK(buffer == programs.folder / "hardinfo" + '\0');
    CHECK(registry.RegQueryValueEx(0, "PATH", type, buffer, size) == 6);
    CHECK(registry.RegCloseKey(0) == 6);
}

TEST_CASE("The session bus is the one that is named or the user's usual one, never a new one")
{
    const TemporaryFolder runtime;
    const Text usual = "unix:path=" + runtime / "bus";
    CHECK(desktop::sessionBusAddress({}).empty());
    CHECK(desktop::sessionBusAddress({.runtimeFolder = runtime.path()}).empty());
    putFile(runtime / "bus", "");
    CHECK(desktop::sessionBusAddress({.runtimeFolder = runtime.path()}) == usual);
    CHECK(desktop::sessionBusAddress({.runtimeFolder = runtime.path(), .busAddress = "unix:path=/x"}) ==
          "unix:path=/x");
    CHECK(desktop::sessionBusAddress({.runtimeFolder = runtime.path(), .busAddress = "disabled:"}) ==
          "disabled:");
    CHECK(desktop::sessionBusAddress({.runtimeFolder = runtime.path(), .busAddress = "autolaunch:"}).empty());
}

TEST_CASE("The system bus is the one that is named or the usual one")
{
    CHECK(desktop::systemBusAddress({}) == "unix:path=/run/dbus/system_bus_socket");
    CHECK(desktop::systemBusAddress({.systemBus = "unix:path=/x"}) == "unix:path=/x");
}

TEST_CASE("Without a bus a notification is a line on standard error, at once")
{
    const TemporaryFolder folder;
    const struct {
        const char* what;
        Text address;
    } cases[] = {
        {"none", ""},
        {"disabled", "disabled:"},
        {"rubbish", "disabled"},
        {"a bus that is gone", "unix:path=" + folder / "none"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CapturedErrors errors;
        const auto start = Clock::now();
        {
            desktop::DesktopShell shell({.busAddress = c.address});
            shell.notify("Not encoded", "/music/a.wav: disk full");
            shell.notify("Not encoded", "/music/b.wav: disk full");
        }
        CHECK(secondsSince(start) < 2);
        CHECK(errors.text() == "Velmora: Not encoded: /music/a.wav: disk full\n"
                               "Velmora: Not encoded: /music/b.wav: disk full\n");
    }
}

TEST_CASE("A shell that has nothing to tell connects to nothing")
{
    CapturedErrors errors;
    {
        desktop::DesktopShell shell({.busAddress = "disabled:"});
    }
    CHECK(errors.text().empty());
}

TEST_CASE("A notification reaches the desktop's service")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned desktop = service(bus);
    REQUIRE(desktop.line() == "ready");
    CapturedErrors errors;
    {
        desktop::DesktopShell shell({.busAddress = bus.address});
        shell.notify("Not encoded", "/music/a & b <live>.wav");
        CHECK(desktop.line() == "Velmora|Not encoded|/music/a & b <live>.wav");
        shell.notify("Not encoded", "/music/caf\xC3\xA9");
        CHECK(desktop.line() == "Velmora|Not encoded|/music/caf\xC3\xA9");
        shell.notify("Not encoded", "/music/caf\xE9");
        CHECK(desktop.line() == "Velmora|Not encoded|/music/caf\xEF\xBF\xBD");
    }
    CHECK(errors.text().empty());
}

TEST_CASE("A service that takes markup gets names of files as they are meant")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned desktop = service(bus, {"body", "body-markup"});
    REQUIRE(desktop.line() == "ready");
    desktop::DesktopShell shell({.busAddress = bus.address});
    shell.notify("R&B", "/music/a & b <live>.wav");
    CHECK(desktop.line() == "Velmora|R&B|/music/a &amp; b &lt;live&gt;.wav");
}

TEST_CASE("Threads notify without waiting, and nothing is lost")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    Spawned desktop = service(bus);
    REQUIRE(desktop.line() == "ready");
    desktop::DesktopShell shell({.busAddress = bus.address});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 25; ++j)
                shell.notify("title", "message");
        });
    for (auto& thread : threads)
        thread.join();
    int lines = 0;
    while (lines < 100 && desktop.line() == "Velmora|title|message")
        ++lines;
    CHECK(lines == 100);
}

TEST_CASE("A bus without the service, and one that is lost, leave the line on standard error")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    CapturedErrors errors;
    {
        desktop::DesktopShell shell({.busAddress = bus.address});
        shell.notify("one", "no service");
        CHECK(comesTrue([&] { return errors.soFar() == "Velmora: one: no service\n"; }));
        Spawned desktop = service(bus);
        CHECK(desktop.line() == "ready");
        shell.notify("two", "taken");
        CHECK(desktop.line() == "Velmora|two|taken");
        bus.daemon.kill();
        shell.notify("three", "no bus");
    }
    CHECK(errors.text().ends_with("Velmora: three: no bus\n"));
}

TEST_CASE("A bus that comes back is found again")
{
    PrivateBus bus;
    REQUIRE(bus.runs());
    CapturedErrors errors; // the answer to the first may be lost with the first bus
    desktop::DesktopShell shell({.busAddress = bus.address});
    {
        Spawned desktop = service(bus);
        REQUIRE(desktop.line() == "ready");
        shell.notify("one", "first bus");
        CHECK(desktop.line() == "Velmora|one|first bus");
    }
    bus.daemon.kill();
    std::filesystem::remove(bus.folder / "bus");
    Spawned again = bus.start();
    REQUIRE(again.line().starts_with(bus.address));
    Spawned desktop = service(bus);
    REQUIRE(desktop.line() == "ready");
    shell.notify("two", "second bus");
    CHECK(desktop.line() == "Velmora|two|second bus");
}

TEST_CASE("A service that hangs does not hold up the end, and what it was to show is said")
{
    const CapturedErrors errors;
    const double best = atBest(100, [] {
        PrivateBus bus;
        REQUIRE(bus.runs());
        Spawned desktop = service(bus);
        REQUIRE(desktop.line() == "ready");
        auto shell = std::make_unique<desktop::DesktopShell>(desktop::Environment{.busAddress = bus.address});
        shell->notify("Not encoded", "/music/a.wav");
        CHECK(desktop.line() == "Velmora|Not encoded|/music/a.wav");
        desktop.hang();
        shell->notify("Not encoded", "/music/b.wav");
        const auto then = Clock::now();
        shell.reset();
        return millisecondsSince(then);
    });
    CHECK(best < 100);
    CHECK(errors.soFar().ends_with("Velmora: Not encoded: /music/b.wav\n"));
}
