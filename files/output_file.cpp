// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/output_file.h"

#include "files/folders.h"
#include "platform/paths.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace files
{

namespace
{

[[noreturn]] void fail(int systemError)
{
    throw systemError == ENOENT ? Failure(Trouble::pathNotFound) : fileFailure(systemError);
}

[[noreturn]] void failToMake(int systemError)
{
    for (const int refusal : {EACCES, EPERM, EROFS, ENAMETOOLONG})
        if (systemError == refusal)
            throw FolderRefuses(fileFailure(systemError).trouble());
    fail(systemError);
}

// A long title is cut: the target's name may be as long as the file system allows, and this one is longer.
Text partPathFor(const Text& target)
{
    const Text title(firstCharacters(fileTitle(target), 50));
    return target.substr(0, target.rfind(pathSeparator) + 1) + title + '.' + randomName() + ".part";
}

// Asked before the note is made: a tick that is refused again and again would write notes for ever.
bool takesFiles(const Text& folder)
{
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

// A large block sets out for the disk at once, so that `force` has little left to wait for.
void sendOff(const Descriptor& file, std::int64_t at, std::size_t count)
{
    constexpr std::size_t large = 1 << 18;
    if (count >= large)
        sync_file_range(file.number(), at, static_cast<off_t>(count), SYNC_FILE_RANGE_WRITE);
}

// Elsewhere a disk may come back from a power cut with the new name and none of the bytes. ext4 brings them
// there before a rename that it has been told of; what is in memory is gone with the power in any case.
bool bringsBytesBeforeNames(const Descriptor& file)
{
    struct statfs system;
    return fstatfs(file.number(), &system) == 0 &&
           (system.f_type == EXT4_SUPER_MAGIC || system.f_type == TMPFS_MAGIC);
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

OutputFile::OutputFile(Text target, const std::optional<struct stat>& old, PartNotes& notes) :
    target_(std::move(target)), path_(partPathFor(target_)), notes_(notes)
{
    if (!takesFiles(folderOf(path_)))
        failToMake(errno);
    notes_.note(path_);
    file_ = Descriptor(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, old ? 0600 : 0666));
    if (file_ && (!old || resembles(*old)))
        return;
    const int reason = errno;
    if (file_)
        unlink(path_.c_str());
    forget();
    failToMake(reason);
}

OutputFile::~OutputFile()
{
    if (path_.empty())
        return;
    unlink(path_.c_str());
    forget();
}

void OutputFile::forget() { notes_.done(std::exchange(path_, {})); }

// Owner first: changing it may clear bits of the mode.
bool OutputFile::resembles(const struct stat& old) const
{
    struct stat own;
    if (fstat(file_.number(), &own) != 0)
        return false;
    const bool sameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    if (!sameOwner && fchown(file_.number(), old.st_uid, old.st_gid) != 0)
        return false;
    return fchmod(file_.number(), old.st_mode & 07777) == 0;
}

// Where the file system cannot promise the room, the writing finds out.
void OutputFile::makeRoom(std::int64_t bytes)
{
    if (fallocate(file_.number(), FALLOC_FL_KEEP_SIZE, 0, bytes) != 0 && errno == ENOSPC)
        fail(errno);
}

void OutputFile::append(std::span<const std::byte> bytes)
{
    write(bytes, bytes_);
    bytes_ += static_cast<std::int64_t>(bytes.size());
}

void OutputFile::write(std::span<const std::byte> bytes, std::int64_t at)
{
    if (!writeAt(file_, bytes, at))
        fail(errno);
    sendOff(file_, at, bytes.size());
}

Descriptor OutputFile::openPastCache() const
{
    const Text path = "/proc/self/fd/" + std::to_string(file_.number());
    return Descriptor(open(path.c_str(), O_WRONLY | O_DIRECT | O_CLOEXEC));
}

void OutputFile::startForce()
{
    if (!files::startForce(file_))
        fail(errno);
}

void OutputFile::force()
{
    if (!files::force(file_))
        fail(errno);
}

void OutputFile::keepOrder()
{
    if (!bringsBytesBeforeNames(file_))
        force();
}

void OutputFile::takePlace()
{
    keepOrder();
    if (rename(path_.c_str(), target_.c_str()) != 0)
        fail(errno);
    forget();
}

bool OutputFile::takeFreePlace(const Text& path)
{
    keepOrder();
    const bool hasTaken = renameWithoutReplacing(path_, path);
    if (!hasTaken && errno != EEXIST)
        fail(errno);
    if (hasTaken)
        forget();
    return hasTaken;
}

void OutputFile::finish()
{
    const Text folder = folderOf(target_); // what has its place has not failed any more
    force();
    takePlace();
    syncFolder(folder);
}

void replaceFile(const Text& path, std::string_view bytes, PartNotes& notes)
{
    makeFolders(folderOf(path));
    OutputFile file(path, notes);
    file.append(bytesOf(bytes));
    file.takePlace();
}

// Some file systems, on the network above all, cannot do both in one step.
bool renameWithoutReplacing(const Text& from, const Text& to)
{
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat status;
    if (lstat(to.c_str(), &status) == 0)
        errno = EEXIST;
    return errno == ENOENT && rename(from.c_str(), to.c_str()) == 0;
}

OutputFile outputNamed(const Text& named, const Text& path, PartNotes& notes)
{
    try {
        return OutputFile(path, notes);
    } catch (const Failure& failure) {
        throw Failure{failure.trouble(), named + " cannot be written: " + failure.description + "."};
    }
}

}
