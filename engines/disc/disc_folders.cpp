// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_folders.h"

#include "files/folders.h"
#include "platform/paths.h"

namespace disc
{

namespace
{

constexpr std::string_view folderName = "Velmora Discs";

}

Text DiscFolders::toWrite() const { return joined(files::isFolder(music) ? music : home, folderName); }

std::vector<Text> DiscFolders::toRead() const
{
    std::vector<Text> folders;
    for (const Text& each : {music, home})
        if (!each.empty())
            folders.push_back(joined(each, folderName));
    return folders;
}

}
