#include "platform/system/part_file.h"

#include "platform/paths.h"
#include "platform/system/folders.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>

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
    if (noted_)
        notes_.done(path_);
}

bool PartFile::takePlace()
{
    if (rename(path_.c_str(), target_.c_str()) != 0)
        return false;
    stands_ = false;
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
