// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/part_file.h"

#include "files/folders.h"
#include "platform/paths.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace files
{

namespace
{

// A long title is cut: the target's name may be as long as the file system allows, and this one is longer.
Text partPath(const Text& target)
{
    const Text title(firstCharacters(fileTitle(target), 50));
    return target.substr(0, target.rfind(pathSeparator) + 1) + title + '.' + randomName() + ".part";
}

// Asked before the note is made: a tick that is refused again and again would write notes for ever.
bool takesFiles(const Text& folder)
{
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

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

PartFile::PartFile(const Text& target, const struct stat* status, PartNotes& notes) :
    target_(target), path_(partPath(target)), notes_(notes)
{
    if (!takesFiles(folderOf(path_))) {
        error_ = errno;
        return;
    }
    notes_.note(path_);
    noted_ = true;
    file_ = Descriptor(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, status ? 0600 : 0666));
    stands_ = static_cast<bool>(file_);
    if (!file_ || (status && !resembles(*status)))
        error_ = errno;
}

PartFile::~PartFile()
{
    if (stands_)
        unlink(path_.c_str());
    forget();
}

void PartFile::forget()
{
    stands_ = false;
    if (std::exchange(noted_, false))
        notes_.done(path_);
}

bool PartFile::takePlace()
{
    if (rename(path_.c_str(), target_.c_str()) != 0)
        return false;
    forget();
    return true;
}

bool PartFile::takeFreePlace(const Text& path)
{
    if (!renameWithoutReplacing(path_, path))
        return false;
    forget();
    return true;
}

// Owner first: changing it may clear bits of the mode.
bool PartFile::resembles(const struct stat& status) const
{
    struct stat own;
    if (fstat(file_.number(), &own) != 0)
        return false;
    const bool sameOwner = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
    if (!sameOwner && fchown(file_.number(), status.st_uid, status.st_gid) != 0)
        return false;
    return fchmod(file_.number(), status.st_mode & 07777) == 0;
}

}
