// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/image_layout.h"

#include <algorithm>

namespace disc
{

namespace
{

// Follows the sheet through its files, and lays what it passes on the disc.
class LayoutBuilder
{
public:
    LayoutBuilder(const CueSheet& sheet, std::span<const std::int64_t> fileBytes) :
        sheet_(sheet), fileBytes_(fileBytes)
    {
    }

    std::optional<ImageLayout> build();

private:
    void add(const CueSheet::Track& track);
    void list(const CueSheet::Track& track);
    void leaveFor(std::size_t file);
    void begin(const CueSheet::Track& track);
    void goTo(const CueSheet::Index& index);
    void passRestOfFile();
    SectorExtent here() const { return {0, 0, file_, offset_, track_->bytesOfSector, track_->isAudio}; }
    void append(SectorExtent extent, std::int64_t sectors);
    void measureTracks();

    const CueSheet& sheet_;
    std::span<const std::int64_t> fileBytes_;
    ImageLayout layout_;
    std::int64_t end_ = 0; // of the disc so far

    const CueSheet::Track* track_ = nullptr; // whose sectors these are
    std::optional<std::size_t> file_;
    std::int32_t sector_ = 0; // reached in the file
    std::int64_t offset_ = 0; // the same in bytes
};

std::optional<ImageLayout> LayoutBuilder::build()
{
    for (const auto& track : sheet_.tracks)
        add(track);
    passRestOfFile();
    append({}, track_->postgap);
    if (end_ > mostSectors)
        return std::nullopt;
    measureTracks();
    return std::move(layout_);
}

void LayoutBuilder::add(const CueSheet::Track& track)
{
    for (const auto& index : track.indexes) {
        leaveFor(index.file);
        if (file_)
            goTo(index);
        if (track_ != &track)
            begin(track);
        if (!file_) {
            file_ = index.file;
            goTo(index);
        }
        if (index.number == 1)
            list(track);
    }
}

// A track stands in the list at its number, also where the sheet leaves out others before it.
void LayoutBuilder::list(const CueSheet::Track& track)
{
    const auto start = static_cast<std::int32_t>(end_);
    auto& tracks = layout_.contents.tracks;
    tracks.resize(static_cast<std::size_t>(track.number) - 1, {false, start, 0, true});
    tracks.push_back({track.isAudio, start});
}

void LayoutBuilder::leaveFor(std::size_t file)
{
    if (!file_ || *file_ == file)
        return;
    passRestOfFile();
    file_.reset();
    sector_ = 0;
    offset_ = 0;
}

// The silence stands between the sectors of the last track and its own.
void LayoutBuilder::begin(const CueSheet::Track& track)
{
    append({}, track_ ? track_->postgap : 0);
    append({}, track.pregap);
    track_ = &track;
}

void LayoutBuilder::goTo(const CueSheet::Index& index)
{
    const std::int32_t sectors = index.sector - sector_;
    append(here(), sectors);
    sector_ = index.sector;
    offset_ += std::int64_t{sectors} * track_->bytesOfSector;
}

void LayoutBuilder::passRestOfFile()
{
    const std::int64_t rest = std::max<std::int64_t>(fileBytes_[*file_] - offset_, 0);
    append(here(), rest / track_->bytesOfSector + (rest % track_->bytesOfSector != 0 ? 1 : 0));
}

// Behind the end of any disc nothing is laid: only that it was passed counts.
void LayoutBuilder::append(SectorExtent extent, std::int64_t sectors)
{
    if (end_ + sectors > mostSectors) {
        end_ = mostSectors + 1;
        return;
    }
    extent.start = static_cast<std::int32_t>(end_);
    extent.sectors = static_cast<std::int32_t>(sectors);
    end_ += sectors;
    if (sectors > 0)
        layout_.extents.push_back(extent);
}

void LayoutBuilder::measureTracks()
{
    std::int32_t next = layout_.contents.leadOut = static_cast<std::int32_t>(end_);
    auto& tracks = layout_.contents.tracks;
    for (auto track = tracks.rbegin(); track != tracks.rend(); ++track) {
        track->sectors = next - track->start;
        next = track->start;
    }
}

}

std::optional<ImageLayout> layoutOf(const CueSheet& sheet, std::span<const std::int64_t> fileBytes)
{
    return LayoutBuilder(sheet, fileBytes).build();
}

}
