// SPDX-License-Identifier: GPL-3.0-or-later
// One track on its way from a drive into a WAV file, on threads of its own.
#pragma once

#include "engines/disc/busy_devices.h"
#include "engines/disc/reader_drive.h"
#include "engines/disc/track_pipe.h"
#include "engines/disc/wav_output.h"
#include "platform/shell.h"
#include "platform/sleep_lock.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <thread>

namespace disc
{

class TrackCopy
{
public:
    struct CopyJob {
        std::shared_ptr<ReaderDrive> drive;
        std::int16_t track = 0;
        std::int32_t sectors = 0;
        Text path;
        std::shared_ptr<WavOutput> output;
    };

    // Both are called on a thread of the copy's own, `done` once and last.
    struct CopyEvents {
        std::function<void(std::int32_t)> progress; // in thousandths, rising
        std::function<void()> done;
    };

    TrackCopy(CopyJob job, std::shared_ptr<BusyDevices> devices, Shell& shell, SleepLock& sleepLock,
              CopyEvents events);

    // Gives up what is not done and leaves no file. The drive is let go when it next answers.
    ~TrackCopy();

    // Breaks off, keeping what was read.
    void stop() { pipe_->stop(); }

private:
    void run();
    void copy();
    std::int64_t wholeBytes() const;
    bool isWhole() const;
    void report();
    void finish();
    void tell(const Text& title, std::string_view message);

    CopyJob job_;
    std::shared_ptr<BusyDevices> devices_;
    Shell& shell_;
    SleepLock& sleepLock_;
    CopyEvents events_;
    std::shared_ptr<TrackPipe> pipe_ = std::make_shared<TrackPipe>();
    std::atomic<bool> givenUp_ = false;
    std::int32_t reported_ = 0;
    std::chrono::steady_clock::time_point nextReport_;
    std::thread writing_;
};

}
