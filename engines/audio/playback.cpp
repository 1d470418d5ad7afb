// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/playback.h"

#include <algorithm>

namespace audio
{

void Playback::enter(PlayState state)
{
    const bool sounded = state_ == PlayState::playing;
    const bool sounds = state == PlayState::playing;
    state_ = state;
    if (sounds && !sounded)
        activity_.begin();
    if (sounded && !sounds)
        activity_.end();
}

void Playback::moveTo(std::int64_t frame)
{
    from_ = std::clamp<std::int64_t>(frame, 0, frames_);
    shown_ = from_;
    ++serial_;
}

void Playback::flow(bool flowing)
{
    if (stream_ != nullptr)
        stream_->setFlowing(flowing);
}

void Playback::cut()
{
    flow(false);
    stream_ = nullptr;
    owesPlaying_ = false;
    enter(PlayState::idle);
    moveTo(0);
    ++cuts_;
}

void Playback::load(std::shared_ptr<PcmSource> source, std::int64_t frames)
{
    const Lock lock(mutex_);
    cut();
    source_ = std::move(source);
    frames_ = frames;
}

bool Playback::play()
{
    const Lock lock(mutex_);
    if (source_ == nullptr || state_ == PlayState::playing)
        return false;
    owesPlaying_ = true;
    flow(true);
    enter(PlayState::playing);
    return true;
}

void Playback::pause()
{
    const Lock lock(mutex_);
    if (state_ != PlayState::playing)
        return;
    flow(false);
    enter(PlayState::paused);
}

void Playback::stop()
{
    const Lock lock(mutex_);
    cut();
}

void Playback::seek(std::int64_t frame)
{
    const Lock lock(mutex_);
    if (source_ == nullptr)
        return;
    // What is heard goes on until the new place is ready; in a pause the next thing heard is the new place.
    if (state_ == PlayState::paused)
        stream_ = nullptr;
    moveTo(frame);
}

bool Playback::isPlaying() const
{
    const Lock lock(mutex_);
    const bool owed = owesPlaying_;
    owesPlaying_ = false;
    return state_ != PlayState::idle || owed;
}

Playback::PlayState Playback::state() const
{
    const Lock lock(mutex_);
    return state_;
}

std::int64_t Playback::heardFrame() const
{
    std::int64_t frame = from_;
    if (stream_ != nullptr)
        frame = stream_->position(serial_, Stream::Clock::now()).value_or(from_);
    shown_ = std::clamp(frame, shown_, std::max(frames_, shown_));
    return shown_;
}

std::int64_t Playback::position() const
{
    const Lock lock(mutex_);
    return heardFrame();
}

Playback::Wish Playback::wish() const
{
    const Lock lock(mutex_);
    return {state_, source_, from_, serial_, cuts_};
}

bool Playback::hearFrom(std::uint64_t serial, std::shared_ptr<Stream> stream)
{
    const Lock lock(mutex_);
    if (serial != serial_)
        return false;
    stream_ = std::move(stream);
    flow(state_ == PlayState::playing);
    return true;
}

bool Playback::standAt(std::uint64_t serial, std::int64_t frame)
{
    const Lock lock(mutex_);
    if (serial != serial_)
        return false;
    from_ = frame;
    stream_ = nullptr;
    return true;
}

bool Playback::restart(std::uint64_t serial, std::int64_t frame)
{
    const Lock lock(mutex_);
    if (serial != serial_)
        return false;
    moveTo(frame);
    return true;
}

bool Playback::end(std::uint64_t serial)
{
    const Lock lock(mutex_);
    if (serial != serial_)
        return false;
    stream_ = nullptr;
    enter(PlayState::idle);
    moveTo(atEnd_ == PlaceAtEnd::rewinds ? 0 : frames_);
    return true;
}

}
