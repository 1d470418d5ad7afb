// SPDX-License-Identifier: GPL-3.0-or-later
// The real drives: a module that is bound when this computer is seen to have one.
#pragma once

#include "engines/disc/optical_devices.h"
#include "engines/disc/reader_drive.h"
#include "engines/disc/writer_drive.h"

#include <chrono>

namespace disc
{

struct RealDrives {
    static constexpr const char* module = "discs";

    // `contents` waits as long as `patience` for a drive that hangs, once; it has no disc then until it
    // answers again.
    std::shared_ptr<ReaderDrive> (*makeReader)(const OpticalDevice& device,
                                               std::chrono::milliseconds patience);

    // `patience` is how long a recorder may take to say what disc it has, or to get ready.
    std::shared_ptr<WriterDrive> (*makeWriter)(const OpticalDevice& device,
                                               std::chrono::milliseconds patience);
};

// Those that there are now.
std::vector<std::shared_ptr<ReaderDrive>> listRealReaders();

// Nothing is asked of a recorder before its disc is wanted: one that is in use, or hangs, is listed like any
// other.
std::vector<std::shared_ptr<WriterDrive>> listRealWriters();

}
