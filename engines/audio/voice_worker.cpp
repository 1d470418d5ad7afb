// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/voice_worker.h"

#include <algorithm>

namespace audio
{

using namespace std::chrono_literals;

namespace
{

constexpr auto refill = 200ms;    // of a feed that holds 500
constexpr auto pauseWatch = 20ms; // until a pause has been heard

// What is decoded before the first of it is given away: more than an output asks for at once.
constexpr int headStartsPerSecond = 16;

constexpr std::size_t framesAtOnce = 1152;

}

VoiceWorker::VoiceWorker(SoundOutput& output, Playback& playback, std::function<void()> ended) :
    playback_(playback), ended_(std::move(ended)), outlet_(output, bell_), thread_([this] { run(); })
{
}

VoiceWorker::~VoiceWorker()
{
    quitting_ = true;
    bell_->ring();
    thread_.join();
}

void VoiceWorker::run()
{
    while (!quitting_)
        bell_->waitUntil(serve(playback_.wish()));
}

Outlet::TimePoint VoiceWorker::serve(const Playback::Wish& wish)
{
    accept(wish);
    if (wish.state == Playback::PlayState::playing)
        play(wish);
    else
        rest(wish);
    if (outlet_.turn(Stream::Clock::now())) {
        playback_.restart(serial_, playback_.position());
        bell_->ring();
    }
    return nextTurn(wish.state);
}

void VoiceWorker::accept(const Playback::Wish& wish)
{
    if (wish.cut != cut_)
        outlet_.close();
    if (wish.serial != serial_) {
        feed_ = nullptr;
        connected_ = false;
    }
    if (wish.source != source_)
        sourceAt_ = 0;
    cut_ = wish.cut;
    serial_ = wish.serial;
    source_ = wish.source;
}

void VoiceWorker::play(const Playback::Wish& wish)
{
    if (feed_ == nullptr)
        decodeFrom(wish.from);
    if (!connected_)
        connect();
    decode(feed_->capacity());
    if (outlet_.stream()->hasEnded(serial_))
        atEnd();
}

void VoiceWorker::decodeFrom(std::int64_t frame)
{
    if (sourceAt_ != frame)
        source_->seek(frame);
    sourceAt_ = frame;
    feed_ = std::make_shared<Feed>(source_->rate(), sourceAt_, serial_);
    decode(static_cast<std::size_t>(feed_->rate() / headStartsPerSecond));
}

void VoiceWorker::decode(std::size_t enough)
{
    while (!feed_->isFinished() && feed_->available() < enough) {
        const auto space = feed_->space();
        const std::size_t frames = source_->read(space.first(std::min(space.size(), framesAtOnce * 2)));
        feed_->commit(frames);
        sourceAt_ += static_cast<std::int64_t>(frames);
        if (frames == 0)
            feed_->finish();
    }
}

void VoiceWorker::connect()
{
    const auto stream = outlet_.streamFor(feed_->rate());
    stream->attach(feed_);
    connected_ = playback_.hearFrom(serial_, stream);
    outlet_.start();
}

void VoiceWorker::disconnect()
{
    connected_ = false;
    outlet_.release();
}

void VoiceWorker::atEnd()
{
    disconnect();
    const bool goesOn = source_->rate() != feed_->rate();
    if (!goesOn && playback_.end(serial_))
        ended_();
    if (goesOn && playback_.standAt(serial_, feed_->end()))
        feed_ = nullptr;
    bell_->ring();
}

// A pause keeps the way to the listener open until its last sound was heard, and no longer.
void VoiceWorker::rest(const Playback::Wish& wish)
{
    const auto& stream = outlet_.stream();
    if (stream == nullptr)
        return;
    const bool isHeard = wish.state == Playback::PlayState::paused && connected_ && !stream->hasFailed();
    if (isHeard && !stream->isSilent())
        return;
    stream->attach(nullptr);
    const std::int64_t at = playback_.position();
    playback_.standAt(serial_, at);
    if (feed_ != nullptr && feed_->position() != at)
        feed_ = nullptr; // some of it was given away and never heard
    disconnect();
}

Outlet::TimePoint VoiceWorker::nextTurn(Playback::PlayState state) const
{
    const auto now = Stream::Clock::now();
    const auto next = outlet_.nextTurn(now);
    if (state == Playback::PlayState::playing)
        return std::min(next, now + refill);
    return outlet_.stream() != nullptr ? std::min(next, now + pauseWatch) : next;
}

}
