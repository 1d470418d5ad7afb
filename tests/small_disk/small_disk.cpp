// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/small_disk/small_disk.h"

#include "tests/support/small_disk.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace smallDisk
{

Disk& disk()
{
    static Disk only;
    return only;
}

bool holds(const char* path) { return disk().folder.holds(path); }

bool holds(int file) { return *disk().folder.get() != '\0' && holds(systemCalls::PathOfOpen(file).get()); }

off_t room()
{
    off_t taken = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(disk().folder.get()))
        taken += entry.is_regular_file() ? static_cast<off_t>(entry.file_size()) : 0;
    return std::max<off_t>(disk().bytes - taken, 0);
}

off_t growth(int file, off_t at, off_t bytes)
{
    struct stat status {
    };
    fstat(file, &status);
    return std::max<off_t>(at + bytes - status.st_size, 0);
}

}

SmallDisk::SmallDisk(const Text& folder, int kilobytes)
{
    std::filesystem::create_directory(folder);
    smallDisk::disk().bytes = off_t{kilobytes} * 1024;
    smallDisk::disk().folder.set(folder);
}

SmallDisk::~SmallDisk()
{
    smallDisk::disk().folder.clear();
    smallDisk::disk().isReadOnly = smallDisk::disk().takesPieces = false;
}

void SmallDisk::becomeReadOnly() { smallDisk::disk().isReadOnly = true; }

void SmallDisk::takePieces() { smallDisk::disk().takesPieces = true; }
