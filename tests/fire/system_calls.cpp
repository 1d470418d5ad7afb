// SPDX-License-Identifier: GPL-3.0-or-later
// Preloaded: stands before the C library, so that no change below the watched folder goes by uncounted.
#include "tests/support/system_calls.h"

#include "tests/fire/changes.h"

#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/vfs.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

using fire::carryOut;
using fire::Change;
using fire::isWatched;
using systemCalls::next;
using systemCalls::PathOfOpen;

namespace
{

std::string placeOf(int folder, const char* path)
{
    return folder == AT_FDCWD || path[0] == '/' ? path : PathOfOpen(folder).with(path);
}

bool changes(int flags) { return (flags & (O_CREAT | O_TRUNC)) != 0; }

// The `at` of an opening tells what it does to the file: 1 makes it, 2 empties it.
template <typename Open>
int opened(const std::string& path, int flags, Open&& open)
{
    if (!changes(flags) || !isWatched(path))
        return open();
    struct stat status;
    const bool isThere = stat(path.c_str(), &status) == 0;
    const off_t does = !isThere ? 1 : (flags & O_TRUNC) != 0 ? 2 : 0;
    return static_cast<int>(carryOut({"open", path, -1, does}, [&](std::size_t) { return open(); }));
}

off_t endOf(int file)
{
    struct stat status = {};
    fstat(file, &status);
    return status.st_size;
}

off_t placeOfWrite(int file)
{
    return (fcntl(file, F_GETFL) & O_APPEND) != 0 ? endOf(file) : lseek(file, 0, SEEK_CUR);
}

template <typename Call>
ssize_t written(int file, std::size_t size, off_t at, Call&& call)
{
    const std::string path = PathOfOpen(file).get();
    return isWatched(path) ? carryOut({"write", path, file, at, {}, size}, call) : call(size);
}

std::size_t sizeOf(const iovec* parts, int count)
{
    std::size_t size = 0;
    for (int part = 0; part < count; ++part)
        size += parts[part].iov_len;
    return size;
}

// A short one writes its first part alone, or half of its only one.
int firstOf(int count, std::size_t size, std::size_t wanted) { return wanted < size ? 1 : count; }

template <typename Call>
ssize_t doneTo(int file, const char* kind, off_t at, Call&& call)
{
    const std::string path = PathOfOpen(file).get();
    const auto carried = [&](std::size_t) -> ssize_t { return call(); };
    return isWatched(path) ? carryOut({kind, path, file, at}, carried) : call();
}

// This one answers the error itself.
template <typename Call>
int madeRoom(int file, off_t end, Call&& call)
{
    int error = 0;
    const ssize_t result = doneTo(file, "room", std::max(end, endOf(file)), [&] {
        error = call();
        return error == 0 ? 0 : -1;
    });
    return result == 0 ? 0 : error != 0 ? error : errno;
}

template <typename Call>
int named(const char* kind, const std::string& path, const std::string& second, Call&& call)
{
    const auto carried = [&](std::size_t) -> ssize_t { return call(); };
    if (!isWatched(path) && !isWatched(second))
        return call();
    return static_cast<int>(carryOut({kind, path, -1, 0, second}, carried));
}

}

