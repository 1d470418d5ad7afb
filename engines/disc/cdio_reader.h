// SPDX-License-Identifier: GPL-3.0-or-later
// The real drives that discs are read from.
#pragma once

#include "engines/disc/optical_devices.h"
#include "engines/disc/reader_drive.h"

#include <chrono>

namespace disc
{

// `contents` waits as long as `patience` for a drive that hangs, once; it has no disc then until it answers
// again.
std::shared_ptr<ReaderDrive> makeCdioReader(const OpticalDevice& device, std::chrono::milliseconds patience);

// Those that there are now.
std::vector<std::shared_ptr<ReaderDrive>> listCdioReaders();

}
