// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/file_swap.h"

#include "files/output_file.h"
#include "platform/failure.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <vector>

namespace files
{

namespace
{

constexpr std::size_t bufferSize = 1 << 20;
constexpr std::uint64_t pieceSize = 4 << 20;

using Step = std::function<void()>;

struct stat statusOf(const Descriptor& file)
{
    struct stat status = {};
    fstat(file.number(), &status);
    return status;
}

// A failure of what is attempted, with that in front of the reason.
template <typename Attempt>
void attempting(const char* words, Attempt attempt)
{
    const auto say = [&](const Failure& reason) {
        throw Failure{reason.trouble(), Text(words) + ": " + reason.description + "."};
    };
    guarded(say, attempt);
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

struct CopyRange {
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

// Inside the system, where the file system can; what it leaves is copied by `copyByHand`. The disk begins
// with one piece while the next is copied.
void copyInside(int from, int to, CopyRange& stretch, const Step& step)
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
        step();
    }
}

void copyByHand(const Descriptor& from, OutputFile& to, CopyRange& stretch, const Step& step)
{
    while (stretch.left > 0) {
        const Text bytes = bytesAt(from, std::min<std::uint64_t>(stretch.left, bufferSize), stretch.from);
        if (bytes.empty())
            failWith("The file could not be read", EIO);
        to.write(bytesOf(bytes), stretch.to);
        stretch.advance(bytes.size());
        step();
    }
}

// One copy with all bytes shared: nothing is read, and next to nothing is left to force to the disk.
bool copyByReference(int from, int to, const NewEnds& ends)
{
    if (ends.head.size() != ends.begin || ioctl(to, FICLONE, from) != 0)
        return false;
    if (ftruncate(to, static_cast<off_t>(ends.end)) != 0)
        throw fileFailure(errno);
    return true;
}

// Room first: a full disk is found before anything is copied, and the copy lies in one piece.
void copyBetween(const Descriptor& from, OutputFile& to, const NewEnds& ends, const Step& step)
{
    CopyRange stretch{static_cast<off_t>(ends.begin), static_cast<off_t>(ends.head.size()),
                      ends.end - ends.begin};
    to.makeRoom(static_cast<std::int64_t>(stretch.left));
    copyInside(from.number(), to.file().number(), stretch, step);
    copyByHand(from, to, stretch, step);
}

// A disk that is asked for all at once tells nothing until its end.
void force(OutputFile& copy, std::uint64_t size, const Step& step)
{
    constexpr unsigned whole =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    for (std::uint64_t at = 0; at < size; at += pieceSize) {
        sync_file_range(copy.file().number(), static_cast<off_t>(at), pieceSize, whole);
        step();
    }
    copy.force();
}

void write(const Descriptor& from, OutputFile& to, const NewEnds& ends, const Step& step)
{
    if (!copyByReference(from.number(), to.file().number(), ends))
        copyBetween(from, to, ends, step);
    const std::uint64_t tail = ends.head.size() + ends.end - ends.begin;
    to.write(bytesOf(ends.head), 0);
    to.write(bytesOf(ends.tail), static_cast<off_t>(tail));
    force(to, tail + ends.tail.size(), step);
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

}

void requireWritable(const StandingFile& file) { openForWriting(file); }

// The file is whole, old or new, without a force of its folder: what is renamed is on the disk already.
void swapEnds(const StandingFile& file, const NewEnds& ends, PartNotes& notes,
              const std::function<void(const Text&)>& approve, const Step& step)
{
    std::optional<OutputFile> copy;
    attempting("A copy could not be made in the file's folder",
               [&] { copy.emplace(file.path, file.status, notes); });
    copyAttributes(file.file.number(), copy->file().number());
    attempting("The copy could not be written", [&] { write(file.file, *copy, ends, step); });
    approve(copy->partPath());
    requireStanding(file);
    step();
    attempting("The copy could not be put in the file's place", [&] { copy->takePlace(); });
}

void overwriteEnd(const StandingFile& file, std::uint64_t at, const Text& bytes)
{
    const Descriptor writable = openForWriting(file);
    requireUnchanged(file.status, statusOf(writable));
    const auto place = static_cast<std::int64_t>(at);
    const auto standing = std::clamp<std::int64_t>(file.status.st_size - place, 0, std::ssize(bytes));
    const Text old = bytesAt(writable, bytes.size(), place);
    if (std::ssize(old) < standing) // what could not be put back is not written over
        failWith("The file could not be read", EIO);
    if (writeAt(writable, bytesOf(bytes), place) && force(writable))
        return;
    const int reason = errno;
    const bool undone =
        writeAt(writable, bytesOf(old), place) && ftruncate(writable.number(), file.status.st_size) == 0;
    failWith(undone ? "The tag could not be written" : "The tag was written in part", reason);
}

void failWith(const char* attempt, int systemError)
{
    const Failure reason = fileFailure(systemError);
    throw Failure{reason.trouble(), Text(attempt) + ": " + reason.description + "."};
}

}
