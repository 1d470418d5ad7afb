// SPDX-License-Identifier: GPL-3.0-or-later
// The encoder: one WAV file to one MP3 file at a time.
#pragma once

#include "platform/event.h"
#include "platform/text.h"

#include <cstdint>

class Mp3Enc
{
public:
    virtual ~Mp3Enc() = default;

    // Bits per second. The text form takes decimal text and fails with 13 or 6 as the conversion to a number
    // does. Reads back as set; the encoder uses the nearest rate that the format has.
    virtual std::int32_t Bitrate() const = 0;
    virtual void setBitrate(std::int32_t bitsPerSecond) = 0;
    virtual void setBitrate(const Text& bitsPerSecond) = 0;

    virtual void setHalfSampleRate(bool half) = 0; // true: 22.05 kHz, false: 44.1 kHz

    // Names the next conversion. 0 when the input can be read; never aborts a running conversion.
    virtual std::int16_t Open(const Text& input, const Text& output) = 0;

    // Queues the conversion opened last with the settings as they stand. The output appears under its name
    // when it is complete; a failed one leaves no file, and the desktop is told.
    virtual void Start() = 0;

    // The length of the opened input in the unit of `Progress`, thousandths; 0 when nothing is open.
    virtual std::int32_t Length() const = 0;

    Event<std::int32_t> Progress; // how far the running conversion is
    Event<> Done;                 // exactly once for each `Start`
};
