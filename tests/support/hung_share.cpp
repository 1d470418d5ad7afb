// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/hung_share.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int mostSteps = 6000; // of ten milliseconds

char folder[4096];
std::atomic<bool> hangs{false};
std::atomic<bool> onlyContents{false};
std::atomic<int> held{0};

void hangBelow(const char* name)
{
    std::strncpy(folder, name, sizeof folder - 1);
    hangs = true;
}

[[gnu::constructor]] void readEnvironment()
{
    if (const char* name = std::getenv("VELMORA_HUNG_SHARE"))
        hangBelow(name);
}

bool isHeldUp(const char* path)
{
    const std::size_t length = std::strlen(folder);
    return hangs && std::strncmp(path, folder, length) == 0 && (path[length] == '/' || path[length] == '\0');
}

void hold(const char* path)
{
    if (!path || !isHeldUp(path))
        return;
    ++held;
    for (int step = 0; step < mostSteps && hangs; ++step) {
        const timespec pause{0, 10'000'000};
        nanosleep(&pause, nullptr);
    }
    --held;
}

void ask(const char* path)
{
    if (!onlyContents)
        hold(path);
}

// Also of a name in a folder that is open.
void ask(int at, const char* path)
{
    if (!path || path[0] == '/' || at == AT_FDCWD)
        return ask(path);
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", at);
    char whole[2 * sizeof folder];
    const ssize_t length = readlink(link, whole, sizeof folder);
    if (length <= 0)
        return;
    std::snprintf(whole + length, sizeof whole - static_cast<std::size_t>(length), "/%s", path);
    ask(whole);
}

template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int openNext(const char* function, const char* path, int flags, va_list rest)
{
    hold(path);
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return next<int(const char*, int, ...)>(function)(path, flags, hasMode ? va_arg(rest, mode_t) : 0);
}

int openNext(const char* function, int at, const char* path, int flags, va_list rest)
{
    onlyContents ? hold(path) : ask(at, path);
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return next<int(int, const char*, int, ...)>(function)(at, path, flags,
                                                           hasMode ? va_arg(rest, mode_t) : 0);
}

template <typename Status>
int statusOf(const char* function, const char* path, Status* status)
{
    ask(path);
    return next<int(const char*, Status*)>(function)(path, status);
}

template <typename Entry>
Entry* entryOf(const char* function, DIR* entries)
{
    ask(dirfd(entries), ".");
    return next<Entry*(DIR*)>(function)(entries);
}

}

HungShare::HungShare(const char* name, Holds what)
{
    onlyContents = what == Holds::contents;
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

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = openNext("open", path, flags, rest);
    va_end(rest);
    return file;
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = openNext("open64", path, flags, rest);
    va_end(rest);
    return file;
}

int openat(int at, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = openNext("openat", at, path, flags, rest);
    va_end(rest);
    return file;
}

int openat64(int at, const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = openNext("openat64", at, path, flags, rest);
    va_end(rest);
    return file;
}

int stat(const char* path, struct stat* status) noexcept { return statusOf("stat", path, status); }
int stat64(const char* path, struct stat64* status) noexcept { return statusOf("stat64", path, status); }
int lstat(const char* path, struct stat* status) noexcept { return statusOf("lstat", path, status); }
int lstat64(const char* path, struct stat64* status) noexcept { return statusOf("lstat64", path, status); }
int statfs(const char* path, struct statfs* status) noexcept { return statusOf("statfs", path, status); }
int statfs64(const char* path, struct statfs64* status) noexcept
{
    return statusOf("statfs64", path, status);
}

int fstatat(int at, const char* path, struct stat* status, int flags) noexcept
{
    ask(at, path);
    return next<int(int, const char*, struct stat*, int)>("fstatat")(at, path, status, flags);
}

int fstatat64(int at, const char* path, struct stat64* status, int flags) noexcept
{
    ask(at, path);
    return next<int(int, const char*, struct stat64*, int)>("fstatat64")(at, path, status, flags);
}

int statx(int at, const char* path, int flags, unsigned mask, struct statx* status) noexcept
{
    ask(at, path);
    return next<int(int, const char*, int, unsigned, struct statx*)>("statx")(at, path, flags, mask, status);
}

int access(const char* path, int mode) noexcept
{
    ask(path);
    return next<int(const char*, int)>("access")(path, mode);
}

int faccessat(int at, const char* path, int mode, int flags) noexcept
{
    ask(at, path);
    return next<int(int, const char*, int, int)>("faccessat")(at, path, mode, flags);
}

DIR* opendir(const char* path)
{
    ask(path);
    return next<DIR*(const char*)>("opendir")(path);
}

dirent* readdir(DIR* entries) { return entryOf<dirent>("readdir", entries); }
dirent64* readdir64(DIR* entries) { return entryOf<dirent64>("readdir64", entries); }
}
