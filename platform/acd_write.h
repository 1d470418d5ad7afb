// SPDX-License-Identifier: GPL-3.0-or-later
// The audio CD writer, with a track list of its own.
#pragma once

#include "platform/event.h"
#include "platform/text.h"

#include <cstdint>

class ACDWRITE
{
public:
    virtual ~ACDWRITE() = default;

    virtual std::int16_t Init() = 0; // starts the control; 0 when ready

    virtual std::int16_t DriveCount() = 0;
    virtual Text DriveName(std::int16_t drive) = 0;   // drives count from 0; "" out of range
    virtual void SelectDrive(std::int16_t drive) = 0; // out of range it keeps the current one

    // The type known for the current drive; 0 or less, or 100 and above: none is known.
    virtual std::int16_t WriterType() const = 0;
    virtual void SetWriterType(std::int16_t type) = 0;

    virtual std::int16_t WriteSpeed() const = 0; // speed factor
    virtual void setWriteSpeed(std::int16_t factor) = 0;
    virtual void
    setWriteSpeed(const Text& factor) = 0;       // fails with 13 or 6 as the conversion to a number does
    virtual void setCloseDisc(bool close) = 0;   // no more tracks can be added afterwards
    virtual void setSimulate(bool simulate) = 0; // goes through the writing without writing
    virtual void setAutoEject(bool eject) = 0;

    // Appends the file to the track list. 0 when it is a WAV of 44.1 kHz, 16 bit, stereo.
    virtual std::int16_t AddTrack(const Text& path, std::int32_t unused) = 0;
    virtual void ClearTracks() = 0;

    virtual std::int16_t CheckMedia() = 0; // 0 when a writable disc is in the drive

    // Starts writing the track list. 0 when started; otherwise no `Done` follows.
    virtual std::int16_t Write() = 0;

    Event<std::int16_t> Progress; // per cent of the writing done
    Event<std::int16_t> Done;     // the disc is finished
};
