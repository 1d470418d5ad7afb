// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/output_file.h"

#include "files/folders.h"
#include "platform/failure.h"
#include "platform/paths.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>

namespace files
{

namespace
{

[[noreturn]] void fail(int systemError)
{
    throw systemError == ENOENT ? Failure(Trouble::pathNotFound) : fileFailure(systemError);
}

// A large block sets out for the disk at once, so that `flush` has little left to wait for.
void sendOff(const Descriptor& file, std::int64_t at, std::size_t count)
{
    constexpr std::size_t large = 1 << 18;
    if (count >= large)
        sync_file_range(file.number(), at, static_cast<off_t>(count), SYNC_FILE_RANGE_WRITE);
}

}

// A rename would take the place of a device, and of a file that may not be written. Behind a NUL the system
// sees nothing.
OutputFile::Target OutputFile::targetOf(const Text& path)
{
    Target target{path.find('\0') == Text::npos ? resolvedLinks(path) : Text(), std::nullopt};
    if (target.path.empty() || endsInSeparator(target.path))
        throw Failure(Trouble::pathOrFileAccess);
    struct stat status;
    if (stat(target.path.c_str(), &status) != 0) {
        if (errno != ENOENT)
            fail(errno);
        return target;
    }
    if (!S_ISREG(status.st_mode))
        throw Failure(Trouble::pathOrFileAccess);
    if (faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0)
        fail(errno);
    target.old = status;
    return target;
}

OutputFile::OutputFile(const Target& target, PartNotes& notes) :
    target_(target), part_(target_.path, target_.old ? &*target_.old : nullptr, notes)
{
    if (part_.error() != 0)
        fail(part_.error());
}

// Where the file system cannot promise the room, the writing finds out.
void OutputFile::makeRoom(std::int64_t bytes)
{
    if (fallocate(part_.file().number(), FALLOC_FL_KEEP_SIZE, 0, bytes) != 0 && errno == ENOSPC)
        fail(errno);
}

void OutputFile::append(std::span<const std::byte> bytes)
{
    write(bytes, bytes_);
    bytes_ += static_cast<std::int64_t>(bytes.size());
}

void OutputFile::write(std::span<const std::byte> bytes, std::int64_t at)
{
    while (!bytes.empty()) {
        const ssize_t written = pwrite(part_.file().number(), bytes.data(), bytes.size(), at);
        if (written < 0 && errno != EINTR)
            fail(errno);
        const auto done = static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        sendOff(part_.file(), at, done);
        bytes = bytes.subspan(done);
        at += static_cast<std::int64_t>(done);
    }
}

Descriptor OutputFile::openPastCache() const
{
    const Text path = "/proc/self/fd/" + std::to_string(part_.file().number());
    return Descriptor(open(path.c_str(), O_WRONLY | O_DIRECT | O_CLOEXEC));
}

void OutputFile::startFlush() { sync_file_range(part_.file().number(), 0, 0, SYNC_FILE_RANGE_WRITE); }

// Some file systems know no flush, and say so; that is no failure.
void OutputFile::flush()
{
    if (fdatasync(part_.file().number()) != 0 && errno != EINVAL && errno != ENOSYS)
        fail(errno);
}

void OutputFile::takePlace()
{
    if (!part_.takePlace())
        fail(errno);
}

bool OutputFile::takeFreePlace(const Text& path)
{
    if (part_.takeFreePlace(path))
        return true;
    if (errno != EEXIST)
        fail(errno);
    return false;
}

void OutputFile::finish()
{
    flush();
    takePlace();
    syncFolder(folderOf(target_.path));
}

}
