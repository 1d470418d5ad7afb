// SPDX-License-Identifier: GPL-3.0-or-later
// A producer-consumer queue: a track's sound on its way from the thread that reads the drive to the one that
// writes the file. The writing one can leave at any time, however long the drive holds the other.
#pragma once

#include "engines/disc/reader_drive.h"
#include "platform/mutex.h"

#include <deque>
#include <optional>

namespace disc
{

class TrackPipe final : public TrackSink
{
public:
    struct ReadOutcome {
        std::int32_t unreadableSectors = 0;
        std::optional<Text> failure = std::nullopt;
    };

    // For the reading thread. After a stop nothing that it brings is taken.
    void take(std::vector<std::byte> samples) override;
    void end(ReadOutcome outcome);
    std::stop_token stopToken() const { return stop_.get_token(); }

    // For the writing thread: the next samples, or nothing when all were taken that came before the end or
    // the stop. Waits for either.
    std::optional<std::vector<std::byte>> next();
    ReadOutcome outcome(); // when there is no next

    void stop() { stop_.request_stop(); } // from any thread

private:
    std::stop_source stop_;
    Mutex mutex_;
    Condition changed_;
    std::deque<std::vector<std::byte>> waiting_ GUARDED_BY(mutex_);
    std::size_t waitingBytes_ GUARDED_BY(mutex_) = 0;
    std::optional<ReadOutcome> outcome_ GUARDED_BY(mutex_);
};

}
