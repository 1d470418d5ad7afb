// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/real_drives.h"

#include "files/module.h"

namespace disc
{

namespace
{

using std::chrono::milliseconds;

constexpr milliseconds readersPatience{12000}; // more than a disc takes that was just put in
constexpr milliseconds writersPatience{20000}; // a tray to close, a disc to spin up, a retry

}

std::vector<std::shared_ptr<ReaderDrive>> listRealReaders()
{
    std::vector<std::shared_ptr<ReaderDrive>> drives;
    for (const OpticalDevice& device : opticalDevices())
        if (const auto* real = files::bound<RealDrives>())
            drives.push_back(real->makeReader(device, readersPatience));
    return drives;
}

std::vector<std::shared_ptr<WriterDrive>> listRealWriters()
{
    std::vector<std::shared_ptr<WriterDrive>> drives;
    for (const OpticalDevice& device : opticalDevices())
        if (const auto* real = device.records ? files::bound<RealDrives>() : nullptr)
            drives.push_back(real->makeWriter(device, writersPatience));
    return drives;
}

}
