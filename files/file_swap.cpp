// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/file_swap.h"

#include "files/descriptor.h"
#include "files/part_file.h"
#include "platform/failure.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace files
{

namespace
{

constexpr std::size_t bufferSize = 1 << 20;
constexpr std::uint64_t pieceSize = 4 << 20;

struct stat statusOf(int descriptor)
{
    struct stat status = {};
    fstat(descriptor, &status);
    return status;
}

// Writes all of `bytes` at `at`; false with the reason in errno.
bool writeAt(int descriptor, const Text& bytes, off_t at)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto wrote =
            pwrite(descriptor, bytes.data() + done, bytes.size() - done, at + static_cast<off_t>(done));
        if (wrote < 0 && errno != EINTR)
            return false;
        done += wrote > 0 ? static_cast<std::size_t>(wrote) : 0;
    }
    return true;
}

void copyAttributes(int from, int to)
{
    std::vector<char> names(64 * 1024); // the most that the system allows
    const auto length = flistxattr(from, names.data(), names.size());
    std::vector<char> value(64 * 1024);
    for (auto at = names.begin(); at - names.begin() < length; at = std::find(at, names.end(), '\0') + 1) {
        const auto bytes = fgetxattr(from, &*at, value.data(), value.size());
        if (bytes >= 0)
            fsetxattr(to, &*at, value.data(), static_cast<std::size_t>(bytes), 0);
    }
}

struct Stretch {
    off_t from;
    off_t to;
    std::uint64_t left;

    void advance(std::uint64_t bytes)
    {
        from += static_cast<off_t>(bytes);
        to += static_cast<off_t>(bytes);
        left -= bytes;
    }
};

// Room first: a full disk is found before anything is copied, and the copy lies in one piece. Where the file
// system cannot promise it, the writing finds out.
void makeRoom(int file, std::uint64_t bytes)
{
    if (fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes)) != 0 && errno == ENOSPC)
        failWith("The copy could not be written", errno);
}

// Inside the system, where the file system can; what it leaves is copied by `copyByHand`. The disk begins
// with one piece while the next is copied.
void copyInside(int from, int to, Stretch& stretch)
{
    while (stretch.left > 0) {
        loff_t in = stretch.from;
        loff_t out = stretch.to;
        const auto piece = std::min<std::uint64_t>(stretch.left, pieceSize);
        const auto copied = copy_file_range(from, &in, to, &out, piece, 0);
        if (copied <= 0)
            return;
        sync_file_range(to, stretch.to, copied, SYNC_FILE_RANGE_WRITE);
        stretch.advance(static_cast<std::uint64_t>(copied));
    }
}

void copyByHand(int from, int to, Stretch& stretch)
{
    Text buffer;
    while (stretch.left > 0) {
        buffer.resize(std::min<std::uint64_t>(stretch.left, bufferSize));
        const auto got = pread(from, buffer.data(), buffer.size(), stretch.from);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            failWith("The file could not be read", got < 0 ? errno : EIO);
        buffer.resize(static_cast<std::size_t>(got));
        if (!writeAt(to, buffer, stretch.to))
            failWith("The copy could not be written", errno);
        stretch.advance(buffer.size());
    }
}

// One copy with all bytes shared: nothing is read, and next to nothing is left to force to the disk.
bool copyByReference(int from, int to, const NewEnds& ends)
{
    return ends.head.size() == ends.begin && ioctl(to, FICLONE, from) == 0 &&
           ftruncate(to, static_cast<off_t>(ends.end)) == 0;
}

void copyBetween(int from, int to, const NewEnds& ends)
{
    Stretch stretch{static_cast<off_t>(ends.begin), static_cast<off_t>(ends.head.size()),
                    ends.end - ends.begin};
    makeRoom(to, stretch.left);
    copyInside(from, to, stretch);
    copyByHand(from, to, stretch);
}

// Some file systems know no flush, and say so; that is no failure.
bool force(int descriptor) { return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS; }

void write(int from, int to, const NewEnds& ends)
{
    if (!copyByReference(from, to, ends))
        copyBetween(from, to, ends);
    const auto tailAt = static_cast<off_t>(ends.head.size() + ends.end - ends.begin);
    if (!writeAt(to, ends.head, 0) || !writeAt(to, ends.tail, tailAt) || !force(to))
        failWith("The copy could not be written", errno);
}

bool isSameTime(const timespec& one, const timespec& other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// What another program has changed meanwhile must not be undone.
void requireUnchanged(const struct stat& known, const struct stat& now)
{
    if (now.st_dev != known.st_dev || now.st_ino != known.st_ino || now.st_size != known.st_size ||
        !isSameTime(now.st_mtim, known.st_mtim))
        throw Failure{Trouble::pathOrFileAccess, "Another program has changed the file meanwhile."};
}

void requireStanding(const StandingFile& file)
{
    struct stat now = {};
    stat(file.path.c_str(), &now);
    requireUnchanged(file.status, now);
}

Descriptor openForWriting(const StandingFile& file)
{
    if ((file.status.st_mode & 0222) == 0)
        failWith("The file is write-protected", EACCES);
    Descriptor writable(open(file.path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!writable)
        failWith("The file could not be opened for writing", errno);
    return writable;
}

Text bytesFrom(int descriptor, std::uint64_t at, std::size_t count)
{
    Text bytes(count, '\0');
    const auto got = pread(descriptor, bytes.data(), count, static_cast<off_t>(at));
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return bytes;
}

}

void requireWritable(const StandingFile& file) { openForWriting(file); }

// The file is whole, old or new, without a force of its folder: what is renamed is on the disk already.
void swapEnds(const StandingFile& file, const NewEnds& ends, PartNotes& notes,
              const std::function<void(const Text&)>& approve)
{
    PartFile copy(file.path, &file.status, notes);
    if (copy.error() != 0)
        failWith("A copy could not be made in the file's folder", copy.error());
    copyAttributes(file.descriptor, copy.file().number());
    write(file.descriptor, copy.file().number(), ends);
    approve(copy.path());
    requireStanding(file);
    if (!copy.takePlace())
        failWith("The copy could not be put in the file's place", errno);
}

void overwriteEnd(const StandingFile& file, std::uint64_t at, const Text& bytes)
{
    const Descriptor writable = openForWriting(file);
    requireUnchanged(file.status, statusOf(writable.number()));
    const Text old = bytesFrom(writable.number(), at, bytes.size());
    if (writeAt(writable.number(), bytes, static_cast<off_t>(at)) && force(writable.number()))
        return;
    const int reason = errno;
    const bool undone = writeAt(writable.number(), old, static_cast<off_t>(at)) &&
                        ftruncate(writable.number(), file.status.st_size) == 0;
    failWith(undone ? "The tag could not be written" : "The tag was written in part", reason);
}

void failWith(const char* attempt, int systemError)
{
    const Failure reason = fileFailure(systemError);
    throw Failure{reason.trouble(), Text(attempt) + ": " + reason.description + "."};
}

}
