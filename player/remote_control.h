// The player as the desktop's media keys and panels drive it: each command does what a click on its image
// does.
#pragma once

#include "platform/media_remote.h"
#include "toolkit/interval_timer.h"

#include <memory>

class Program;
class StartUp;

class RemoteControl
{
public:
    explicit RemoteControl(Program& program);

private:
    void wire();
    MediaRemote::Shown shown() const;
    MediaRemote::Status status() const;
    bool sounds() const;
    void play();
    void pause();

    Program& program_;
    StartUp& player_;
    const std::unique_ptr<MediaRemote> remote_;
    ctl::IntervalTimer tick_;
};
