// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/voice.h"

#include "engines/audio/sound_output.h"
#include "engines/audio/voice_worker.h"

namespace audio
{

Voice::Voice(SoundOutput& output, PlaceAtEnd atEnd, std::function<void()> ended) :
    output_(output), ended_(std::move(ended)), playback_(output.activity(), atEnd)
{
}

Voice::~Voice() = default;

void Voice::wake()
{
    if (worker_ != nullptr)
        worker_->wake();
}

Hearing::State Voice::state() const
{
    constexpr Hearing::State states[] = {Hearing::State::idle, Hearing::State::sounding,
                                         Hearing::State::halted};
    return states[static_cast<int>(playback_.state())];
}

void Voice::load(std::shared_ptr<PcmSource> source, std::int64_t frames)
{
    playback_.load(std::move(source), frames);
    wake();
}

void Voice::play()
{
    if (!playback_.play())
        return;
    if (worker_ == nullptr)
        worker_ = std::make_unique<VoiceWorker>(output_, playback_, ended_);
    wake();
}

void Voice::pause()
{
    playback_.pause();
    wake();
}

void Voice::stop()
{
    playback_.stop();
    wake();
}

void Voice::seek(std::int64_t frame)
{
    playback_.seek(frame);
    wake();
}

}
