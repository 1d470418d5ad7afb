#include "files/file_swap.h"

#include "files/descriptor.h"
#include "files/folders.h"
#include "platform/failure.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <vector>

namespace
{

constexpr std::string_view copyPrefix = ".velmora-tag-";
constexpr std::string_view copySuffix = ".part";
constexpr int mostTries = 8;
constexpr std::size_t bufferSize = 1 << 20;

struct stat statusOf(int descriptor)
{
    struct stat status = {};
    fstat(descriptor, &status);
    return status;
}

bool isCopyName(std::string_view name)
{
    return name.starts_with(copyPrefix) && name.ends_with(copySuffix) &&
           name.size() == copyPrefix.size() + randomName().size() + copySuffix.size();
}

// A copy is locked while somebody writes it, and the lock ends with its writer, however that came about.
void removeIfStale(const Text& path)
{
    const Descriptor copy(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    const bool isFile = copy && S_ISREG(statusOf(copy.number()).st_mode);
    if (isFile && flock(copy.number(), LOCK_EX | LOCK_NB) == 0)
        unlink(path.c_str());
}

void removeStaleCopies(const Text& folder)
{
    for (const Text& name : namesIn(folder))
        if (isCopyName(name))
            removeIfStale(folder + '/' + name);
}

// The copy beside the file, gone at the end unless it was put in place.
class Copy
{
public:
    // Between its making and its lock a copy may be taken for stale; then another is made.
    explicit Copy(const Text& folder)
    {
        for (int tries = 0; tries < mostTries && !isThere(); ++tries)
            make(folder);
    }

    ~Copy()
    {
        if (!inPlace_)
            unlink(path_.c_str());
    }

    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    const Text& path() const { return path_; }
    int descriptor() const { return file_.number(); }

    bool putInPlaceOf(const Text& path)
    {
        inPlace_ = rename(path_.c_str(), path.c_str()) == 0;
        return inPlace_;
    }

private:
    void make(const Text& folder)
    {
        path_ = folder + '/' + Text(copyPrefix) + randomName() + Text(copySuffix);
        file_ = Descriptor(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!file_)
            failWith("A copy could not be made in the file's folder", errno);
        flock(file_.number(), LOCK_EX);
    }

    bool isThere() const { return file_ && statusOf(file_.number()).st_nlink > 0; }

    Text path_;
    Descriptor file_;
    bool inPlace_ = false;
};

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

void takeOver(const struct stat& old, int from, int to)
{
    const struct stat now = statusOf(to);
    const bool isOwner = now.st_uid == old.st_uid && now.st_gid == old.st_gid;
    if (!isOwner && fchown(to, old.st_uid, old.st_gid) != 0)
        failWith("The file's owner could not be kept", EPERM);
    copyAttributes(from, to);
    if (now.st_mode != old.st_mode && fchmod(to, old.st_mode & 07777) != 0)
        failWith("The file's permissions could not be kept", errno);
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

// Inside the system, where the file system can; what it leaves is copied by `copyByHand`.
void copyInside(int from, int to, Stretch& stretch)
{
    while (stretch.left > 0) {
        loff_t in = stretch.from;
        loff_t out = stretch.to;
        const auto copied = copy_file_range(from, &in, to, &out, stretch.left, 0);
        if (copied <= 0)
            return;
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

void write(int from, int to, const NewEnds& ends)
{
    Stretch stretch{static_cast<off_t>(ends.begin), static_cast<off_t>(ends.head.size()),
                    ends.end - ends.begin};
    if (!writeAt(to, ends.head, 0))
        failWith("The copy could not be written", errno);
    copyInside(from, to, stretch);
    copyByHand(from, to, stretch);
    if (!writeAt(to, ends.tail, stretch.to) || fsync(to) != 0)
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
        throw Failure{75, "Another program has changed the file meanwhile."};
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

void swapEnds(const StandingFile& file, const NewEnds& ends, const std::function<void(const Text&)>& approve)
{
    const Text folder = folderOf(file.path);
    removeStaleCopies(folder);
    Copy copy(folder);
    takeOver(file.status, file.descriptor, copy.descriptor());
    write(file.descriptor, copy.descriptor(), ends);
    approve(copy.path());
    requireStanding(file);
    if (!copy.putInPlaceOf(file.path))
        failWith("The copy could not be put in the file's place", errno);
    syncFolder(folder);
}

void overwriteEnd(const StandingFile& file, std::uint64_t at, const Text& bytes)
{
    const Descriptor writable = openForWriting(file);
    requireUnchanged(file.status, statusOf(writable.number()));
    const Text old = bytesFrom(writable.number(), at, bytes.size());
    if (writeAt(writable.number(), bytes, static_cast<off_t>(at)) && fsync(writable.number()) == 0)
        return;
    const int reason = errno;
    const bool undone = writeAt(writable.number(), old, static_cast<off_t>(at)) &&
                        ftruncate(writable.number(), file.status.st_size) == 0;
    failWith(undone ? "The tag could not be written" : "The tag was written in part", reason);
}

void failWith(const char* attempt, int systemError)
{
    const Failure reason = fileFailure(systemError);
    throw Failure{reason.number, Text(attempt) + ": " + reason.description + "."};
}
