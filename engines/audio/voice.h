// SPDX-License-Identifier: GPL-3.0-or-later
// One engine's sound. The calls return at once, whatever the disk and the sound server do; a thread of the
// voice's own, which begins with the first `play`, decodes and watches over the way to the listener.
#pragma once

#include "engines/audio/playback.h"
#include "platform/hearing.h"

#include <functional>
#include <memory>

namespace audio
{

class SoundOutput;
class VoiceWorker;

class Voice
{
public:
    // `ended` is called on the voice's thread whenever the last frame of a source was heard.
    Voice(SoundOutput& output, PlaceAtEnd atEnd, std::function<void()> ended);
    ~Voice();

    void load(std::shared_ptr<PcmSource> source,
              std::int64_t frames); // silences what played; nullptr: nothing
    void play();
    void pause();
    void stop(); // the position is 0
    void seek(std::int64_t frame);

    bool isPlaying() const { return playback_.isPlaying(); } // also in a pause
    Hearing::State state() const;
    std::int64_t position() const { return playback_.position(); }

private:
    void wake();

    SoundOutput& output_;
    std::function<void()> ended_;
    Playback playback_;
    std::unique_ptr<VoiceWorker> worker_;
};

}
