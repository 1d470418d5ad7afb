// SPDX-License-Identifier: GPL-3.0-or-later
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
        std::uint64_t track = 0; // another number each time that another track becomes current
        Text path{};             // "" for no file
        Text title{};
        Text artist{};
        Text album{};
        Text genre{};
        std::int32_t length = 0; // milliseconds; 0 where it is not known
        std::int32_t volume = 0; // per cent
        bool canGoNext = false;
        bool canGoPrevious = false;
        bool canSeek = false;

        bool operator==(const Shown&) const = default;
    };

    virtual ~MediaRemote() = default;

    // What the desktop may show, and the place in milliseconds. Costs nothing while all but the place stays
    // the same; never waits.
    virtual void show(const Shown& shown, std::int32_t place) = 0;

    // The place is another one than the time that went by explains.
    virtual void jumped(std::int32_t place) = 0;

    // The desktop is about to be answered: time for a last `show`.
    Event<> Asked;

    // The caller has been answered when these are raised: what they start may run for hours.
    Event<> Play, Pause, PlayPause, Stop, Next, Previous;
    Event<std::int64_t> Seek;                       // milliseconds forward, or back
    Event<std::uint64_t, std::int64_t> SetPosition; // of that track, to that millisecond
    Event<std::int32_t> SetVolume;                  // 0 to 100
    Event<> Raise;                                  // the user looks for the window
    Event<> Quit;
};
