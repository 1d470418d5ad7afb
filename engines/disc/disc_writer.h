// SPDX-License-Identifier: GPL-3.0-or-later
// The disc writer over real recorders and the one that makes disc images.
#pragma once

#include "engines/disc/writer_drive.h"
#include "platform/acd_write.h"

#include <memory>

class Post;
class Shell;
class SleepLock;

namespace disc
{

class BusyDevices;

// The real recorders come first, the one that makes disc images is always there. `devices` is shared with the
// disc reader. Why a disc could not be written is told through `shell`.
std::unique_ptr<ACDWRITE> makeDiscWriter(ListWriters recorders, std::shared_ptr<WriterDrive> imageRecorder,
                                         std::shared_ptr<BusyDevices> devices, Post& post, Shell& shell,
                                         SleepLock& sleepLock);

}
