// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/reader_table.h"

#include "files/errand.h"

#include <algorithm>
#include <cstdint>

namespace disc
{

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

}

ReaderTable::ReaderTable(std::vector<ListReaders> lists, std::shared_ptr<BusyDevices> devices) :
    devices_(std::move(devices))
{
    for (auto& list : lists)
        lists_.push_back({std::make_shared<const ListReaders>(std::move(list)), {}});
}

void ReaderTable::scan()
{
    auto lists = listed();
    const Lock guard(mutex_);
    take(std::move(lists));
}

std::vector<ReaderTable::ReaderDrives> ReaderTable::listed()
{
    const Lock guard(listing_);
    std::vector<ReaderDrives> all;
    for (auto& [ask, last] : lists_) {
        const Text question = "drives " + std::to_string(reinterpret_cast<std::uintptr_t>(ask.get()));
        auto now = files::answerWithin<ReaderDrives>(files::patienceForFiles, question,
                                                     [ask = ask] { return (*ask)(); });
        if (now)
            last = *std::move(now);
        all.push_back(last);
    }
    return all;
}

// What a drive knows of its disc stays when it is found again.
void ReaderTable::take(std::vector<ReaderDrives> lists)
{
    ReaderDrives found;
    for (auto& listed : lists) {
        std::ranges::stable_sort(listed, {},
                                 [this](const auto& each) REQUIRES(mutex_) { return placeOf(*each); });
        for (const auto& drive : listed)
            found.push_back(isKnown(*drive) ? drives_[placeOf(*drive)] : drive);
    }
    if (found.empty())
        found.push_back(std::make_shared<NoDisc>());
    drives_ = std::move(found);
}

// The empty drive stands for none, so the first that comes takes its place.
void ReaderTable::addNew()
{
    auto lists = listed();
    const Lock guard(mutex_);
    const bool hasNone = drives_.empty() || drives_.front()->device().empty();
    if (hasNone)
        return take(std::move(lists));
    for (const auto& list : lists)
        for (const auto& drive : list)
            if (!isKnown(*drive))
                drives_.push_back(drive);
}

// That of the drive among those that are known, behind the last for a new one.
std::size_t ReaderTable::placeOf(const ReaderDrive& drive) const
{
    const auto same = [&](const auto& each) {
        return each->device() == drive.device() && each->name() == drive.name();
    };
    return static_cast<std::size_t>(std::ranges::find_if(drives_, same) - drives_.begin());
}

bool ReaderTable::isKnown(const ReaderDrive& drive) const { return placeOf(drive) < drives_.size(); }

std::vector<std::shared_ptr<ReaderDrive>> ReaderTable::drives()
{
    {
        const Lock guard(mutex_);
        if (!drives_.empty())
            return drives_;
    }
    auto lists = listed();
    const Lock guard(mutex_);
    if (drives_.empty())
        take(std::move(lists));
    return drives_;
}

void ReaderTable::lookAnew()
{
    const Lock guard(mutex_);
    for (auto& [device, seen] : seen_)
        seen.isFresh = false;
}

DiscContents ReaderTable::contents(ReaderDrive& drive)
{
    const auto last = seen(drive);
    if (last && last->isFresh)
        return last->contents;
    const auto claim = devices_->claim(drive.device(), BusyDevices::DeviceUse::reading);
    if (!claim)
        return last.value_or(SeenContents()).contents;
    const auto now = drive.contents();
    const Lock guard(mutex_);
    seen_[drive.device()] = {now};
    return now;
}

DiscContents ReaderTable::lastContents(ReaderDrive& drive)
{
    const auto last = seen(drive);
    return last ? last->contents : contents(drive);
}

std::optional<ReaderTable::SeenContents> ReaderTable::seen(const ReaderDrive& drive)
{
    const Lock guard(mutex_);
    const auto found = seen_.find(drive.device());
    return found == seen_.end() ? std::nullopt : std::optional(found->second);
}

}
