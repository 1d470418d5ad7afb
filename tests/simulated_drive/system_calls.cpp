// SPDX-License-Identifier: GPL-3.0-or-later
// Stands before the C library: the devices /dev/sr0, /dev/sr1 ... are the simulated drives, and no real one
// is ever reached.
#include "tests/support/system_calls.h"
#include "tests/simulated_drive/device_requests.h"
#include "tests/simulated_drive/system_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <ctime>

using systemCalls::next;

namespace
{

constexpr unsigned opticalMajor = 11;

int nextOpen(const char* path, int flags, mode_t mode = 0)
{
    static auto* const open = next<int(const char*, int, ...)>("open");
    return open(path, flags, mode);
}

// As with the system, an exclusive opening is refused while another stands, a plain one never.
bool isRefused(int file, int flags) { return (flags & O_EXCL) != 0 && flock(file, LOCK_EX | LOCK_NB) != 0; }

int openDrive(int number, int flags)
{
    const int file = nextOpen(simulated::statePath(number).c_str(), O_RDWR | (flags & O_CLOEXEC));
    if (file < 0)
        return file;
    if (isRefused(file, flags)) {
        close(file);
        errno = EBUSY;
        return -1;
    }
    simulated::noteOpened(file, number);
    const auto drive = simulated::openedDrive(file);
    const simulated::Lock lock(*drive.state);
    ++drive.state->opened;
    return file;
}

template <typename Status>
int driveStatus(int number, Status* status)
{
    static auto* const stat = next<int(const char*, Status*)>("stat");
    const int result = stat(simulated::statePath(number).c_str(), status);
    if (result == 0) {
        status->st_mode = S_IFBLK | 0660;
        status->st_rdev = makedev(opticalMajor, static_cast<unsigned>(number));
    }
    return result;
}

template <typename Status>
int answerStatus(const char* name, const char* path, Status* status)
{
    if (const auto number = simulated::driveNumber(path))
        return driveStatus(*number, status);
    return next<int(const char*, Status*)>(name)(path, status);
}

// The way in of libraries that were built against an older C library.
template <typename Status>
int answerStatus(const char* name, int version, const char* path, Status* status)
{
    if (const auto number = simulated::driveNumber(path))
        return driveStatus(*number, status);
    return next<int(int, const char*, Status*)>(name)(version, path, status);
}

int openText(const std::string& text)
{
    const int file = memfd_create("simulated", MFD_CLOEXEC);
    (void)!pwrite(file, text.data(), text.size(), 0);
    return file;
}

int answerOpen(const char* path, int flags, va_list rest)
{
    if (const auto number = simulated::driveNumber(path))
        return openDrive(*number, flags);
    if (const auto text = simulated::systemFile(path))
        return openText(*text);
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return nextOpen(path, flags, hasMode ? va_arg(rest, mode_t) : 0);
}

}

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = answerOpen(path, flags, rest);
    va_end(rest);
    return file;
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = answerOpen(path, flags, rest);
    va_end(rest);
    return file;
}

int __open_2(const char* path, int flags) { return open(path, flags); }

int __open64_2(const char* path, int flags) { return open(path, flags); }

int stat(const char* path, struct stat* status) noexcept { return answerStatus("stat", path, status); }

int stat64(const char* path, struct stat64* status) noexcept { return answerStatus("stat64", path, status); }

int lstat(const char* path, struct stat* status) noexcept { return answerStatus("lstat", path, status); }

int lstat64(const char* path, struct stat64* status) noexcept
{
    return answerStatus("lstat64", path, status);
}

int __xstat(int version, const char* path, struct stat* status)
{
    return answerStatus("__xstat", version, path, status);
}

int __xstat64(int version, const char* path, struct stat64* status)
{
    return answerStatus("__xstat64", version, path, status);
}

int __lxstat(int version, const char* path, struct stat* status)
{
    return answerStatus("__lxstat", version, path, status);
}

int __lxstat64(int version, const char* path, struct stat64* status)
{
    return answerStatus("__lxstat64", version, path, status);
}

int ioctl(int file, unsigned long request, ...) noexcept
{
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (const auto drive = simulated::openedDrive(file); drive.state != nullptr)
        return simulated::answerRequest(drive, request, argument);
    static auto* const nextIoctl = next<int(int, unsigned long, ...)>("ioctl");
    return nextIoctl(file, request, argument);
}

// The recording library rests for whole seconds where a real drive needs time to settle: here a thousandth
// of that will do.
int usleep(useconds_t microseconds)
{
    const timespec pause{0, static_cast<long>(microseconds)};
    return nanosleep(&pause, nullptr);
}

unsigned sleep(unsigned seconds)
{
    usleep(seconds * 1000000);
    return 0;
}
}
