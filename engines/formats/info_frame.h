// The silent first frame in which encoders note a file's length: "Xing" or "Info", with LAME's addition.
#pragma once

#include "engines/formats/mpeg_header.h"

#include <cstdint>
#include <optional>
#include <span>

struct InfoFrame {
    bool isConstant = false;             // "Info": every frame has the same bit rate
    std::optional<std::uint32_t> frames; // without this one
    std::optional<std::uint32_t> bytes;
    int delay = 0;   // samples that the encoder put before the sound
    int padding = 0; // and behind it
};

// Nothing when the frame is an ordinary one.
std::optional<InfoFrame> infoFrame(const MpegHeader& header, std::span<const unsigned char> frame);
