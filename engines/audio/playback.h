// SPDX-License-Identifier: GPL-3.0-or-later
// What an engine plays, and how far it is: the state that the window's thread sets and asks, and that the
// engine's own thread carries out. Every call returns at once.
#pragma once

#include "engines/audio/pcm_source.h"
#include "engines/audio/stream.h"
#include "platform/activity.h"
#include "platform/mutex.h"

#include <memory>

namespace audio
{

enum class PlaceAtEnd { rewinds, stays }; // where the position is when the last frame was heard

class Playback
{
public:
    enum class PlayState { idle, playing, paused };

    // What there is to do, seen at one moment.
    struct Wish {
        PlayState state = PlayState::idle;
        std::shared_ptr<PcmSource> source;
        std::int64_t from = 0;    // frame
        std::uint64_t serial = 0; // another one: the sound must be heard from another frame
        std::uint64_t cut = 0;    // another one: what is under way to the listener must not be heard
    };

    Playback(Activity& activity, PlaceAtEnd atEnd) : activity_(activity), atEnd_(atEnd) {}
    ~Playback() { load(nullptr, 0); }

    // The window's thread.
    void load(std::shared_ptr<PcmSource> source, std::int64_t frames); // at frame 0, not playing
    bool play();                                                       // false: there is nothing to do
    void pause();
    void stop();
    void seek(std::int64_t frame); // held to 0 and the end
    bool isPlaying() const;        // true at least once after a `play` of a loaded source
    PlayState state() const;
    std::int64_t position() const;

    // The engine's thread. Where `serial` is no longer current, these do nothing and are false.
    Wish wish() const;
    bool hearFrom(std::uint64_t serial, std::shared_ptr<Stream> stream); // whose position it is; lets it flow
    bool standAt(std::uint64_t serial, std::int64_t frame);              // the position is no stream's
    bool restart(std::uint64_t serial, std::int64_t frame);              // as `seek`, when a stream was lost
    bool end(std::uint64_t serial);                                      // the last frame was heard

private:
    void enter(PlayState state) REQUIRES(mutex_);
    void moveTo(std::int64_t frame) REQUIRES(mutex_);
    void cut() REQUIRES(mutex_);
    void flow(bool flowing) REQUIRES(mutex_);
    std::int64_t heardFrame() const REQUIRES(mutex_);

    Activity& activity_;
    const PlaceAtEnd atEnd_;

    mutable Mutex mutex_;
    PlayState state_ GUARDED_BY(mutex_) = PlayState::idle;
    std::shared_ptr<PcmSource> source_ GUARDED_BY(mutex_);
    std::int64_t frames_ GUARDED_BY(mutex_) = 0;
    std::int64_t from_ GUARDED_BY(mutex_) = 0;
    std::uint64_t serial_ GUARDED_BY(mutex_) = 1;
    std::uint64_t cuts_ GUARDED_BY(mutex_) = 0;
    std::shared_ptr<Stream> stream_ GUARDED_BY(mutex_);
    mutable std::int64_t shown_ GUARDED_BY(mutex_) = 0;   // the position never goes back but by a move
    mutable bool owesPlaying_ GUARDED_BY(mutex_) = false; // nobody has been told yet that it plays
};

}
