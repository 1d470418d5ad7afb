// The frames of an MPEG audio layer III file (ISO/IEC 11172-3 and 13818-3, and the 2.5 extension), found by
// their headers alone.
#pragma once

#include "engines/formats/source_file.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace codec
{

struct FrameHeader {
    std::uint32_t bits = 0;
    int rate = 0;     // hertz
    int channels = 0; // 1 or 2
    int samples = 0;  // for each channel: 1152, or 576 for the low sample rates
    int bytes = 0;    // the whole frame; 0 in free format, whose headers do not tell
    int sideInfo = 0; // where the main data begin, counted from the frame's first byte

    bool isLowRate() const { return samples == 576; }
    bool isProtected() const { return !(bits >> 16 & 1); }
    int mainData() const { return bytes - sideInfo; }

    // The largest step back that main_data_begin can express.
    int maxReservoir() const { return isLowRate() ? 255 : 511; }
};

// nullopt for four bytes that head no layer III frame.
std::optional<FrameHeader> parseHeader(const std::uint8_t* bytes);

// True for headers that one stream can hold side by side: same version, rate, and mono or not.
bool areAlike(const FrameHeader& one, const FrameHeader& other);

// Where sound begins and ends among the decoded samples.
struct Trim {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

// A file in which every byte is accounted for: tags around an unbroken run of like frames, of which each can
// be decoded from those shortly before it.
struct FrameTable {
    FrameHeader first;
    std::vector<std::int64_t> positions; // of each frame that sounds, and where the last one ends
    Trim trim;

    std::int64_t frames() const { return static_cast<std::int64_t>(positions.size()) - 1; }
};

// nullopt for any other file, and when the encoder's note at the front contradicts the frames.
std::optional<FrameTable> scanFrames(const SourceFile& file);

// True for a file with layer III sound: within 64 KB after its tags, four like frames stand one behind the
// other, or fewer that end with the file.
bool isMp3(const SourceFile& file);

}
