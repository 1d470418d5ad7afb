// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/stream.h"

#include <algorithm>
#include <thread>

namespace audio
{

using namespace std::chrono_literals;

namespace
{

// An output that takes sound this much faster than it can be heard is none.
constexpr int runawayFactor = 4;
constexpr auto runawayAllowance = 500ms;

// Between looks the clock tells the position. The end of a feed is looked for at its own moment.
constexpr Stream::Clock::duration lookEvery = 200ms;
constexpr Stream::Clock::duration lookForStart = 5ms;
constexpr Stream::Clock::duration lookSoonest = 1ms;

std::int64_t framesIn(std::chrono::duration<double> time, int rate)
{
    return static_cast<std::int64_t>(time.count() * rate);
}

Stream::Clock::duration timeOf(std::int64_t frames, int rate)
{
    return std::chrono::duration_cast<Stream::Clock::duration>(
        std::chrono::duration<double>(static_cast<double>(frames) / rate));
}

}

Stream::Stream(std::shared_ptr<const Levels> levels, std::shared_ptr<Bell> bell, int rate) :
    rate_(rate), bell_(std::move(bell)), gain_(std::move(levels), rate)
{
}

void Stream::attach(std::shared_ptr<Feed> feed)
{
    Lock lock(mutex_);
    given_ = given();
    owned_.swap(feed);
    feed_ = owned_.get();
    lock.unlock();
    while (feed != nullptr && inUse_ == feed.get())
        std::this_thread::sleep_for(100us);
}

std::int64_t Stream::given() const { return owned_ != nullptr ? owned_->position() : given_; }

bool Stream::isSilent() const
{
    const Lock lock(mutex_);
    return written_ == 0 || (report_.isLast && report_.run.kind != Heard::sound);
}

bool Stream::hasEnded(std::uint64_t serial) const
{
    const Lock lock(mutex_);
    return report_.run.kind == Heard::end && report_.run.serial == serial;
}

std::chrono::duration<double> Stream::heardTime() const
{
    const Lock lock(mutex_);
    return timeOf(report_.frames, rate_);
}

std::optional<std::int64_t> Stream::position(std::uint64_t serial, Clock::time_point now) const
{
    const Lock lock(mutex_);
    const NotedRun& run = report_.run;
    if (run.kind == Heard::nothing || run.serial != serial)
        return std::nullopt;
    if (run.kind != Heard::sound)
        return run.source;
    // Between two looks the clock guesses. That the last frame given was heard is never guessed.
    const std::int64_t there = run.source + report_.frames - run.at;
    return std::min(there + framesIn(now - report_.when, rate_), std::max(there, given() - 1));
}

// The feed that is current, and will not be freed before `inUse_` is cleared.
Feed* Stream::claim()
{
    Feed* feed = feed_;
    for (inUse_ = feed; feed != feed_; inUse_ = feed)
        feed = feed_;
    return feed;
}

std::size_t Stream::writeSound(Feed* feed, std::int16_t* samples, std::size_t frames)
{
    const bool isLast = feed->isFinished(); // asked first: what is there now is then all there will be
    const std::int64_t source = feed->position();
    const std::size_t sound = feed->read(samples, frames);
    gain_.apply(samples, sound);
    const std::int64_t at = written_;
    if (sound > 0)
        log_.note({Heard::sound, at, source, feed->serial()});
    if (sound < frames)
        log_.note({isLast ? Heard::end : Heard::silence, at + static_cast<std::int64_t>(sound),
                   feed->position(), feed->serial()});
    return sound;
}

bool Stream::runsAway()
{
    const auto now = Clock::now();
    lastSign_ = now;
    const auto plausible = (now - began_) * runawayFactor + runawayAllowance;
    return written_ > framesIn(plausible, rate_);
}

bool Stream::write(std::int16_t* samples, std::size_t frames)
{
    if (runsAway())
        failed_ = true;
    Feed* feed = claim();
    std::size_t sound = 0;
    if (feed != nullptr && flowing_ && !failed_)
        sound = writeSound(feed, samples, frames);
    else
        log_.note({Heard::silence, written_, feed != nullptr ? feed->position() : 0,
                   feed != nullptr ? feed->serial() : 0});
    inUse_ = nullptr;
    std::fill(samples + sound * 2, samples + frames * 2, std::int16_t{0});
    written_ += static_cast<std::int64_t>(frames);
    return !failed_;
}

void Stream::heard(std::int64_t frames, Clock::time_point now)
{
    if (failed_) {
        bell_->ring();
        return;
    }
    const NotedRun run = log_.runAt(frames);

    const Lock lock(mutex_);
    const bool isNews = run.kind == Heard::end && report_.run.kind != Heard::end;
    report_ = {run, frames, log_.nextRun() == nullptr, now};
    if (isNews)
        bell_->ring();
}

std::optional<std::int64_t> Stream::frameOfEnd() const
{
    if (const auto end = log_.end())
        return end;
    if (owned_ == nullptr || !owned_->isFinished() || !flowing_)
        return std::nullopt;
    return written_ + static_cast<std::int64_t>(owned_->available());
}

Stream::Clock::time_point Stream::nextLook(Clock::time_point now) const
{
    const Lock lock(mutex_);
    const auto next = now + (report_.run.kind == Heard::nothing ? lookForStart : lookEvery);
    const auto end = frameOfEnd();
    if (!end || *end <= report_.frames)
        return next;
    return std::clamp(report_.when + timeOf(*end - report_.frames, rate_), now + lookSoonest, next);
}

void Stream::fail()
{
    failed_ = true;
    bell_->ring();
}

}
