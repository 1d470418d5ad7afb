// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/track_pipe.h"

namespace disc
{

namespace
{

constexpr std::size_t mostWaitingBytes = 1 << 20;

}

// A thread that had to wait is woken for a good deal of work, not for each piece: waking takes its time, too.
void TrackPipe::take(std::vector<std::byte> samples)
{
    Lock guard(mutex_);
    const auto token = stop_.get_token();
    if (!changed_.wait(guard, token, [&]() REQUIRES(mutex_) { return waitingBytes_ < mostWaitingBytes; }) ||
        token.stop_requested())
        return;
    const auto bytes = samples.size();
    waiting_.push_back(std::move(samples));
    waitingBytes_ += bytes;
    if (waiting_.size() == 1)
        changed_.notifyAll();
}

void TrackPipe::end(ReadOutcome outcome)
{
    const Lock guard(mutex_);
    outcome_ = std::move(outcome);
    changed_.notifyAll();
}

std::optional<std::vector<std::byte>> TrackPipe::next()
{
    Lock guard(mutex_);
    changed_.wait(guard, stop_.get_token(), [&]() REQUIRES(mutex_) { return !waiting_.empty() || outcome_; });
    if (waiting_.empty())
        return std::nullopt;
    auto samples = std::move(waiting_.front());
    waiting_.pop_front();
    waitingBytes_ -= samples.size();
    if (waitingBytes_ < mostWaitingBytes / 2)
        changed_.notifyAll();
    return samples;
}

TrackPipe::ReadOutcome TrackPipe::outcome()
{
    const Lock guard(mutex_);
    return outcome_.value_or(ReadOutcome());
}

}
