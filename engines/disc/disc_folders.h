// SPDX-License-Identifier: GPL-3.0-or-later
// Where disc images are kept.
#pragma once

#include "platform/text.h"

#include <vector>

namespace disc
{

// The user's folder for music, which need not exist, and home.
struct DiscFolders {
    Text music;
    Text home;

    Text toWrite() const;             // `Velmora Discs`; it need not exist either
    std::vector<Text> toRead() const; // those that a disc may have been written to at any time
};

}
