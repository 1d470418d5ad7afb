// SPDX-License-Identifier: GPL-3.0-or-later
// One way out for an engine's sound: what a sound server, or the silent clock in its place, takes from a
// feed, and what of it has been heard.
#pragma once

#include "engines/audio/bell.h"
#include "engines/audio/feed.h"
#include "engines/audio/gain.h"
#include "engines/audio/hearing_log.h"
#include "platform/mutex.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>

namespace audio
{

class Stream
{
public:
    using Clock = std::chrono::steady_clock;

    // `bell` rings when the stream fails, and when something ends.
    Stream(std::shared_ptr<const Levels> levels, std::shared_ptr<Bell> bell, int rate);

    int rate() const { return rate_; }

    // The engine's side.

    // Plays from `feed`, or silence for nullptr. The feed before is no longer used when this returns.
    void attach(std::shared_ptr<Feed> feed);

    // False, as at first: silence from the next moment on, and the feed stands still.
    void setFlowing(bool flowing) { flowing_ = flowing; }

    bool hasFailed() const { return failed_; }
    bool isSilent() const;                                   // no sound is heard, nor on its way to be
    bool hasEnded(std::uint64_t serial) const;               // the last frame of that feed was heard
    std::chrono::duration<double> heardTime() const;         // silence included
    Clock::time_point lastSign() const { return lastSign_; } // when the output last asked for sound

    // The source's frame that is heard now; nothing while that feed is not heard yet.
    std::optional<std::int64_t> position(std::uint64_t serial, Clock::time_point now) const;

    // The output's side.

    // Sets `frames` frames. Never waits, never allocates. False: the stream has failed, and takes no more.
    bool write(std::int16_t* samples, std::size_t frames);

    // So many of the frames written have been heard at `now`.
    void heard(std::int64_t frames, Clock::time_point now);

    // When to call `heard` again at the latest. For the thread that calls it.
    Clock::time_point nextLook(Clock::time_point now) const;

    void fail();

private:
    // What was heard last.
    struct HeardReport {
        NotedRun run;
        std::int64_t frames = 0; // of the stream
        bool isLast = false;     // nothing else has been written
        Clock::time_point when;
    };

    Feed* claim();
    std::int64_t given() const REQUIRES(mutex_);
    std::optional<std::int64_t> frameOfEnd() const REQUIRES(mutex_);
    std::size_t writeSound(Feed* feed, std::int16_t* samples, std::size_t frames);
    bool runsAway();

    const int rate_;
    const std::shared_ptr<Bell> bell_;
    Gain gain_;
    HearingLog log_;
    const Clock::time_point began_ = Clock::now();

    std::atomic<bool> flowing_{false};
    std::atomic<bool> failed_{false};
    std::atomic<Feed*> feed_{nullptr};
    std::atomic<Feed*> inUse_{nullptr}; // by `write`, right now: a hazard pointer
    std::atomic<std::int64_t> written_{0};
    std::atomic<Clock::time_point> lastSign_{began_};

    mutable Mutex mutex_; // never held by `write`
    std::shared_ptr<Feed> owned_ GUARDED_BY(mutex_);
    std::int64_t given_ GUARDED_BY(mutex_) =
        0; // the source's frame up to which `owned_`, or the feed before, was given away
    HeardReport report_ GUARDED_BY(mutex_);
};

}
