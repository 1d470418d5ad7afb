// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/forced_disk.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <thread>

void ForcedDisk::waitAndCount()
{
    std::this_thread::sleep_for(takes_.load());
    ++forcesOfThisThread;
    ++forces;
}

// In the place of the system's own.
extern "C" int fsync(int file)
{
    ForcedDisk::waitAndCount();
    return static_cast<int>(syscall(SYS_fsync, file));
}

extern "C" int fdatasync(int file)
{
    ForcedDisk::waitAndCount();
    return static_cast<int>(syscall(SYS_fdatasync, file));
}
