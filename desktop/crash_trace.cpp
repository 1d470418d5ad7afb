// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/crash_trace.h"

#include "platform/paths.h"

#include <execinfo.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <tuple>

namespace desktop
{

namespace
{

constexpr const char* untold = "crash.txt";
constexpr const char* told = "last crash.txt";

constexpr int fatalSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
constexpr int mostFrames = 64;
constexpr unsigned patienceSeconds = 10; // a lock that the crash left locked may hold up the stack's reading

// Filled before anything can crash: a handler may make no memory and take no lock.
std::array<char, PATH_MAX> place;
std::array<char, 128> head;
alignas(16) std::array<std::byte, 64 * 1024> stackOfHandler; // the window thread's own may be what ran out

std::atomic<pid_t> crashed{0};

template <std::size_t size>
bool put(std::array<char, size>& buffer, const Text& text)
{
    if (text.size() >= size)
        return false;
    *std::ranges::copy(text, buffer.begin()).out = '\0';
    return true;
}

void say(int file, std::string_view text) { std::ignore = write(file, text.data(), text.size()); }

void say(int file, std::string_view name, long long value, int base = 10)
{
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, base).ptr;
    say(file, name);
    say(file, {digits.data(), end});
    say(file, "\n");
}

void makeFoldersOf(std::array<char, PATH_MAX> path)
{
    for (std::size_t i = 1; i < path.size() && path[i] != '\0'; ++i) {
        if (path[i] != pathSeparator)
            continue;
        path[i] = '\0';
        mkdir(path.data(), 0700);
        path[i] = pathSeparator;
    }
}

int openTrace()
{
    makeFoldersOf(place);
    return open(place.data(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
}

// What is known for certain comes first: the stack's reading may crash in its turn.
void writeTrace(int file, int signal, const siginfo_t& info)
{
    say(file, head.data());
    say(file, "signal ", signal);
    say(file, "address 0x", static_cast<long long>(reinterpret_cast<std::uintptr_t>(info.si_addr)), 16);
    say(file, "seconds since 1970 ", time(nullptr));
    std::array<void*, mostFrames> frames;
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), mostFrames), file);
}

void endBy(int signal)
{
    std::signal(signal, SIG_DFL);
    raise(signal); // comes when the handler returns, to the place of the crash
}

// The first thread to crash has its say, and the others wait for the end that it brings.
void crash(int signal, siginfo_t* info, void*)
{
    const auto self = static_cast<pid_t>(syscall(SYS_gettid));
    pid_t nobody = 0;
    if (!crashed.compare_exchange_strong(nobody, self)) {
        if (nobody == self)
            return endBy(signal);
        for (;;)
            pause();
    }
    std::signal(SIGALRM, SIG_DFL);
    alarm(patienceSeconds);
    if (const int file = openTrace(); file >= 0) {
        writeTrace(file, signal, *info);
        close(file);
    }
    endBy(signal);
}

bool isHandled(int signal)
{
    struct sigaction now = {};
    return sigaction(signal, nullptr, &now) != 0 || now.sa_handler != SIG_DFL;
}

void handle(int signal)
{
    struct sigaction action = {};
    action.sa_sigaction = crash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigaction(signal, &action, nullptr);
}

// The first reading of a stack loads what it takes, which a handler must not.
void readFirstStack()
{
    void* frame = nullptr;
    backtrace(&frame, 1);
}

}

void traceCrashes(const Text& folder, const Text& buildName)
{
    if (!put(place, joined(folder, untold)) || !put(head, "Velmora " + buildName + '\n'))
        return;
    readFirstStack();
    const stack_t stack{.ss_sp = stackOfHandler.data(), .ss_flags = 0, .ss_size = stackOfHandler.size()};
    sigaltstack(&stack, nullptr);
    for (const int signal : fatalSignals)
        if (!isHandled(signal))
            handle(signal);
}

void tellOfCrash(const Text& folder, Shell& shell)
{
    const Text trace = joined(folder, told);
    if (std::rename(joined(folder, untold).c_str(), trace.c_str()) == 0)
        shell.notify("Velmora crashed", "What is known of it is in " + trace + ".");
}

}
