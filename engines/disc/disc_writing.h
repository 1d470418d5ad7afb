// SPDX-License-Identifier: GPL-3.0-or-later
// One disc in the writing, on a thread of its own.
#pragma once

#include "engines/disc/busy_devices.h"
#include "engines/disc/writer_drive.h"
#include "platform/shell.h"
#include "platform/sleep_lock.h"

#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace disc
{

class DiscWriting
{
public:
    struct WritingJob {
        BusyDevices::Claim device;
        std::unique_ptr<WriteRun> run;
    };

    // Both are called on the writing's own thread, `done` once and last, with 0 for a disc that was finished.
    struct WritingEvents {
        WriteProgress progress; // rising, to 100 for a disc that was finished
        std::function<void(std::int16_t)> done;
    };

    DiscWriting(WritingJob job, Shell& shell, SleepLock& sleepLock, WritingEvents events);
    ~DiscWriting() = default; // gives up; waits until the recorder has let go

private:
    void run(const std::stop_token& stop);
    bool write(const std::stop_token& stop);
    void report(std::int16_t percent);

    std::optional<WritingJob> job_;
    Shell& shell_;
    SleepLock& sleepLock_;
    WritingEvents events_;
    std::int16_t reported_ = 0;
    std::jthread writing_; // the last member: it ends first
};

}
