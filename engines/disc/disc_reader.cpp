// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_reader.h"

#include "engines/disc/reader_table.h"
#include "engines/disc/track_copy.h"
#include "engines/disc/track_path.h"
#include "engines/disc/window_calls.h"
#include "files/errand.h"
#include "files/folders.h"
#include "platform/numbers.h"
#include "platform/out_of_memory.h"

#include <algorithm>
#include <limits>
#include <map>

namespace disc
{

namespace
{

constexpr std::int16_t started = 0;
constexpr std::int16_t refused = 1;

// A number that the program can hold.
template <typename Number>
Number clamped(std::int64_t number)
{
    return static_cast<Number>(std::min<std::int64_t>(number, std::numeric_limits<Number>::max()));
}

const DiscTrack* trackOf(const DiscContents& contents, std::int16_t track)
{
    const bool isThere = track > 0 && static_cast<std::size_t>(track) <= contents.tracks.size();
    return isThere ? &contents.tracks[static_cast<std::size_t>(track) - 1] : nullptr;
}

class DiscReader final : public ACD
{
public:
    DiscReader(std::shared_ptr<ReaderTable> drives, std::shared_ptr<BusyDevices> devices, Post& post,
               Shell& shell, PartNotes& notes, SleepLock& sleepLock) :
        table_(std::move(drives)),
        devices_(std::move(devices)), shell_(shell), notes_(notes), sleepLock_(sleepLock),
        window_(post, *this)
    {
    }

    std::int16_t Init() override { return started; }
    std::int16_t DriveCount() override;
    Text DriveName(std::int16_t drive) const override;
    void SelectDrive(std::int16_t drive) override;
    std::int16_t TrackCount() override;
    std::int32_t TrackLength(std::int16_t track) override;
    std::int16_t ReadTrack(std::int16_t track, const Text& path) override;
    void Stop() override;

private:
    std::shared_ptr<ReaderDrive> drive(std::int16_t number) const;
    std::shared_ptr<ReaderDrive> current() const;
    DiscContents disc();
    void tell(const ReaderDrive& drive, const Text& trouble);
    void startCopy(std::int16_t track, const Text& path);
    std::shared_ptr<WavOutput> outputFor(const Text& path) const;
    void finished();

    std::shared_ptr<ReaderTable> table_;
    std::shared_ptr<BusyDevices> devices_;
    Shell& shell_;
    PartNotes& notes_;
    SleepLock& sleepLock_;
    Text device_;               // of the current drive; that of the first until another is selected
    std::map<Text, Text> told_; // the trouble with a disc that the user knows of, by device
    WindowCalls<DiscReader> window_;
    std::unique_ptr<TrackCopy> copy_; // until its end has been told; the last member: its thread ends first
};

// Drives count from 1.
std::shared_ptr<ReaderDrive> DiscReader::drive(std::int16_t number) const
{
    const auto drives = table_->drives();
    const auto index = static_cast<std::size_t>(number) - 1;
    return number > 0 && index < drives.size() ? drives[index] : nullptr;
}

// A drive that is gone makes place for the first.
std::shared_ptr<ReaderDrive> DiscReader::current() const
{
    const auto drives = table_->drives();
    const auto found =
        std::ranges::find_if(drives, [&](const auto& each) { return each->device() == device_; });
    return found == drives.end() ? drives.front() : *found;
}

std::int16_t DiscReader::DriveCount()
{
    table_->scan();
    return clamped<std::int16_t>(static_cast<std::int64_t>(table_->drives().size()));
}

Text DiscReader::DriveName(std::int16_t number) const
{
    const auto found = drive(number);
    return found ? found->name() : Text();
}

// Each look at a disc begins here: at one that was recorded or put in meanwhile, too.
void DiscReader::SelectDrive(std::int16_t number)
{
    table_->addNew();
    table_->lookAnew();
    if (const auto found = drive(number))
        device_ = found->device();
}

std::int16_t DiscReader::TrackCount() { return static_cast<std::int16_t>(disc().tracks.size()); }

std::int32_t DiscReader::TrackLength(std::int16_t number)
{
    const auto contents = disc();
    const DiscTrack* const track = trackOf(contents, number);
    if (track == nullptr || !track->isAudio)
        return 0;
    return clamped<std::int32_t>(std::int64_t{track->sectors} * 1000 / sectorsPerSecond);
}

DiscContents DiscReader::disc()
{
    const auto drive = current();
    auto contents = table_->contents(*drive);
    tell(*drive, contents.trouble);
    return contents;
}

// Once, until the drive answers without it: every listing asks again.
void DiscReader::tell(const ReaderDrive& drive, const Text& trouble)
{
    Text& told = told_[drive.device()];
    if (!trouble.empty() && trouble != told)
        shell_.notify("A disc could not be read", drive.name() + ": " + trouble);
    told = trouble;
}

std::int16_t DiscReader::ReadTrack(std::int16_t track, const Text& wanted)
{
    if (copy_)
        return refused;
    const Text path = fittingTrackPath(wanted, track);
    const auto tell = [&](std::string_view reason) {
        shell_.notify("A track could not be read", (path + ": ").append(reason));
    };
    if (toldInWords(tell, [&] { startCopy(track, path); }))
        return started;
    window_.post([](DiscReader& self) { self.Done.raise(); });
    return refused;
}

void DiscReader::startCopy(std::int16_t number, const Text& path)
{
    const auto drive = current();
    const auto contents = table_->lastContents(*drive);
    const DiscTrack* const track = trackOf(contents, number);
    if (track == nullptr || !track->isAudio || track->sectors == 0)
        throw Failure{Trouble::subscriptOutOfRange,
                      "There is no sound in track " + textOf(std::int32_t{number}) + "."};
    if (devices_->isWriting(drive->device()))
        throw Failure{Trouble::permissionDenied, drive->name() + " is in use."};
    auto output = outputFor(path);
    copy_ = std::make_unique<TrackCopy>(
        TrackCopy::CopyJob{drive, number, track->sectors, path, std::move(output)}, devices_, shell_,
        sleepLock_,
        TrackCopy::CopyEvents{[this](std::int32_t thousandths) {
                                  window_.post([=](DiscReader& self) { self.Progress.raise(thousandths); });
                              },
                              [this] { window_.post([](DiscReader& self) { self.finished(); }); }});
}

std::shared_ptr<WavOutput> DiscReader::outputFor(const Text& path) const
{
    const auto make = [path, &notes = notes_] { return std::make_shared<WavOutput>(path, notes); };
    return files::answerOrFailure<std::shared_ptr<WavOutput>>(files::patienceForFiles,
                                                              "room in " + files::folderOf(path), make);
}

void DiscReader::Stop()
{
    if (copy_)
        copy_->stop();
}

void DiscReader::finished()
{
    copy_.reset();
    table_->lookAnew();
    Done.raise();
}

}

std::unique_ptr<ACD> makeDiscReader(std::shared_ptr<ReaderTable> drives, std::shared_ptr<BusyDevices> devices,
                                    Post& post, Shell& shell, PartNotes& notes, SleepLock& sleepLock)
{
    return std::make_unique<DiscReader>(std::move(drives), std::move(devices), post, shell, notes, sleepLock);
}

}
