// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_writer.h"

#include "engines/disc/disc_writing.h"
#include "engines/disc/window_calls.h"
#include "files/file_to_open.h"
#include "platform/numbers.h"
#include "platform/out_of_memory.h"

#include <map>
#include <system_error>

namespace disc
{

namespace
{

constexpr std::int16_t ok = 0;
constexpr std::int16_t refused = 1;
constexpr std::int16_t unknownType = 0;
constexpr std::size_t mostTracks = 99;

class DiscWriter final : public ACDWRITE
{
public:
    DiscWriter(ListWriters recorders, std::shared_ptr<WriterDrive> imageRecorder,
               std::shared_ptr<BusyDevices> devices, Post& post, Shell& shell, SleepLock& sleepLock) :
        recorders_(std::move(recorders)),
        imageRecorder_(std::move(imageRecorder)), devices_(std::move(devices)), shell_(shell),
        sleepLock_(sleepLock), window_(post, *this)
    {
    }

    std::int16_t Init() override;
    std::int16_t DriveCount() override;
    Text DriveName(std::int16_t drive) override;
    void SelectDrive(std::int16_t drive) override;

    std::int16_t WriterType() const override;
    void SetWriterType(std::int16_t type) override { types_[selected_] = type; }

    std::int16_t WriteSpeed() const override { return settings_.speed; }
    void setWriteSpeed(std::int16_t factor) override { settings_.speed = factor; }
    void setWriteSpeed(const Text& factor) override { settings_.speed = toInteger16(factor); }
    void setCloseDisc(bool close) override { settings_.closeDisc = close; }
    void setSimulate(bool simulate) override { settings_.simulate = simulate; }
    void setAutoEject(bool eject) override { settings_.autoEject = eject; }

    std::int16_t AddTrack(const Text& path, std::int32_t unused) override;
    void ClearTracks() override { tracks_.clear(); }
    std::int16_t CheckMedia() override;
    std::int16_t Write() override;

private:
    const std::vector<std::shared_ptr<WriterDrive>>& drives();
    WriterDrive& current();
    void startWriting();
    std::vector<CdSound> openTracks() const;
    void finished(std::int16_t result);

    ListWriters recorders_;
    std::shared_ptr<WriterDrive> imageRecorder_;
    std::shared_ptr<BusyDevices> devices_;
    Shell& shell_;
    SleepLock& sleepLock_;
    std::vector<std::shared_ptr<WriterDrive>> drives_; // none before the control has started
    std::int16_t selected_ = 0;
    std::map<std::int16_t, std::int16_t> types_; // that were set, by drive
    WriteSettings settings_;
    std::vector<Text> tracks_;
    WindowCalls<DiscWriter> window_;
    std::unique_ptr<DiscWriting>
        writing_; // until its end has been told; the last member: its thread ends first
};

// The control starts with whatever needs a drive first: somebody who has no recorder still makes images.
const std::vector<std::shared_ptr<WriterDrive>>& DiscWriter::drives()
{
    if (!drives_.empty())
        return drives_;
    drives_ = recorders_();
    drives_.push_back(imageRecorder_);
    if (static_cast<std::size_t>(selected_) >= drives_.size())
        selected_ = 0;
    return drives_;
}

WriterDrive& DiscWriter::current() { return *drives()[static_cast<std::size_t>(selected_)]; }

std::int16_t DiscWriter::Init()
{
    drives_.clear();
    drives();
    return ok;
}

std::int16_t DiscWriter::DriveCount() { return static_cast<std::int16_t>(drives().size()); }

Text DiscWriter::DriveName(std::int16_t drive)
{
    const bool isThere = drive >= 0 && static_cast<std::size_t>(drive) < drives().size();
    return isThere ? drives()[static_cast<std::size_t>(drive)]->name() : Text();
}

// A choice from the last run may come before the control has started, and waits for it.
void DiscWriter::SelectDrive(std::int16_t drive)
{
    const bool isThere = drives_.empty() || static_cast<std::size_t>(drive) < drives_.size();
    if (drive >= 0 && isThere)
        selected_ = drive;
}

std::int16_t DiscWriter::WriterType() const
{
    if (const auto set = types_.find(selected_); set != types_.end())
        return set->second;
    return drives_.empty() ? unknownType : drives_[static_cast<std::size_t>(selected_)]->type();
}

std::int16_t DiscWriter::AddTrack(const Text& path, std::int32_t)
{
    const auto track = files::answerOfFile<std::optional<CdSound>>(path, CdSound::open);
    if (!track || !*track)
        return refused;
    tracks_.push_back((*track)->path());
    return ok;
}

// A disc that is being written is no other than the one that was checked before.
std::int16_t DiscWriter::CheckMedia()
{
    if (writing_)
        return ok;
    auto& drive = current();
    const auto claim = devices_->claim(drive.device(), BusyDevices::DeviceUse::writing);
    return claim && drive.hasWritableDisc() ? ok : refused;
}

std::int16_t DiscWriter::Write()
{
    const auto tell = [this](std::string_view reason) {
        shell_.notify("The disc could not be written", Text(reason));
    };
    return toldInWords(tell, [this] { startWriting(); }) ? ok : refused;
}

void DiscWriter::startWriting()
{
    if (writing_)
        throw Failure{Trouble::permissionDenied, "Another disc is being written."};
    if (tracks_.empty() || tracks_.size() > mostTracks)
        throw Failure{Trouble::subscriptOutOfRange, "A disc has 1 to 99 tracks."};
    auto& drive = current();
    auto claim = devices_->claim(drive.device(), BusyDevices::DeviceUse::writing);
    if (!claim)
        throw Failure{Trouble::permissionDenied, drive.name() + " is in use."};
    auto run = drive.prepare(openTracks(), settings_);
    writing_ = std::make_unique<DiscWriting>(
        DiscWriting::WritingJob{std::move(*claim), std::move(run)}, shell_, sleepLock_,
        DiscWriting::WritingEvents{
            [this](std::int16_t percent) {
                window_.post([=](DiscWriter& self) { self.Progress.raise(percent); });
            },
            [this](std::int16_t result) { window_.post([=](DiscWriter& self) { self.finished(result); }); }});
}

// The files may have changed since they were judged.
std::vector<CdSound> DiscWriter::openTracks() const
{
    std::vector<CdSound> sounds;
    for (const Text& path : tracks_) {
        auto sound = files::answerOfFile<std::optional<CdSound>>(path, CdSound::open);
        if (!sound || !*sound)
            throw Failure{Trouble::fileNotFound, path + " cannot be read."};
        sounds.push_back(std::move(**sound));
    }
    return sounds;
}

void DiscWriter::finished(std::int16_t result)
{
    writing_.reset();
    Done.raise(result);
}

}

std::unique_ptr<ACDWRITE> makeDiscWriter(ListWriters recorders, std::shared_ptr<WriterDrive> imageRecorder,
                                         std::shared_ptr<BusyDevices> devices, Post& post, Shell& shell,
                                         SleepLock& sleepLock)
{
    return std::make_unique<DiscWriter>(std::move(recorders), std::move(imageRecorder), std::move(devices),
                                        post, shell, sleepLock);
}

}
