// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/track_copy.h"

#include "platform/out_of_memory.h"
#include "platform/thread.h"

#include <algorithm>

namespace disc
{

namespace
{

constexpr std::int32_t whole = 1000;
constexpr auto fastestReports = std::chrono::milliseconds(10); // more often than a window can show

TrackPipe::ReadOutcome read(ReaderDrive& drive, std::int16_t track, const Text& path, TrackPipe& pipe)
{
    if (drive.readsFrom(path))
        return {0, "The disc image is made of this file."};
    return {drive.readTrack(track, pipe, pipe.stopToken())};
}

// A drive may hold this thread for as long as it likes, also after the copy is gone. Whoever learns of the
// end finds the drive free.
void readInto(const std::shared_ptr<TrackPipe>& pipe, const std::shared_ptr<BusyDevices>& devices,
              ReaderDrive& drive, std::int16_t track, const Text& path)
{
    TrackPipe::ReadOutcome outcome;
    const auto told = [&](std::string_view reason) { outcome = {0, Text(reason)}; };
    toldInWords(told, [&] {
        if (const auto claim =
                devices->claimWhenFree(drive.device(), BusyDevices::DeviceUse::reading, pipe->stopToken()))
            outcome = read(drive, track, path, *pipe);
    });
    pipe->end(std::move(outcome));
}

}

TrackCopy::TrackCopy(CopyJob job, std::shared_ptr<BusyDevices> devices, Shell& shell, SleepLock& sleepLock,
                     CopyEvents events) :
    job_(std::move(job)),
    devices_(std::move(devices)), shell_(shell), sleepLock_(sleepLock), events_(std::move(events)),
    writing_([this] { run(); })
{
}

TrackCopy::~TrackCopy()
{
    givenUp_ = true;
    pipe_->stop();
    writing_.join();
}

void TrackCopy::run()
{
    sleepLock_.begin("Reading a disc");
    toldInWords([this](std::string_view reason) { tell("A track could not be read", reason); },
                [this] { copy(); });
    pipe_->stop();
    job_.output.reset();
    sleepLock_.end();
    persisting([this] { events_.done(); });
}

void TrackCopy::copy()
{
    Thread([pipe = pipe_, devices = devices_, drive = job_.drive, track = job_.track, path = job_.path] {
        readInto(pipe, devices, *drive, track, path);
    });
    while (const auto samples = pipe_->next()) {
        if (givenUp_)
            return;
        job_.output->append(*samples);
        report();
    }
    if (!givenUp_)
        finish();
}

std::int64_t TrackCopy::wholeBytes() const { return std::int64_t{job_.sectors} * sectorBytes; }

bool TrackCopy::isWhole() const { return job_.output->soundBytes() >= wholeBytes(); }

void TrackCopy::report()
{
    const std::int64_t all = wholeBytes();
    const auto thousandths =
        static_cast<std::int32_t>(std::min<std::int64_t>(job_.output->soundBytes() * whole / all, whole));
    const auto now = std::chrono::steady_clock::now();
    if (thousandths <= reported_ || (thousandths < whole && now < nextReport_))
        return;
    reported_ = thousandths;
    nextReport_ = now + fastestReports;
    events_.progress(thousandths);
}

void TrackCopy::finish()
{
    if (pipe_->stopToken().stop_requested()) {
        // The stop may have come behind the last sample.
        isWhole() ? job_.output->finish() : job_.output->breakOff();
        return;
    }
    const auto outcome = pipe_->outcome();
    if (outcome.failure)
        throw Failure{Trouble::deviceInputOutput, *outcome.failure};
    job_.output->finish();
    if (outcome.unreadableSectors > 0)
        persisting([&] {
            tell("A disc is damaged", "sectors that could not be read and are silent: " +
                                          std::to_string(outcome.unreadableSectors) + '.');
        });
}

void TrackCopy::tell(const Text& title, std::string_view message)
{
    if (!givenUp_)
        shell_.notify(title, (job_.path + ": ").append(message));
}

}
