// SPDX-License-Identifier: GPL-3.0-or-later
// The program's disc controls over all drives that there are: real ones and disc images.
#pragma once

#include "engines/disc/curl_cd_base.h"
#include "engines/disc/disc_folders.h"

#include <memory>

class ACD;
class ACDWRITE;
class CdBase;
class PartNotes;
class Post;
class Shell;
class SleepLock;

namespace disc
{

class BusyDevices;
class ReaderTable;

// Its controls share what is known of the drives, and no two of them use one at the same time. Making it, or
// a control, looks for no drive.
class Discs
{
public:
    // Titles that were looked up are kept in `titleFolder`, which is made when first needed.
    Discs(DiscFolders folders, Text titleFolder);

    std::unique_ptr<ACD> makeReader(Post& post, Shell& shell, PartNotes& notes, SleepLock& sleepLock) const;
    std::unique_ptr<ACDWRITE> makeWriter(Post& post, Shell& shell, PartNotes& notes,
                                         SleepLock& sleepLock) const;

    // The titles of the disc in the reader's first drive, from the usual servers or those of `access`.
    std::unique_ptr<CdBase> makeTitles(std::shared_ptr<PartNotes> notes, CddbAccess access = {}) const;

private:
    DiscFolders folders_;
    Text titleFolder_;
    std::shared_ptr<BusyDevices> devices_;
    std::shared_ptr<ReaderTable> readers_;
};

}
