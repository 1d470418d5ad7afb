// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/real_drives.h"
#include "files/module_head.h"
#include "modules/discs/burn_writer.h"
#include "modules/discs/cdio_reader.h"

namespace
{

constexpr disc::RealDrives drives{disc::makeCdioReader, disc::makeBurnWriter};

}

VELMORA_MODULE(discs, drives);
