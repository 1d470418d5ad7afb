// SPDX-License-Identifier: GPL-3.0-or-later
// The audio CD reader.
#pragma once

#include "platform/event.h"
#include "platform/text.h"

#include <cstdint>

class ACD
{
public:
    virtual ~ACD() = default;

    virtual std::int16_t Init() = 0; // starts the control; 0 when ready

    virtual std::int16_t DriveCount() = 0;                // looks for drives anew
    virtual Text DriveName(std::int16_t drive) const = 0; // drives count from 1; "" out of range

    // Makes that drive the current one; out of range it keeps the current one.
    virtual void SelectDrive(std::int16_t drive) = 0;

    virtual std::int16_t TrackCount() = 0; // tracks on the disc in the current drive
    virtual std::int32_t
    TrackLength(std::int16_t track) = 0; // milliseconds; tracks count from 1; 0 out of range

    // Starts copying that track to a WAV file. 0 when started. Anything else: `Done` still comes once, unless
    // a read is running already, whose own `Done` serves.
    virtual std::int16_t ReadTrack(std::int16_t track, const Text& path) = 0;

    // Breaks off the read in progress, which keeps what was read and still raises `Done`. Harmless when idle.
    virtual void Stop() = 0;

    Event<std::int32_t> Progress; // how far the current track is, in thousandths
    Event<> Done;                 // the track read has ended
};
