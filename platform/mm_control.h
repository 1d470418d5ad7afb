// SPDX-License-Identifier: GPL-3.0-or-later
// The WAV engine, driven by command words.
#pragma once

#include "platform/hearing.h"
#include "platform/text.h"

#include <cstdint>

class MMControl : public Hearing
{
public:
    virtual ~MMControl() = default;

    virtual void
    setDeviceType(const Text& deviceType) = 0; // without effect: the engine plays WAV files alone

    // The file that the next "Open" takes.
    virtual void setFileName(const Text& path) = 0;

    // "Open": opens the file at position 0, anew if one is open; a file that is no WAV leaves the engine
    // closed. "Play": goes on from the position, or from `From` if that was set since the last "Play".
    // "Stop": halts and keeps the position. "Close": releases the file. "Open" and "Close" forget `From`.
    // Each is executed at once, harmless with nothing open, and reports nothing; other words do nothing.
    virtual void setCommand(const Text& word) = 0;

    virtual std::int32_t Length() const = 0; // milliseconds; 0 with nothing open
    // Milliseconds heard; after the end it stays at the length. Where a `From` waits for its "Play", that.
    virtual std::int32_t Position() const = 0;

    // Milliseconds: where the next "Play" starts. Held to the file's ends.
    virtual void setFrom(std::int32_t position) = 0;
};
