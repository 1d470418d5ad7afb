// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/mapped_drives.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

namespace simulated
{

namespace
{

struct Mapped {
    dev_t device;
    ino_t inode;
    Opened drive;
};

std::mutex mutex;
std::vector<Mapped> mappedDrives;

bool isSame(const Mapped& mapped, const struct stat& status)
{
    return mapped.inode == status.st_ino && mapped.device == status.st_dev;
}

int reopened(int descriptor)
{
    return open(("/proc/self/fd/" + std::to_string(descriptor)).c_str(), O_RDWR | O_CLOEXEC);
}

Opened found(const struct stat& status)
{
    const std::lock_guard lock(mutex);
    for (const Mapped& mapped : mappedDrives)
        if (isSame(mapped, status))
            return mapped.drive;
    return {};
}

}

std::optional<int> driveNumber(const char* path)
{
    constexpr std::size_t prefix = 7;
    if (path == nullptr || std::strncmp(path, "/dev/sr", prefix) != 0 || path[prefix] == 0)
        return std::nullopt;
    char* end = nullptr;
    const long number = std::strtol(path + prefix, &end, 10);
    return *end == 0 ? std::optional(static_cast<int>(number)) : std::nullopt;
}

std::string statePath(int number)
{
    const char* const folder = std::getenv(folderVariable);
    return std::string(folder ? folder : "/nonexistent") + "/sr" + std::to_string(number);
}

Opened openedDrive(int descriptor)
{
    struct stat status;
    {
        const std::lock_guard lock(mutex);
        if (mappedDrives.empty())
            return {};
    }
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return found(status);
}

// Through an opening of its own: a mapping keeps the opening that it came from, and what that one claims.
void noteOpened(int descriptor, int number)
{
    struct stat status;
    if (fstat(descriptor, &status) != 0 || found(status).state != nullptr)
        return;
    const int file = reopened(descriptor);
    void* const state = mmap(nullptr, sizeof(Drive), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (state == MAP_FAILED)
        return;
    const std::lock_guard lock(mutex);
    mappedDrives.push_back({status.st_dev, status.st_ino, {static_cast<Drive*>(state), number}});
}

}
