#include "engines/disc/reader_table.h"

#include <algorithm>

namespace
{

class NoDisc final : public ReaderDrive
{
public:
    Text name() const override { return "Disc image: none"; }
    Text device() const override { return {}; }
    DiscContents contents() override { return {}; }
    std::int32_t readTrack(std::int16_t, TrackSink&, const std::stop_token&) override { return 0; }
};

using Drives = std::vector<std::shared_ptr<ReaderDrive>>;

// What a drive knows of its disc stays when it is found again.
std::shared_ptr<ReaderDrive> knownOr(const std::shared_ptr<ReaderDrive>& drive, const Drives& known)
{
    const auto same = [&](const auto& each) {
        return each->device() == drive->device() && each->name() == drive->name();
    };
    const auto found = std::ranges::find_if(known, same);
    return found == known.end() ? drive : *found;
}

}

ReaderTable::ReaderTable(std::vector<ListReaders> lists, std::shared_ptr<BusyDevices> devices) :
    lists_(std::move(lists)), devices_(std::move(devices))
{
}

void ReaderTable::scan()
{
    const std::lock_guard guard(mutex_);
    scanLocked();
}

void ReaderTable::scanLocked()
{
    Drives found;
    for (const auto& list : lists_)
        for (const auto& drive : list())
            found.push_back(knownOr(drive, drives_));
    if (found.empty())
        found.push_back(std::make_shared<NoDisc>());
    drives_ = std::move(found);
}

std::vector<std::shared_ptr<ReaderDrive>> ReaderTable::drives()
{
    const std::lock_guard guard(mutex_);
    if (drives_.empty())
        scanLocked();
    return drives_;
}

DiscContents ReaderTable::contents(ReaderDrive& drive)
{
    const auto claim = devices_->claim(drive.device(), BusyDevices::Use::reading);
    if (!claim)
        return seen(drive).value_or(DiscContents());
    const auto now = drive.contents();
    const std::lock_guard guard(mutex_);
    return seen_[drive.device()] = now;
}

DiscContents ReaderTable::lastContents(ReaderDrive& drive)
{
    const auto last = seen(drive);
    return last ? *last : contents(drive);
}

std::optional<DiscContents> ReaderTable::seen(const ReaderDrive& drive)
{
    const std::lock_guard guard(mutex_);
    const auto found = seen_.find(drive.device());
    return found == seen_.end() ? std::nullopt : std::optional(found->second);
}
