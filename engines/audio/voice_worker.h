// SPDX-License-Identifier: GPL-3.0-or-later
// Carries out what a `Playback` wishes, on a thread of its own: decodes, and keeps the way out open.
#pragma once

#include "engines/audio/outlet.h"
#include "engines/audio/playback.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace audio
{

class VoiceWorker
{
public:
    // `ended` is called on the worker's thread whenever the last frame of a source was heard.
    VoiceWorker(SoundOutput& output, Playback& playback, std::function<void()> ended);
    ~VoiceWorker();

    void wake() { bell_->ring(); } // the wishes have changed

private:
    void run();
    Outlet::TimePoint serve(const Playback::Wish& wish); // until when there is nothing more to do
    void accept(const Playback::Wish& wish);
    void play(const Playback::Wish& wish);
    void rest(const Playback::Wish& wish);
    void decodeFrom(std::int64_t frame);
    void decode(std::size_t enough);
    void connect();
    void disconnect();
    void atEnd();
    Outlet::TimePoint nextTurn(Playback::PlayState state) const;

    Playback& playback_;
    const std::function<void()> ended_;
    const std::shared_ptr<Bell> bell_ = std::make_shared<Bell>();
    Outlet outlet_;

    std::shared_ptr<PcmSource> source_;
    std::int64_t sourceAt_ = 0; // the frame that `source_` gives next
    std::shared_ptr<Feed> feed_;
    bool connected_ = false; // `feed_` is on its way to the listener
    std::uint64_t serial_ = 0;
    std::uint64_t cut_ = 0;

    std::atomic<bool> quitting_{false};
    std::thread thread_;
};

}
