// SPDX-License-Identifier: GPL-3.0-or-later
// Stands before the C library: what happens on the small disk happens as on a full one, or on one that may
// only be read.
#include "tests/support/system_calls.h"
#include "tests/small_disk/small_disk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <optional>

using systemCalls::next;

namespace
{

// Two that write at one time must not share the last bytes.
std::mutex& writing()
{
    static std::mutex mutex;
    return mutex;
}

bool refusesChange(const char* path)
{
    if (!smallDisk::holds(path) || !smallDisk::disk().isReadOnly)
        return false;
    errno = EROFS;
    return true;
}

bool refusesOpen(const char* path, int flags)
{
    const bool changes = (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
    return changes && refusesChange(path);
}

// A write past the cache is of whole blocks.
constexpr off_t wholeBlocks = ~off_t{4095};

constexpr std::size_t mostOfPiece = 1000;

// How many bytes of a write the disk still takes; nothing, with the error set, when that is none.
std::optional<std::size_t> takenOf(int file, off_t at, std::size_t bytes)
{
    const auto wanted =
        static_cast<off_t>(smallDisk::disk().takesPieces ? std::min(bytes, mostOfPiece) : bytes);
    const off_t missing = std::max<off_t>(smallDisk::growth(file, at, wanted) - smallDisk::room(), 0);
    const off_t taken = missing == 0 ? wanted : (wanted - missing) & wholeBlocks;
    if (taken > 0 || wanted == 0)
        return static_cast<std::size_t>(taken);
    errno = ENOSPC;
    return std::nullopt;
}

ssize_t writeAt(const char* name, int file, const void* bytes, std::size_t size, off_t at)
{
    auto* const call = next<ssize_t(int, const void*, std::size_t, off_t)>(name);
    if (smallDisk::fails("pwrite", file))
        return -1;
    if (!smallDisk::holds(file))
        return call(file, bytes, size, at);
    const std::lock_guard guard(writing());
    const auto taken = takenOf(file, at, size);
    return taken ? call(file, bytes, *taken, at) : -1;
}

bool fits(int file, off_t from, off_t size)
{
    return !smallDisk::holds(file) || smallDisk::growth(file, from, size) <= smallDisk::room();
}

int reserve(const char* name, int file, off_t from, off_t size)
{
    if (smallDisk::fails("posix_fallocate", file))
        return errno;
    return fits(file, from, size) ? next<int(int, off_t, off_t)>(name)(file, from, size) : ENOSPC;
}

int reserve(const char* name, int file, int mode, off_t from, off_t size)
{
    if (smallDisk::fails("fallocate", file))
        return -1;
    if (fits(file, from, size))
        return next<int(int, int, off_t, off_t)>(name)(file, mode, from, size);
    errno = ENOSPC;
    return -1;
}

int opened(const char* name, const char* path, int flags, va_list rest)
{
    const bool fails = smallDisk::fails("open", path) || refusesOpen(path, flags);
    return fails ? -1 : systemCalls::openNext(name, flags, rest, path);
}

}

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = opened("open", path, flags, rest);
    va_end(rest);
    return file;
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const int file = opened("open64", path, flags, rest);
    va_end(rest);
    return file;
}

ssize_t write(int file, const void* bytes, std::size_t size)
{
    static auto* const call = next<ssize_t(int, const void*, std::size_t)>("write");
    if (smallDisk::fails("write", file))
        return -1;
    if (!smallDisk::holds(file))
        return call(file, bytes, size);
    const std::lock_guard guard(writing());
    const auto taken = takenOf(file, lseek(file, 0, SEEK_CUR), size);
    return taken ? call(file, bytes, *taken) : -1;
}

ssize_t pwrite(int file, const void* bytes, std::size_t size, off_t at)
{
    return writeAt("pwrite", file, bytes, size, at);
}

ssize_t pwrite64(int file, const void* bytes, std::size_t size, off64_t at)
{
    return writeAt("pwrite64", file, bytes, size, at);
}

ssize_t copy_file_range(int from, off64_t* fromAt, int to, off64_t* toAt, std::size_t size, unsigned flags)
{
    using Copy = ssize_t(int, off64_t*, int, off64_t*, std::size_t, unsigned);
    static auto* const call = next<Copy>("copy_file_range");
    if (!smallDisk::holds(to))
        return call(from, fromAt, to, toAt, size, flags);
    const std::lock_guard guard(writing());
    const auto taken = takenOf(to, toAt ? *toAt : lseek(to, 0, SEEK_CUR), size);
    return taken ? call(from, fromAt, to, toAt, *taken, flags) : -1;
}

int posix_fallocate(int file, off_t from, off_t size) { return reserve("posix_fallocate", file, from, size); }

int posix_fallocate64(int file, off64_t from, off64_t size)
{
    return reserve("posix_fallocate64", file, from, size);
}

int fallocate(int file, int mode, off_t from, off_t size)
{
    return reserve("fallocate", file, mode, from, size);
}

int fallocate64(int file, int mode, off64_t from, off64_t size)
{
    return reserve("fallocate64", file, mode, from, size);
}

int faccessat(int folder, const char* path, int mode, int flags) noexcept
{
    if ((mode & W_OK) != 0 && refusesChange(path))
        return -1;
    return next<int(int, const char*, int, int)>("faccessat")(folder, path, mode, flags);
}

int rename(const char* from, const char* to) noexcept
{
    const bool fails = smallDisk::fails("rename", to) || refusesChange(to);
    return fails ? -1 : next<int(const char*, const char*)>("rename")(from, to);
}

int unlink(const char* path) noexcept
{
    return refusesChange(path) ? -1 : next<int(const char*)>("unlink")(path);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    if (refusesChange(path))
        return -1;
    const int made = next<int(const char*, mode_t)>("mkdir")(path, mode);
    return smallDisk::fails("mkdir", path) ? -1 : made; // as if somebody else had been quicker
}
}
