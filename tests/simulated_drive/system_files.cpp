// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/system_files.h"

#include "tests/simulated_drive/mapped_drives.h"

#include <cstdio>
#include <fstream>
#include <string_view>

namespace simulated
{

namespace
{

constexpr std::string_view listPath = "/proc/sys/dev/cdrom/info";
constexpr std::string_view nodesPath = "/sys/class/block/sr";
constexpr int mostDrives = 32;

std::optional<Drive> storedDrive(int number)
{
    std::ifstream file(statePath(number), std::ios::binary);
    Drive drive;
    if (!file.read(reinterpret_cast<char*>(&drive), sizeof drive))
        return std::nullopt;
    return drive;
}

// The system lists the drive that came last first.
std::string list()
{
    std::string nodes = "drive name:\t", records = "Can write CD-R:\t";
    for (int number = mostDrives - 1; number >= 0; --number) {
        const auto drive = storedDrive(number);
        if (!drive)
            continue;
        nodes += "\tsr" + std::to_string(number);
        records += drive->canWrite ? "\t1" : "\t0";
    }
    return "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\n" + nodes + "\ndrive speed:\t\t48\n" +
           records + "\nCan write CD-RW:\t1\n\n";
}

std::string padded(std::string_view text, std::size_t size)
{
    std::string field(text);
    field.resize(size, ' ');
    return field + '\n';
}

}

std::optional<std::string> systemFile(const char* path)
{
    const std::string_view asked = path ? path : "";
    if (asked == listPath)
        return list();
    int number = 0;
    char name[16] = {};
    if (!asked.starts_with(nodesPath) ||
        std::sscanf(path + nodesPath.size(), "%d/device/%15s", &number, name) != 2)
        return std::nullopt;
    const auto drive = storedDrive(number);
    if (!drive)
        return std::nullopt;
    return std::string_view(name) == "vendor" ? padded(drive->vendor, 8) : padded(drive->product, 16);
}

}
