// SPDX-License-Identifier: GPL-3.0-or-later
// The silent first frame in which encoders note a file's length: "Xing" or "Info", with LAME's addition.
#pragma once

#include "engines/formats/mpeg_header.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>

namespace formats
{

struct InfoFrame {
    bool isConstant = false;             // "Info": every frame has the same bit rate
    std::optional<std::uint32_t> frames; // without this one; never 0
    std::optional<std::uint32_t> bytes;
    int delay = 0;   // samples that the encoder put before the sound
    int padding = 0; // and behind it

    // Samples that belong to no sound: those of the encoder, and what every decoder adds before the sound.
    int skipAtStart() const { return delay + decoderDelay; }
    int skipAtEnd() const { return std::max(padding - decoderDelay, 0); }

    static constexpr int decoderDelay = 529;
};

// Nothing when the frame is an ordinary one.
std::optional<InfoFrame> infoFrame(const MpegHeader& header, std::span<const std::uint8_t> frame);

}
