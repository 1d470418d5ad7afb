// SPDX-License-Identifier: GPL-3.0-or-later
// How a sound is cut into chunks that are encoded side by side, and where their frames lie in the MP3 file.
#pragma once

#include <cstdint>
#include <vector>

namespace codec
{

// A run of frames for one encoder. It starts on earlier frames, which are thrown away, so that it knows the
// sound before its own. Its first frames are the last ones of the chunk before it, too: there the two
// encoders come to agree, and one takes over from the other.
struct EncodeChunk {
    std::int64_t start = 0; // the frame at which its encoder starts
    std::int64_t first = 0; // its own frames: from this one
    std::int64_t end = 0;   // up to but without this one; `toTheEnd` in the last chunk

    static constexpr std::int64_t toTheEnd = INT64_MAX;
    static constexpr std::int64_t overlap = 48;

    bool isFirst() const { return first == 0; }
    bool isLast() const { return end == toTheEnd; }

    // The frames that no other chunk has.
    std::int64_t bodyFirst() const { return isFirst() ? 0 : first + overlap; }
    std::int64_t bodyEnd() const { return isLast() ? toTheEnd : end - overlap; }

    bool operator==(const EncodeChunk&) const = default;
};

// How input and output samples lie side by side.
struct EncodeClock {
    int rateIn = 44100;
    int rateOut = 44100;
    int frameSamples = 1152; // of the output

    // A rate in that differs by a hair (a twentieth of a per cent) is taken as the rate out: the encoder does
    // not resample there.
    static EncodeClock of(int rateIn, int rateOut, int frameSamples);

    std::int64_t inputSamples(std::int64_t frame) const;         // input before that frame, rounded
    std::int64_t outputSamples(std::int64_t inputSamples) const; // rounded

    // Encoders may start at the multiples of this: there the input falls on a whole sample, and the padding
    // of the frames (one byte more in some, ISO/IEC 11172-3, 2.4.3.1) begins anew.
    std::int64_t startUnit() const;
};

// The chunks of a sound of so many frames. They follow from the length alone, never from the machine: the
// same input gives the same bytes everywhere. One chunk up to eight seconds.
std::vector<EncodeChunk> planChunks(std::int64_t frames, const EncodeClock& clock);

// Bytes before `frame` in a stream of constant bit rate, as the encoder pads its frames.
std::int64_t bytesBefore(std::int64_t frame, int kilobits, const EncodeClock& clock);

}
