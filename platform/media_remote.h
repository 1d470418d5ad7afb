// The desktop's own controls for a player: media keys, panels, headsets.
#pragma once

#include "platform/event.h"
#include "platform/text.h"

#include <cstdint>

class MediaRemote
{
public:
    enum class Status { stopped, playing, paused };

    struct Shown {
        Status status = Status::stopped;
        Text path; // "" for no file
        Text title;
        Text artist;
        Text album;
        std::int32_t length = 0; // milliseconds

        bool operator==(const Shown&) const = default;
    };

    virtual ~MediaRemote() = default;

    // What the desktop may show. Costs nothing while it stays the same; never waits.
    virtual void show(const Shown& shown) = 0;

    // The caller has been answered when these are raised: what they start may run for hours.
    Event<> Play, Pause, PlayPause, Stop, Next, Previous;
    Event<> Raise; // the user looks for the window
    Event<> Quit;
};