// An opening call as it stands in the C library.
#define OPENED(name, path, parameters, ...)                                                                  \
    int name parameters                                                                                      \
    {                                                                                                        \
        va_list rest;                                                                                        \
        va_start(rest, flags);                                                                               \
        const int file =                                                                                     \
            opened(path, flags, [&] { return systemCalls::openNext(#name, flags, rest, __VA_ARGS__); });     \
        va_end(rest);                                                                                        \
        return file;                                                                                         \
    }

// Another call as it stands there; `carried` has its way.
#define CHANGED(result, name, parameters, how, carried, ...)                                                 \
    result name parameters how                                                                               \
    {                                                                                                        \
        static auto* const call = next<result parameters>(#name);                                            \
        return static_cast<result>(carried(__VA_ARGS__));                                                    \
    }

#define OF(...) [&](auto...) { return call(__VA_ARGS__); }

extern "C" {

// clang-format off
OPENED(open, path, (const char* path, int flags, ...), path)
OPENED(open64, path, (const char* path, int flags, ...), path)
OPENED(openat, placeOf(at, path), (int at, const char* path, int flags, ...), at, path)
OPENED(openat64, placeOf(at, path), (int at, const char* path, int flags, ...), at, path)

CHANGED(ssize_t, write, (int file, const void* bytes, std::size_t size), , written, file, size, placeOfWrite(file), [&](std::size_t some) { return call(file, bytes, some); })
CHANGED(ssize_t, pwrite, (int file, const void* bytes, std::size_t size, off_t at), , written, file, size, at, [&](std::size_t some) { return call(file, bytes, some, at); })
CHANGED(ssize_t, pwrite64, (int file, const void* bytes, std::size_t size, off64_t at), , written, file, size, at, [&](std::size_t some) { return call(file, bytes, some, at); })
CHANGED(ssize_t, writev, (int file, const iovec* parts, int count), , written, file, sizeOf(parts, count), placeOfWrite(file), [&](std::size_t some) { return call(file, parts, firstOf(count, sizeOf(parts, count), some)); })
CHANGED(ssize_t, pwritev, (int file, const iovec* parts, int count, off_t at), , written, file, sizeOf(parts, count), at, [&](std::size_t some) { return call(file, parts, firstOf(count, sizeOf(parts, count), some), at); })
CHANGED(ssize_t, pwritev64, (int file, const iovec* parts, int count, off64_t at), , written, file, sizeOf(parts, count), at, [&](std::size_t some) { return call(file, parts, firstOf(count, sizeOf(parts, count), some), at); })
CHANGED(ssize_t, copy_file_range, (int from, off64_t* fromAt, int to, off64_t* toAt, std::size_t size, unsigned flags), , written, to, size, toAt ? *toAt : placeOfWrite(to), [&](std::size_t some) { return call(from, fromAt, to, toAt, some, flags); })
CHANGED(ssize_t, sendfile, (int to, int from, off_t* at, std::size_t size), noexcept, written, to, size, placeOfWrite(to), [&](std::size_t some) { return call(to, from, at, some); })
CHANGED(ssize_t, sendfile64, (int to, int from, off64_t* at, std::size_t size), noexcept, written, to, size, placeOfWrite(to), [&](std::size_t some) { return call(to, from, at, some); })

CHANGED(int, ftruncate, (int file, off_t size), noexcept, doneTo, file, "size", size, OF(file, size))
CHANGED(int, ftruncate64, (int file, off64_t size), noexcept, doneTo, file, "size", size, OF(file, size))
CHANGED(int, fallocate, (int file, int mode, off_t at, off_t size), , doneTo, file, "room", (mode & FALLOC_FL_KEEP_SIZE) != 0 ? endOf(file) : std::max(at + size, endOf(file)), OF(file, mode, at, size))
CHANGED(int, fallocate64, (int file, int mode, off64_t at, off64_t size), , doneTo, file, "room", (mode & FALLOC_FL_KEEP_SIZE) != 0 ? endOf(file) : std::max(at + size, endOf(file)), OF(file, mode, at, size))
CHANGED(int, posix_fallocate, (int file, off_t at, off_t size), , madeRoom, file, at + size, OF(file, at, size))
CHANGED(int, posix_fallocate64, (int file, off64_t at, off64_t size), , madeRoom, file, at + size, OF(file, at, size))
CHANGED(int, fsync, (int file), , doneTo, file, "force", 0, OF(file))
CHANGED(int, fdatasync, (int file), , doneTo, file, "force", 0, OF(file))
CHANGED(int, syncfs, (int file), noexcept, doneTo, file, "force", 0, OF(file))

CHANGED(int, rename, (const char* from, const char* to), noexcept, named, "rename", from, to, OF(from, to))
CHANGED(int, renameat, (int at, const char* from, int there, const char* to), noexcept, named, "rename", placeOf(at, from), placeOf(there, to), OF(at, from, there, to))
CHANGED(int, renameat2, (int at, const char* from, int there, const char* to, unsigned flags), noexcept, named, (flags & RENAME_EXCHANGE) != 0 ? "exchange" : "rename", placeOf(at, from), placeOf(there, to), OF(at, from, there, to, flags))
CHANGED(int, link, (const char* from, const char* to), noexcept, named, "link", from, to, OF(from, to))
CHANGED(int, linkat, (int at, const char* from, int there, const char* to, int flags), noexcept, named, "link", placeOf(at, from), placeOf(there, to), OF(at, from, there, to, flags))
CHANGED(int, unlink, (const char* path), noexcept, named, "remove", path, "", OF(path))
CHANGED(int, unlinkat, (int at, const char* path, int flags), noexcept, named, "remove", placeOf(at, path), "", OF(at, path, flags))
CHANGED(int, remove, (const char* path), noexcept, named, "remove", path, "", OF(path))
CHANGED(int, rmdir, (const char* path), noexcept, named, "remove", path, "", OF(path))
CHANGED(int, mkdir, (const char* path, mode_t mode), noexcept, named, "folder", path, "", OF(path, mode))
CHANGED(int, mkdirat, (int at, const char* path, mode_t mode), noexcept, named, "folder", placeOf(at, path), "", OF(at, path, mode))
// clang-format on

// One copy with all bytes shared is a write of all of them.
int ioctl(int file, unsigned long request, ...)
{
    static auto* const call = next<int(int, unsigned long, ...)>("ioctl");
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (request != FICLONE)
        return call(file, request, argument);
    const auto from = static_cast<int>(reinterpret_cast<std::intptr_t>(argument));
    return doneTo(file, "clone", endOf(from), [&] { return call(file, request, from); });
}
}

// One that promises no order: what is lost nowhere then is lost on no other either.
extern "C" int fstatfs(int file, struct statfs* system)
{
    const auto result = static_cast<int>(syscall(SYS_fstatfs, file, system));
    system->f_type = XFS_SUPER_MAGIC;
    return result;
}
