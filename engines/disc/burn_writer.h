// SPDX-License-Identifier: GPL-3.0-or-later
// The real recorders.
#pragma once

#include "engines/disc/optical_devices.h"
#include "engines/disc/writer_drive.h"

#include <chrono>

namespace disc
{

// `patience` is how long a recorder may take to say what disc it has, or to get ready.
std::shared_ptr<WriterDrive> makeBurnWriter(const OpticalDevice& device, std::chrono::milliseconds patience);

// Those that there are now. Nothing is asked of a recorder before its disc is wanted: one that is in use, or
// hangs, is listed like any other.
std::vector<std::shared_ptr<WriterDrive>> listBurnWriters();

}
