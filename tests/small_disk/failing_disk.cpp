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
#include <list>

using systemCalls::next;

namespace
{

struct Fault {
    Fault(const Text& place, const Text& callNames, int number, FailingDisk::When time) :
        folder(place), names(' ' + callNames + ' '), error(number), when(time)
    {
    }

    const Text folder;
    const Text names; // each between two blanks
    const int error;
    const FailingDisk::When when;
    std::atomic<int> calls = 0;
    std::atomic<int> failures = 0;
};

// None goes before the tests do, as another thread may look at it.
std::list<Fault>& faults()
{
    static std::list<Fault> all;
    return all;
}

std::atomic<Fault*> standing = nullptr;

bool isMeant(const Fault& fault, const char* call)
{
    return fault.names.find(Text(" ") + call + ' ') != Text::npos;
}

bool failsNow(Fault& fault)
{
    const int call = fault.calls++ - fault.when.after;
    if (call < 0 || call >= fault.when.times)
        return false;
    ++fault.failures;
    errno = fault.error;
    return true;
}

}

namespace smallDisk
{

bool fails(const char* call, const char* path)
{
    Fault* const fault = standing;
    return fault != nullptr && isMeant(*fault, call) && systemCalls::liesBelow(path, fault->folder.c_str()) &&
           failsNow(*fault);
}

bool fails(const char* call, int file)
{
    const Fault* const fault = standing;
    return fault != nullptr && isMeant(*fault, call) && fails(call, systemCalls::PathOfOpen(file).get());
}

}

FailingDisk::FailingDisk(const Text& folder, const char* calls, int error, When when)
{
    standing = &faults().emplace_back(folder, calls, error, when);
}

FailingDisk::~FailingDisk() { standing = nullptr; }

int FailingDisk::failures() const { return faults().back().failures; }

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
FAILING("fstat", file, int, __fxstat, (int version, int file, struct stat* status), noexcept, version, file, status) // as the thread sanitizer asks
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
    const int error = errno;
    const int answer = next<int(int)>("close")(file);
    if (fails)
        errno = error;
    return fails ? -1 : answer;
}
}
