// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/discs.h"

#include "engines/disc/curl_cd_base.h"
#include "engines/disc/disc_reader.h"
#include "engines/disc/disc_writer.h"
#include "engines/disc/image_drive.h"
#include "engines/disc/image_recorder.h"
#include "engines/disc/reader_table.h"
#include "engines/disc/real_drives.h"

namespace disc
{

Discs::Discs(DiscFolders folders, Text titleFolder) :
    folders_(std::move(folders)), titleFolder_(std::move(titleFolder)),
    devices_(std::make_shared<BusyDevices>()),
    readers_(std::make_shared<ReaderTable>(std::vector<ListReaders>{listRealReaders, imagesIn(folders_)},
                                           devices_))
{
}

std::unique_ptr<ACD> Discs::makeReader(Post& post, Shell& shell, PartNotes& notes, SleepLock& sleepLock) const
{
    return makeDiscReader(readers_, devices_, post, shell, notes, sleepLock);
}

std::unique_ptr<ACDWRITE> Discs::makeWriter(Post& post, Shell& shell, PartNotes& notes,
                                            SleepLock& sleepLock) const
{
    return makeDiscWriter(listRealWriters, makeImageRecorder(folders_, notes), devices_, post, shell,
                          sleepLock);
}

std::unique_ptr<CdBase> Discs::makeTitles(std::shared_ptr<PartNotes> notes, CddbAccess access) const
{
    access.cacheFolder = titleFolder_;
    access.notes = std::move(notes);
    access.firstDrive = [readers = readers_] { return readers->drives().front()->name(); };
    access.disc = [readers = readers_] { return readers->contents(*readers->drives().front()); };
    return makeCurlCdBase(std::move(access));
}

}
