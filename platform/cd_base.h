// SPDX-License-Identifier: GPL-3.0-or-later
// The CDDB lookup for the disc in the system's default CD device.
#pragma once

#include "platform/text.h"

#include <cstdint>

class CdBase
{
public:
    virtual ~CdBase() = default;

    virtual void setContactIdentity(const Text& address) = 0; // in the form of an e-mail address
    virtual Text DefaultDevice() const = 0;
    virtual void setDevice(const Text& device) = 0;
    virtual void setTimeLimit(std::int32_t milliseconds) = 0; // for the whole lookup

    // "Open" is the one command: forgets earlier titles. Fails with 68 "Device unavailable".
    virtual void setCommand(const Text& word) = 0;

    // Fetches the disc's titles. Returns within the time limit; no answer means empty titles.
    virtual void Lookup() = 0;

    virtual Text DiscArtist() const = 0;
    virtual Text TrackTitle(std::int16_t track) const = 0; // tracks count from 1; "" when there is none
};
