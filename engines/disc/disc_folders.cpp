// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_folders.h"

#include "files/folders.h"
#include "platform/paths.h"

namespace
{

constexpr std::string_view folderName = "Velmora Discs";

}

Text DiscFolders::toWrite() const { return joined(isFolder(music) ? music : home, folderName); }

std::vector<Text> DiscFolders::toRead() const
{
    std::vector<Text> folders;
    for (const Text& each : {music, home})
        if (!each.empty())
            folders.push_back(joined(each, folderName));
    return folders;
}
