// SPDX-License-Identifier: GPL-3.0-or-later
// The player as the desktop's media keys and panels drive it: each command does what a click on its image
// does, as far as the state of the player lets it mean anything.
#pragma once

#include "platform/hearing.h"
#include "platform/media_remote.h"
#include "player/place_watch.h"
#include "toolkit/interval_timer.h"

#include <memory>

class PlayListEditor;
class Program;
class StartUp;

class RemoteControl
{
public:
    explicit RemoteControl(Program& program);

private:
    void wire();
    void show();
    MediaRemote::Shown shown();
    MediaRemote::Status status() const;
    const Hearing& engine() const;
    bool isWav() const;
    std::int32_t length() const;
    bool labelsAreOfCurrentFile() const;
    bool canSeek() const;
    std::uint64_t track();

    void play();
    void pause();
    void playPause();
    void stop();
    void next();
    void previous();
    void step(void (PlayListEditor::*click)());
    void seek(std::int64_t by);
    void setPosition(std::uint64_t track, std::int64_t place);
    void moveTo(std::int32_t place);
    void moveWavTo(std::int32_t place);
    void setVolume(std::int32_t percent);

    Program& program_;
    StartUp& player_;
    PlayListEditor& list_;
    const std::unique_ptr<MediaRemote> remote_;
    PlaceWatch watch_;
    Text trackPath_;
    std::int32_t trackRow_ = 0;
    std::uint64_t track_ = 0;
    ctl::IntervalTimer tick_;
};
