// SPDX-License-Identifier: GPL-3.0-or-later
// A folder that behaves as a disk of a few kilobytes, which can be filled, or a medium that may only be read.
// It needs no rights: calls to the system are answered for it (tests/small_disk), also in processes that are
// forked while it stands.
#pragma once

#include "platform/text.h"

class SmallDisk
{
public:
    SmallDisk(const Text& folder, int kilobytes); // makes the folder
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    void becomeReadOnly();
    void takePieces(); // of every write its first thousand bytes at most
};
