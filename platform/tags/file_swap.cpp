#include "platform/tags/file_swap.h"

#include "platform/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

constexpr std::string_view copyPrefix = ".velmora-tag-";
constexpr std::string_view copySuffix = ".part";
constexpr std::size_t randomLetters = 8;
constexpr int mostTries = 8;
constexpr std::size_t bufferSize = 1 << 20;

Text folderOf(const Text& path) { return path.substr(0, path.rfind('/') + 1); }

bool isCopyName(std::string_view name)
{
    return name.size() == copyPrefix.size() + randomLetters + copySuffix.size() &&
           name.substr(0, copyPrefix.size()) == copyPrefix &&
           name.substr(name.size() - copySuffix.size()) == copySuffix;
}

Text newCopyName()
{
    std::random_device random;
    Text letters;
    for (std::size_t i = 0; i < randomLetters; ++i)
        letters += static_cast<char>('a' + random() % 26);
    return Text(copyPrefix) + letters + Text(copySuffix);
}

// A copy is locked while somebody writes it, and the lock ends with its writer, however that came about.
void removeIfStale(const Text& path)
{
    const OpenFile copy = openForReading(path);
    if (copy.isOpen() && flock(copy.descriptor(), LOCK_EX | LOCK_NB) == 0)
        unlink(path.c_str());
}

void removeStaleCopies(const Text& folder)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(folder.c_str()), closedir);
    while (const dirent* entry = listing ? readdir(listing.get()) : nullptr)
        if (isCopyName(entry->d_name))
            removeIfStale(folder + entry->d_name);
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
        if (file_.isOpen() && !inPlace_)
            unlink(path_.c_str());
    }

    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    const OpenFile& file() const { return file_; }

    bool putInPlaceOf(const Text& path)
    {
        inPlace_ = rename(path_.c_str(), path.c_str()) == 0;
        return inPlace_;
    }

private:
    void make(const Text& folder)
    {
        path_ = folder + newCopyName();
        file_ = OpenFile(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!file_.isOpen())
            failWith("A copy could not be made in the file's folder", errno);
        flock(file_.descriptor(), LOCK_EX);
    }

    bool isThere() const { return file_.isOpen() && file_.status().st_nlink > 0; }

    Text path_;
    OpenFile file_;
    bool inPlace_ = false;
};

void copyAttributes(const OpenFile& from, const OpenFile& to)
{
    std::vector<char> names(64 * 1024); // the most that the system allows
    const auto length = flistxattr(from.descriptor(), names.data(), names.size());
    std::vector<char> value(64 * 1024);
    for (auto at = names.begin(); at - names.begin() < length; at = std::find(at, names.end(), '\0') + 1) {
        const auto bytes = fgetxattr(from.descriptor(), &*at, value.data(), value.size());
        if (bytes >= 0)
            fsetxattr(to.descriptor(), &*at, value.data(), static_cast<std::size_t>(bytes), 0);
    }
}

void takeOver(const OpenFile& from, const OpenFile& to)
{
    const struct stat old = from.status();
    const struct stat now = to.status();
    const bool isOwner = now.st_uid == old.st_uid && now.st_gid == old.st_gid;
    if (!isOwner && fchown(to.descriptor(), old.st_uid, old.st_gid) != 0)
        failWith("The file's owner could not be kept", EPERM);
    copyAttributes(from, to);
    if (now.st_mode != old.st_mode && fchmod(to.descriptor(), old.st_mode & 07777) != 0)
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
void copyInside(const OpenFile& from, const OpenFile& to, Stretch& stretch)
{
    while (stretch.left > 0) {
        loff_t in = stretch.from;
        loff_t out = stretch.to;
        const auto copied = copy_file_range(from.descriptor(), &in, to.descriptor(), &out, stretch.left, 0);
        if (copied <= 0)
            return;
        stretch.advance(static_cast<std::uint64_t>(copied));
    }
}

void copyByHand(const OpenFile& from, const OpenFile& to, Stretch& stretch)
{
    Text buffer;
    while (stretch.left > 0) {
        buffer.resize(std::min<std::uint64_t>(stretch.left, bufferSize));
        const auto got = pread(from.descriptor(), buffer.data(), buffer.size(), stretch.from);
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

void write(const OpenFile& from, const OpenFile& to, const NewEnds& ends)
{
    Stretch stretch{static_cast<off_t>(ends.begin), static_cast<off_t>(ends.head.size()),
                    ends.end - ends.begin};
    if (!writeAt(to, ends.head, 0))
        failWith("The copy could not be written", errno);
    copyInside(from, to, stretch);
    copyByHand(from, to, stretch);
    if (!writeAt(to, ends.tail, stretch.to) || fsync(to.descriptor()) != 0)
        failWith("The copy could not be written", errno);
}

bool sameTime(const timespec& one, const timespec& other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// What another program has changed meanwhile must not be undone.
void requireUnchanged(const Text& path, const struct stat& known)
{
    struct stat now = {};
    if (stat(path.c_str(), &now) != 0 || now.st_dev != known.st_dev || now.st_ino != known.st_ino ||
        now.st_size != known.st_size || !sameTime(now.st_mtim, known.st_mtim))
        throw Failure{75, "Another program has changed the file meanwhile."};
}

// The new name outlives a power failure; a folder that cannot be read is left to the system's own time.
void settle(const Text& folder)
{
    const OpenFile directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isOpen())
        fsync(directory.descriptor());
}

}

void swapEnds(const OpenFile& file, const Text& path, const struct stat& known, const NewEnds& ends)
{
    const Text folder = folderOf(path);
    removeStaleCopies(folder);
    Copy copy(folder);
    takeOver(file, copy.file());
    write(file, copy.file(), ends);
    requireUnchanged(path, known);
    if (!copy.putInPlaceOf(path))
        failWith("The copy could not be put in the file's place", errno);
    settle(folder);
}

void failWith(const char* attempt, int systemError)
{
    const Failure reason = fileFailure(systemError);
    throw Failure{reason.number, Text(attempt) + ": " + reason.description + "."};
}
