// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/hung_share.h"

#include "tests/support/system_calls.h"

#include <dirent.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <time.h>

#include <atomic>
#include <cstdlib>

using systemCalls::next;
using systemCalls::PathOfOpen;

namespace
{

constexpr int mostSteps = 6000; // of ten milliseconds

systemCalls::Place folder;
const char* sign = nullptr; // a file without which nothing hangs yet
std::atomic<bool> hangs{false};
std::atomic<HungShare::Holds> holds{HungShare::Holds::everything};
std::atomic<int> readsLeft{0};
std::atomic<int> held{0};

void hangBelow(const char* name)
{
    folder.set(name);
    hangs = true;
}

[[gnu::constructor]] void readEnvironment()
{
    sign = std::getenv("VELMORA_HUNG_SHARE_WHEN");
    if (const char* name = std::getenv("VELMORA_HUNG_SHARE"))
        hangBelow(name);
}

bool hasBegun() { return sign == nullptr || next<int(const char*, int)>("access")(sign, F_OK) == 0; }

void wait()
{
    ++held;
    for (int step = 0; step < mostSteps && hangs; ++step) {
        const timespec pause{0, 10'000'000};
        nanosleep(&pause, nullptr);
    }
    --held;
}

void hold(const char* path)
{
    if (hangs && folder.holds(path) && hasBegun())
        wait();
}

void holdOpening(const char* path)
{
    if (holds == HungShare::Holds::everything || holds == HungShare::Holds::contents)
        hold(path);
}

void holdQuestion(const char* path)
{
    if (holds == HungShare::Holds::everything)
        hold(path);
}

// Of a name in a folder that is open, too.
template <typename Hold>
void holdAt(int at, const char* path, Hold&& holdPath)
{
    if (!hangs)
        return;
    PathOfOpen place(at == AT_FDCWD ? -1 : at);
    holdPath(at == AT_FDCWD ? path : place.with(path));
}

void holdReading(int file)
{
    if (!hangs || holds == HungShare::Holds::writings || !folder.holds(PathOfOpen(file).get()))
        return;
    if (holds != HungShare::Holds::secondReads || readsLeft-- <= 0)
        hold(folder.get());
}

void holdWriting(int file)
{
    if (hangs && (holds == HungShare::Holds::everything || holds == HungShare::Holds::writings))
        hold(PathOfOpen(file).get());
}

}

HungShare::HungShare(const char* name, Holds what)
{
    holds = what;
    readsLeft = 1;
    hangBelow(name);
}

// Nobody is left for the next one to hold.
HungShare::~HungShare()
{
    hangs = false;
    while (held > 0) {
        const timespec pause{0, 1'000'000};
        nanosleep(&pause, nullptr);
    }
}

int HungShare::waiting() const { return held; }

// A call as it stands in the C library, behind the hold.
#define HELD(hold, result, name, parameters, how, ...)                                                       \
    result name parameters how                                                                               \
    {                                                                                                        \
        hold;                                                                                                \
        return next<result parameters>(#name)(__VA_ARGS__);                                                  \
    }

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    holdOpening(path);
    const int file = systemCalls::openNext("open", flags, rest, path);
    va_end(rest);
    return file;
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    holdOpening(path);
    const int file = systemCalls::openNext("open64", flags, rest, path);
    va_end(rest);
    return file;
}

int openat(int at, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    holdAt(at, path, holdOpening);
    const int file = systemCalls::openNext("openat", flags, rest, at, path);
    va_end(rest);
    return file;
}

int openat64(int at, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    holdAt(at, path, holdOpening);
    const int file = systemCalls::openNext("openat64", flags, rest, at, path);
    va_end(rest);
    return file;
}

// clang-format off
HELD(holdQuestion(path), int, stat, (const char* path, struct stat* status), noexcept, path, status)
HELD(holdQuestion(path), int, stat64, (const char* path, struct stat64* status), noexcept, path, status)
HELD(holdQuestion(path), int, lstat, (const char* path, struct stat* status), noexcept, path, status)
HELD(holdQuestion(path), int, lstat64, (const char* path, struct stat64* status), noexcept, path, status)
HELD(holdQuestion(path), int, statfs, (const char* path, struct statfs* status), noexcept, path, status)
HELD(holdQuestion(path), int, statfs64, (const char* path, struct statfs64* status), noexcept, path, status)
HELD(holdQuestion(path), int, access, (const char* path, int mode), noexcept, path, mode)
HELD(holdQuestion(path), ssize_t, readlink, (const char* path, char* into, std::size_t size), noexcept, path, into, size)
HELD(holdQuestion(path), int, unlink, (const char* path), noexcept, path)
HELD(holdQuestion(path), int, mkdir, (const char* path, mode_t mode), noexcept, path, mode)
HELD(holdQuestion(to), int, rename, (const char* from, const char* to), noexcept, from, to)
HELD(holdQuestion(path), DIR*, opendir, (const char* path), , path)

HELD(holdAt(at, path, holdQuestion), int, fstatat, (int at, const char* path, struct stat* status, int flags), noexcept, at, path, status, flags)
HELD(holdAt(at, path, holdQuestion), int, fstatat64, (int at, const char* path, struct stat64* status, int flags), noexcept, at, path, status, flags)
HELD(holdAt(at, path, holdQuestion), int, faccessat, (int at, const char* path, int mode, int flags), noexcept, at, path, mode, flags)
HELD(holdAt(at, path, holdQuestion), int, statx, (int at, const char* path, int flags, unsigned mask, struct statx* status), noexcept, at, path, flags, mask, status)

HELD(holdReading(file), ssize_t, read, (int file, void* into, std::size_t size), , file, into, size)
HELD(holdReading(file), ssize_t, pread, (int file, void* into, std::size_t size, off_t at), , file, into, size, at)
HELD(holdReading(file), ssize_t, pread64, (int file, void* into, std::size_t size, off64_t at), , file, into, size, at)
HELD(holdReading(dirfd(entries)), dirent*, readdir, (DIR* entries), , entries)
HELD(holdReading(dirfd(entries)), dirent64*, readdir64, (DIR* entries), , entries)
HELD(holdWriting(file), ssize_t, write, (int file, const void* bytes, std::size_t size), , file, bytes, size)
HELD(holdWriting(file), ssize_t, pwrite, (int file, const void* bytes, std::size_t size, off_t at), , file, bytes, size, at)
HELD(holdWriting(file), ssize_t, pwrite64, (int file, const void* bytes, std::size_t size, off64_t at), , file, bytes, size, at)
HELD(holdWriting(file), int, fdatasync, (int file), , file)
HELD(holdWriting(file), int, fallocate, (int file, int mode, off_t at, off_t size), , file, mode, at, size)
HELD(holdWriting(file), int, fallocate64, (int file, int mode, off64_t at, off64_t size), , file, mode, at, size)
// clang-format on
}
