// SPDX-License-Identifier: GPL-3.0-or-later
// The four bytes at the start of a Layer III frame: ISO/IEC 11172-3 and 13818-3, and MPEG-2.5's half rates.
#pragma once

#include <cstdint>
#include <optional>

namespace formats
{

struct MpegHeader {
    std::uint32_t bits = 0;
    int rate = 0;          // hertz
    int channels = 0;      // 1 or 2
    int samples = 0;       // that one frame holds of each channel: 1152, or 576 for the low sample rates
    int bitsPerSecond = 0; // 0: free format
    int padding = 0;       // bytes, counted in `bytes`
    int bytes = 0;         // of the whole frame; 0: free format, where the distance to the next frame tells
    int sideInfo = 0;      // where the main data begin, counted from the frame's first byte

    bool isFreeFormat() const { return bitsPerSecond == 0; }
    bool isLowRate() const { return samples == 576; }
    bool isProtected() const { return (bits >> 16 & 1) == 0; }
    int mainData() const { return bytes - sideInfo; }

    // The largest step back that main_data_begin can express.
    int maxReservoir() const { return isLowRate() ? 255 : 511; }

    // Frames of one stream agree in these; mono and stereo stand in it side by side.
    bool agreesWith(const MpegHeader& other) const
    {
        return rate == other.rate && isFreeFormat() == other.isFreeFormat();
    }
};

// Nothing for bytes that begin no Layer III frame.
std::optional<MpegHeader> mpegHeader(const std::uint8_t* fourBytes);

}
