// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/forced_disk.h"

#include "tests/support/system_calls.h"

#include <sys/vfs.h>

#include <thread>

void ForcedDisk::waitAndCount()
{
    if (beforeForce)
        beforeForce();
    std::this_thread::sleep_for(takes_.load());
    ++forcesOfThisThread;
    ++forces;
}

// In the place of the system's own.
extern "C" int fsync(int file)
{
    ForcedDisk::waitAndCount();
    return systemCalls::next<int(int)>("fsync")(file);
}

extern "C" int fdatasync(int file)
{
    ForcedDisk::waitAndCount();
    return systemCalls::next<int(int)>("fdatasync")(file);
}

extern "C" int fstatfs(int file, struct statfs* system)
{
    const auto result = systemCalls::next<int(int, struct statfs*)>("fstatfs")(file, system);
    system->f_type = ForcedDisk::fileSystem;
    return result;
}
