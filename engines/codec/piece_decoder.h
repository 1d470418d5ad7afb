// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes a run of frames from the middle of a file, to the bits that decoding from the first frame on gives.
#pragma once

#include "engines/formats/frame_scan.h"
#include "engines/formats/mpg123_decoder.h"

#include <cstdint>
#include <memory>
#include <span>

namespace codec
{

// The frames in which a decoder's synthesis window turns once: its roundings depend on where in the turn a
// frame falls.
constexpr std::int64_t windowTurn = 8;

// What a decoder needs to give a frame exactly as if it came from the file's beginning. Its main data may
// begin up to 511 bytes back, in frames before it (the bit reservoir), so those come first, silenced; then
// frames for the overlap of one frame into the next.
struct FrameCut {
    std::int64_t leadIn; // frames that come before the wanted ones
    formats::FrameInput input;
};

// Frames `begin` to `end`; `begin` is a multiple of `windowTurn`. Fails with 57.
FrameCut cutFrames(const std::shared_ptr<const files::InputFile>& file, const formats::FrameTable& table,
                   std::int64_t begin, std::int64_t end);

class PieceDecoder
{
public:
    // As `cutFrames`.
    PieceDecoder(const std::shared_ptr<const files::InputFile>& file, const formats::FrameTable& table,
                 std::int64_t begin, std::int64_t end) :
        PieceDecoder(*file, table, begin, cutFrames(file, table, begin, end))
    {
    }

    // The next frame's samples, valid until the next call. False for one that perhaps broke off in the
    // decoder: what that does, only decoding from the start can tell.
    bool next(std::span<const std::int16_t>& samples);

private:
    PieceDecoder(const files::InputFile& file, const formats::FrameTable& table, std::int64_t begin,
                 FrameCut cut);
    bool endsSilent(std::span<const std::int16_t> samples) const;

    const files::InputFile& file_;
    const formats::FrameTable& table_;
    formats::Mpg123Decoder decoder_;
    std::int64_t frame_; // to be decoded next, those of the lead-in included
    std::int64_t begin_;
};

}
