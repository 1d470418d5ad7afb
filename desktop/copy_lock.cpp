// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/copy_lock.h"

#include "files/folders.h"
#include "files/set_aside.h"
#include "platform/paths.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <tuple>

namespace desktop
{

namespace
{

constexpr pid_t unnamed = -1;

// The sticky bit keeps what clears up a runtime folder from taking the file for a forgotten one.
constexpr mode_t lockMode = S_ISVTX | S_IRUSR | S_IWUSR;

files::Descriptor openLock(const Text& path)
{
    return files::Descriptor(
        open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
}

// Whoever has the lock writes its number at once.
pid_t writtenNumber(const files::Descriptor& file)
{
    for (int tries = 0; tries < 50; ++tries, usleep(2000)) {
        char digits[16] = {};
        const ssize_t got = pread(file.number(), digits, sizeof digits - 1, 0);
        const long number = got > 0 ? std::strtol(digits, nullptr, 10) : 0;
        if (number > 0)
            return static_cast<pid_t>(number);
    }
    return unnamed;
}

void writeNumber(const files::Descriptor& file)
{
    const Text number = std::to_string(getpid()) + '\n';
    std::ignore = fchmod(file.number(), lockMode);
    std::ignore = pwrite(file.number(), number.data(), number.size(), 0);
    std::ignore = ftruncate(file.number(), static_cast<off_t>(number.size()));
}

// Two names of one folder, links and mounts included, are one.
Text lockPath(const Text& lockFolder, const char* use, const files::FileIdentity& shared)
{
    return joined(lockFolder, Text("velmora-") + use + '-' + std::to_string(shared.device) + '-' +
                                  std::to_string(shared.number) + ".lock");
}

Text lockFolderOf(const Environment& environment)
{
    const Text& runtime = environment.runtimeFolder;
    const bool usable = runtime.starts_with(pathSeparator) && files::isFolder(runtime) &&
                        faccessat(AT_FDCWD, runtime.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
    return usable ? runtime : stateFolder(environment);
}

}

CopyLock::CopyLock(const Environment& environment)
{
    const Text lockFolder = lockFolderOf(environment);
    files::makeFolders(lockFolder);
    store_ = taken(lockFolder, "settings", configFolder(environment));
    if (holder_ == 0)
        folder_ = taken(lockFolder, "folder", applicationFolder(environment));
}

files::Descriptor CopyLock::taken(const Text& lockFolder, const char* use, const Text& shared)
{
    if (!files::makeFolders(shared))
        return files::Descriptor();
    files::Descriptor file = openLock(lockPath(lockFolder, use, files::identityOf(shared)));
    if (!file)
        return file;
    if (flock(file.number(), LOCK_EX | LOCK_NB) == 0)
        writeNumber(file);
    else if (errno == EWOULDBLOCK)
        holder_ = writtenNumber(file);
    return file;
}

}
