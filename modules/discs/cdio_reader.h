// SPDX-License-Identifier: GPL-3.0-or-later
// The real drives that discs are read from.
#pragma once

#include "engines/disc/optical_devices.h"
#include "engines/disc/reader_drive.h"

#include <chrono>
#include <memory>

namespace disc
{

// See `RealDrives::makeReader`.
std::shared_ptr<ReaderDrive> makeCdioReader(const OpticalDevice& device, std::chrono::milliseconds patience);
}
