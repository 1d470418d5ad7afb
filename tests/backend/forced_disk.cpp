// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/forced_disk.h"

#include "tests/support/system_calls.h"

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
    return systemCalls::next<int(int)>("fsync")(file);
}

extern "C" int fdatasync(int file)
{
    ForcedDisk::waitAndCount();
    return systemCalls::next<int(int)>("fdatasync")(file);
}
