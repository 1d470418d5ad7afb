// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/set_aside.h"

#include "files/descriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cstdio>

namespace files
{

namespace
{

// The log goes before the file: it would be taken for a part of the new one.
void renameAll(const Text& path)
{
    const Text aside = path + ".damaged";
    for (const char* ending : {"-wal", "-shm", ""})
        if (rename((path + ending).c_str(), (aside + ending).c_str()) != 0)
            unlink((aside + ending).c_str());
}

}

FileIdentity identityOf(const Text& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? FileIdentity{status.st_dev, status.st_ino} : FileIdentity{};
}

// The lock is on the damaged file itself: of two processes, the second then finds another file there.
void setAside(const Text& path, const FileIdentity& damaged)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file && flock(file.number(), LOCK_EX) == 0 && identityOf(path) == damaged)
        renameAll(path);
}

}
