// SPDX-License-Identifier: GPL-3.0-or-later
// The real recorders.
#pragma once

#include "engines/disc/optical_devices.h"
#include "engines/disc/writer_drive.h"

#include <chrono>
#include <memory>

namespace disc
{

// See `RealDrives::makeWriter`.
std::shared_ptr<WriterDrive> makeBurnWriter(const OpticalDevice& device, std::chrono::milliseconds patience);
}
