// SPDX-License-Identifier: GPL-3.0-or-later
// The drives that discs are read from, by number, and what is known to lie in them. From any thread; waits
// for no job, and not long for a disk that does not answer: until it does, what it told last holds.
#pragma once

#include "engines/disc/busy_devices.h"
#include "engines/disc/reader_drive.h"
#include "platform/mutex.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace disc
{

class ReaderTable
{
public:
    // The drives of the first list come first. There is always one: an empty one where the lists have none.
    ReaderTable(std::vector<ListReaders> lists, std::shared_ptr<BusyDevices> devices);

    void scan(); // looks for drives anew; those that stay keep their order

    // Gives drives that have come since then the numbers behind all others.
    void addNew();

    // From now on each drive that is asked for its disc looks at it once more.
    void lookAnew();

    std::vector<std::shared_ptr<ReaderDrive>> drives(); // as the last scan found them; the first is made here

    // The disc in the drive, looked at once for all questions of one listing; while the drive is in use, as
    // it was last seen.
    DiscContents contents(ReaderDrive& drive);

    // As it was last seen; only a drive that was never asked is asked now.
    DiscContents lastContents(ReaderDrive& drive);

private:
    using ReaderDrives = std::vector<std::shared_ptr<ReaderDrive>>;
    struct List {
        std::shared_ptr<const ListReaders> ask;
        ReaderDrives last;
    };

    std::vector<ReaderDrives> listed() EXCLUDES(mutex_);
    void take(std::vector<ReaderDrives> lists) REQUIRES(mutex_);
    std::size_t placeOf(const ReaderDrive& drive) const REQUIRES(mutex_);
    bool isKnown(const ReaderDrive& drive) const REQUIRES(mutex_);

    struct SeenContents {
        DiscContents contents;
        bool isFresh = true;
    };
    std::optional<SeenContents> seen(const ReaderDrive& drive);

    Mutex listing_; // before the other; held while the lists are asked
    std::vector<List> lists_ GUARDED_BY(listing_);
    std::shared_ptr<BusyDevices> devices_;
    Mutex mutex_;
    std::vector<std::shared_ptr<ReaderDrive>> drives_ GUARDED_BY(mutex_);
    std::map<Text, SeenContents> seen_ GUARDED_BY(mutex_); // by device
};

}
