#include "platform/disc/discs.h"

#include "platform/disc/burn_writer.h"
#include "platform/disc/cdio_reader.h"
#include "platform/disc/curl_cd_base.h"
#include "platform/disc/disc_reader.h"
#include "platform/disc/disc_writer.h"
#include "platform/disc/image_drive.h"
#include "platform/disc/image_recorder.h"
#include "platform/disc/reader_table.h"

Discs::Discs(DiscFolders folders, Text titleFolder) :
    folders_(std::move(folders)), titleFolder_(std::move(titleFolder)),
    devices_(std::make_shared<BusyDevices>()),
    readers_(std::make_shared<ReaderTable>(std::vector<ListReaders>{listCdioReaders, imagesIn(folders_)},
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
    return makeDiscWriter(listBurnWriters, makeImageRecorder(folders_, notes), devices_, post, shell,
                          sleepLock);
}

std::unique_ptr<CdBase> Discs::makeTitles() const
{
    CddbAccess access;
    access.cacheFolder = titleFolder_;
    access.firstDrive = [readers = readers_] { return readers->drives().front()->name(); };
    access.disc = [readers = readers_] { return readers->contents(*readers->drives().front()); };
    return makeCurlCdBase(std::move(access));
}
