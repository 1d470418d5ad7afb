// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/failing_disk.h"

#include "tests/small_disk/small_disk.h"
#include "tests/support/system_calls.h"

#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

using systemCalls::next;

namespace
{

struct Fault {
    std::atomic<bool> stands = false;
    std::string folder;
    std::string names; // each between two blanks
    int error = 0;
    FailingDisk::When when;
    std::atomic<int> calls = 0;
    std::atomic<int> failures = 0;
};

Fault& fault()
{
    static Fault only;
    return only;
}

bool isMeant(const char* call)
{
    return fault().stands && fault().names.find(std::string(" ") + call + ' ') != std::string::npos;
}

bool failsNow()
{
    const int call = fault().calls++ - fault().when.after;
    if (call < 0 || call >= fault().when.times)
        return false;
    ++fault().failures;
    errno = fault().error;
    return true;
}

}

namespace smallDisk
{

bool fails(const char* call, const char* path)
{
    return isMeant(call) && systemCalls::liesBelow(path, fault().folder.c_str()) && failsNow();
}

bool fails(const char* call, int file)
{
    return isMeant(call) && fails(call, systemCalls::PathOfOpen(file).get());
}

}

FailingDisk::FailingDisk(const Text& folder, const char* calls, int error, When when)
{
    fault().names = std::string(" ") + calls + ' ';
    fault().error = error;
    fault().when = when;
    fault().calls = fault().failures = 0;
    fault().folder = folder;
    fault().stands = true;
}

FailingDisk::~FailingDisk() { fault().stands = false; }

int FailingDisk::failures() const { return fault().failures; }

// A call as it stands in the C library, behind the fault. Of `place`, a path or what is open.
#define FAILING(call, place, result, name, parameters, how, ...)                                             \
    result name parameters how                                                                               \
    {                                                                                                        \
        return smallDisk::fails(call, place) ? -1 : next<result parameters>(#name)(__VA_ARGS__);             \
    }

extern "C" {
// clang-format off
FAILING("read", file, ssize_t, read, (int file, void* into, std::size_t size), , file, into, size)
FAILING("pread", file, ssize_t, pread, (int file, void* into, std::size_t size, off_t at), , file, into, size, at)
FAILING("pread", file, ssize_t, pread64, (int file, void* into, std::size_t size, off64_t at), , file, into, size, at)
FAILING("stat", path, int, stat, (const char* path, struct stat* status), noexcept, path, status)
FAILING("lstat", path, int, lstat, (const char* path, struct stat* status), noexcept, path, status)
FAILING("fstat", file, int, fstat, (int file, struct stat* status), noexcept, file, status)
FAILING("fsync", file, int, fsync, (int file), , file)
FAILING("fdatasync", file, int, fdatasync, (int file), , file)
FAILING("ftruncate", file, int, ftruncate, (int file, off_t size), noexcept, file, size)
FAILING("ftruncate", file, int, ftruncate64, (int file, off64_t size), noexcept, file, size)
FAILING("fchmod", file, int, fchmod, (int file, mode_t mode), noexcept, file, mode)
FAILING("fgetxattr", file, ssize_t, fgetxattr, (int file, const char* name, void* into, std::size_t size), noexcept, file, name, into, size)
FAILING("flock", file, int, flock, (int file, int how), noexcept, file, how)
FAILING("renameat2", to, int, renameat2, (int at, const char* from, int toAt, const char* to, unsigned flags), noexcept, at, from, toAt, to, flags)
// clang-format on

// It is closed, whatever the answer.
int close(int file)
{
    const bool fails = smallDisk::fails("close", file);
    const int answer = next<int(int)>("close")(file);
    if (fails)
        errno = fault().error;
    return fails ? -1 : answer;
}
}
