// The four bytes at the start of a Layer III frame: ISO/IEC 11172-3 and 13818-3, and MPEG-2.5's half rates.
#pragma once

#include <cstdint>
#include <optional>

struct MpegHeader {
    int rate = 0;          // hertz
    int channels = 0;      // 1 or 2
    int samples = 0;       // that one frame holds of each channel
    int bitsPerSecond = 0; // 0: free format
    int padding = 0;       // bytes, counted in `bytes`
    int bytes = 0;         // of the whole frame; 0: free format, where the distance to the next frame tells
    bool lowSamplingRate = false;

    bool isFreeFormat() const { return bitsPerSecond == 0; }

    // Frames of one stream agree in these.
    bool agreesWith(const MpegHeader& other) const
    {
        return rate == other.rate && isFreeFormat() == other.isFreeFormat();
    }

    // Of the data between the header and an Info tag, or the scale factors.
    int sideInfoBytes() const;
};

// Nothing for bytes that begin no Layer III frame.
std::optional<MpegHeader> mpegHeader(const unsigned char* fourBytes);
