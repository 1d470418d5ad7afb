// SPDX-License-Identifier: GPL-3.0-or-later
// The drives of a system with one tree of folders: the tree, the home folder, and what people mount.
#pragma once

#include "platform/drives.h"

namespace desktop
{

class MountedDrives final : public Drives
{
public:
    struct Sources {
        Text home;
        Text mounts = "/proc/self/mountinfo";
        Text labels = "/dev/disk/by-label"; // links to devices, named by the labels of their file systems
    };

    explicit MountedDrives(Sources sources) : sources_(std::move(sources)) {}

    // `/`, the home folder, then sticks, discs, shares and further disks by path, one for each device. What
    // does not answer within 200 ms is left out; a share is not asked.
    std::vector<Drive> all() override;

private:
    Text labelOf(const Text& device) const;

    Sources sources_;
};

}
