// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/mounted_drives.h"

#include "desktop/mounts.h"
#include "files/descriptor.h"
#include "files/errand.h"
#include "files/folders.h"
#include "platform/paths.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <set>

namespace desktop
{

namespace
{

constexpr std::string_view peoplesFolders[] = {"/media", "/run/media", "/mnt"};

// The system's own; whoever wants something there finds it by way of `/`.
constexpr std::string_view systemFolders[] = {"/boot", "/dev",  "/efi", "/etc", "/proc",
                                              "/run",  "/snap", "/sys", "/usr", "/var"};

constexpr std::string_view networkTypes[] = {"nfs",  "nfs4",       "cifs",        "smb3",           "smbfs",
                                             "ceph", "fuse.sshfs", "fuse.rclone", "fuse.glusterfs", "9p",
                                             "afs",  "davfs"};

constexpr std::string_view hiddenTypes[] = {"autofs",   "devtmpfs", "erofs",       "overlay", "proc",
                                            "squashfs", "sysfs",    "fuse.portal", "tmpfs"};

template <typename List>
bool isOneOf(const List& list, std::string_view value)
{
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

template <typename List>
bool liesInOneOf(const List& folders, std::string_view path)
{
    return std::any_of(std::begin(folders), std::end(folders),
                       [&](std::string_view folder) { return path != folder && liesIn(path, folder); });
}

bool isOnNetwork(const Mount& mount) { return isOneOf(networkTypes, mount.type); }
bool isOnDisk(const Mount& mount) { return mount.source.starts_with("/dev/") || mount.type == "zfs"; }

bool isForPeople(const Mount& mount)
{
    if (isOneOf(hiddenTypes, mount.type))
        return false;
    if (liesInOneOf(peoplesFolders, mount.folder))
        return true;
    const bool systems = isOneOf(systemFolders, mount.folder) || liesInOneOf(systemFolders, mount.folder);
    return !systems && (isOnDisk(mount) || isOnNetwork(mount));
}

bool isReadableFolder(const Text& path)
{
    const auto look = [path] {
        return files::isFolder(path) && faccessat(AT_FDCWD, path.c_str(), R_OK | X_OK, AT_EACCESS) == 0;
    };
    return files::answerWithin<bool>(files::patienceForLists, "drive " + path, look).value_or(false);
}

// A share is not asked: its server may be asleep, and is to stand in the list all the same.
bool isReadable(const Mount& mount) { return isOnNetwork(mount) || isReadableFolder(mount.folder); }

// Bytes that a file name cannot hold stand as `\x` and two hexadecimal digits.
Text decoded(const Text& name)
{
    Text text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool escape = name.compare(i, 2, "\\x") == 0 && i + 3 < name.size();
        text += escape ? static_cast<char>(std::strtol(name.substr(i + 2, 2).c_str(), nullptr, 16)) : name[i];
        i += escape ? 3 : 0;
    }
    return text;
}

// "" for what does not exist.
Text realPath(const Text& path)
{
    std::error_code error;
    return std::filesystem::canonical(path, error).string();
}

}

Text MountedDrives::labelOf(const Text& device) const
{
    const Text path = realPath(device);
    for (const Text& name : files::namesIn(sources_.labels))
        if (!path.empty() && realPath(joined(sources_.labels, name)) == path)
            return decoded(name);
    return {};
}

std::vector<Drive> MountedDrives::all()
{
    const std::vector<Mount> mounts = mountsIn(files::contentOf(sources_.mounts));
    std::vector<Drive> drives{{Text(driveRoot), {}}};
    if (sources_.home != driveRoot && isReadableFolder(sources_.home))
        drives.push_back({sources_.home, {}});
    std::set<Text> devices;
    for (const Drive& drive : drives)
        devices.insert(deviceOf(mounts, drive.path));
    const auto fixed = static_cast<std::ptrdiff_t>(drives.size());
    for (const Mount& mount : mounts)
        if (isForPeople(mount) && mount.device == deviceOf(mounts, mount.folder) && isReadable(mount) &&
            devices.insert(mount.device).second)
            drives.push_back({mount.folder, isOnNetwork(mount) ? mount.source : labelOf(mount.source)});
    std::sort(drives.begin() + fixed, drives.end(),
              [](const Drive& a, const Drive& b) { return a.path < b.path; });
    return drives;
}

}
