// SPDX-License-Identifier: GPL-3.0-or-later
// Preloaded into a program: a disk that takes two seconds for each force, with the usual file system. Each is
// written down in VELMORA_FORCES, a line each, and whenever the main thread stood still for longer than one
// between two looks at its events. What it computed, and waited for a processor, is none of the disk's doing
// and does not count.
#include "tests/support/system_calls.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

using namespace std::chrono_literals;

namespace
{

using Clock = std::chrono::steady_clock;

constexpr auto each = 2s;
constexpr auto mostStill = 1s;

void note(const std::string& line)
{
    const char* const path = std::getenv("VELMORA_FORCES");
    const int file = path ? open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600) : -1;
    if (file < 0)
        return;
    [[maybe_unused]] const auto written = write(file, line.data(), line.size());
    close(file);
}

bool isMain() { return gettid() == getpid(); }

void force(int number, int file)
{
    std::this_thread::sleep_for(each);
    syscall(number, file);
    note(isMain() ? "main thread\n" : "worker\n");
}

// What the main thread has computed, and waited for a processor, so far.
std::chrono::nanoseconds busy()
{
    std::ifstream file("/proc/thread-self/schedstat");
    std::int64_t computed = 0;
    std::int64_t waited = 0;
    file >> computed >> waited;
    return std::chrono::nanoseconds(computed + waited);
}

struct Look {
    Clock::time_point when = Clock::now();
    std::chrono::nanoseconds busyThen = busy();

    std::chrono::nanoseconds stillSince() const { return Clock::now() - when - (busy() - busyThen); }
};

}

extern "C" int fsync(int file)
{
    force(SYS_fsync, file);
    return 0;
}

extern "C" int fdatasync(int file)
{
    force(SYS_fdatasync, file);
    return 0;
}

extern "C" int fstatfs(int file, struct statfs* system)
{
    const auto result = static_cast<int>(syscall(SYS_fstatfs, file, system));
    system->f_type = EXT4_SUPER_MAGIC;
    return result;
}

extern "C" int poll(pollfd* files, nfds_t count, int limit)
{
    using Poll = int(pollfd*, nfds_t, int);
    static auto* const next = systemCalls::next<Poll>("poll");
    if (!isMain())
        return next(files, count, limit);
    static Look last;
    const auto still = std::chrono::duration_cast<std::chrono::milliseconds>(last.stillSince());
    if (still > mostStill)
        note("stood still " + std::to_string(still.count()) + " ms\n");
    const int result = next(files, count, limit);
    last = Look();
    return result;
}
