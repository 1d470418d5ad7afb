// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/discs/cdio_reader.h"

#include "files/errand.h"
#include "modules/discs/cdio_disc.h"
#include "platform/failure.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace disc
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr auto longestPiece = milliseconds(250);
constexpr std::size_t largestPiece = 16 * CdioDisc::mostSectors * sectorBytes;

constexpr int quickTries = 2;          // at a sector that was bad in its batch
constexpr int sectorsWorthRescue = 10; // in a row; a scratch that is longer would take hours

// What a drive was last seen to hold.
struct SeenDisc {
    std::vector<std::byte> table;
    DiscContents contents;
};

SeenDisc seenTrouble(const Text& trouble) { return {{}, {{}, 0, trouble}}; }

Text whyShut(const Text& device)
{
    const bool mayRead = faccessat(AT_FDCWD, device.c_str(), R_OK, AT_EACCESS) == 0;
    return "The drive cannot be opened" +
           (mayRead ? "." : ": " + std::generic_category().message(errno) + '.');
}

// The contents are read only when the table is not the known one.
SeenDisc look(const Text& device, SeenDisc known)
{
    CdioDisc disc(device);
    if (!disc.isOpen())
        return seenTrouble(whyShut(device));
    if (!disc.isReady())
        return disc.isEmpty() ? SeenDisc{} : seenTrouble("The drive cannot read its disc.");
    auto table = disc.table();
    if (!table.empty() && table == known.table)
        return known;
    auto contents = disc.contents();
    if (contents.tracks.empty())
        return seenTrouble("The disc has no tracks that can be read.");
    return {std::move(table), std::move(contents)};
}

// One track on its way out of a drive.
class TrackReading
{
public:
    TrackReading(CdioDisc& disc, TrackSink& sink, const std::stop_token& stop) :
        disc_(disc), sink_(sink), stop_(stop)
    {
    }

    std::int32_t read(const DiscTrack& track)
    {
        const std::int32_t end = track.start + track.sectors;
        for (std::int32_t at = track.start; at < end && !stop_.stop_requested();) {
            const std::int32_t count = std::min(CdioDisc::mostSectors, end - at);
            readBatch(at, count);
            handOverPiece();
            at += count;
        }
        handOver();
        return unreadable_;
    }

private:
    std::span<std::byte> room(std::int32_t sectors)
    {
        const auto before = piece_.size();
        piece_.resize(before + static_cast<std::size_t>(sectors) * sectorBytes);
        return std::span(piece_).subspan(before);
    }

    void readBatch(std::int32_t sector, std::int32_t count)
    {
        if (disc_.read(sector, room(count))) {
            unreadableInARow_ = 0;
            return;
        }
        piece_.resize(piece_.size() - static_cast<std::size_t>(count) * sectorBytes);
        for (std::int32_t i = 0; i < count && !stop_.stop_requested(); ++i)
            readSingle(sector + i);
    }

    void readSingle(std::int32_t sector)
    {
        const auto samples = room(1);
        const bool came = cameQuickly(sector, samples) || cameAfterAll(sector, samples);
        if (!came)
            std::ranges::fill(samples, std::byte{0});
        unreadable_ += came ? 0 : 1;
        unreadableInARow_ = came ? 0 : unreadableInARow_ + 1;
    }

    bool cameQuickly(std::int32_t sector, std::span<std::byte> samples)
    {
        const int tries = unreadableInARow_ < sectorsWorthRescue ? quickTries : 1;
        for (int i = 0; i < tries; ++i)
            if (disc_.read(sector, samples))
                return true;
        if (!disc_.isReady())
            throw Failure{Trouble::deviceUnavailable, "The disc was taken out."};
        return false;
    }

    bool cameAfterAll(std::int32_t sector, std::span<std::byte> samples)
    {
        return unreadableInARow_ < sectorsWorthRescue && !stop_.stop_requested() &&
               disc_.rescue(sector, samples, stop_);
    }

    // A slow drive still shows how far it is.
    void handOverPiece()
    {
        if (piece_.size() >= largestPiece || steady_clock::now() - handedOver_ >= longestPiece)
            handOver();
    }

    void handOver()
    {
        if (!piece_.empty())
            sink_.take(std::exchange(piece_, {}));
        handedOver_ = steady_clock::now();
    }

    CdioDisc& disc_;
    TrackSink& sink_;
    const std::stop_token& stop_;
    std::vector<std::byte> piece_;
    steady_clock::time_point handedOver_ = steady_clock::now();
    std::int32_t unreadable_ = 0;
    std::int32_t unreadableInARow_ = 0;
};

class CdioReader final : public ReaderDrive
{
public:
    CdioReader(OpticalDevice device, milliseconds patience) : device_(std::move(device)), patience_(patience)
    {
    }

    Text name() const override { return device_.name; }
    Text device() const override { return device_.path; }

    DiscContents contents() override
    {
        const bool isHeldUp = look_ && !look_->hasEnded();
        if (!isHeldUp)
            look_.emplace([path = device_.path, seen = seen_] { return look(path, seen); });
        seen_ = look_->result(isHeldUp ? milliseconds(0) : patience_)
                    .value_or(seenTrouble("The drive does not answer."));
        return seen_.contents;
    }

    std::int32_t readTrack(std::int16_t track, TrackSink& sink, const std::stop_token& stop) override
    {
        CdioDisc disc(device_.path);
        if (!disc.isReady())
            throw Failure{Trouble::deviceUnavailable, "There is no disc in the drive."};
        if (disc.table() != seen_.table)
            throw Failure{Trouble::deviceUnavailable, "There is another disc in the drive."};
        return TrackReading(disc, sink, stop)
            .read(seen_.contents.tracks.at(static_cast<std::size_t>(track - 1)));
    }

private:
    const OpticalDevice device_;
    const milliseconds patience_;
    SeenDisc seen_;
    std::optional<files::Errand<SeenDisc>> look_;
};

}

std::shared_ptr<ReaderDrive> makeCdioReader(const OpticalDevice& device, milliseconds patience)
{
    return std::make_shared<CdioReader>(device, patience);
}

}
