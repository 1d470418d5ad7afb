// SPDX-License-Identifier: GPL-3.0-or-later
// The disc reader over real drives and disc images.
#pragma once

#include "platform/acd.h"

#include <memory>

class PartNotes;
class Post;
class Shell;
class SleepLock;

namespace disc
{

class BusyDevices;
class ReaderTable;

// `devices` is shared with the disc writer. What goes wrong while a track is read is told through `shell`.
std::unique_ptr<ACD> makeDiscReader(std::shared_ptr<ReaderTable> drives, std::shared_ptr<BusyDevices> devices,
                                    Post& post, Shell& shell, PartNotes& notes, SleepLock& sleepLock);

}
