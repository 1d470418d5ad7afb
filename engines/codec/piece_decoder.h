// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes a run of frames from the middle of a file, to the bits that decoding from the first frame on gives.
#pragma once

#include "engines/codec/frame_cut.h"

#include <cstdint>
#include <span>

namespace codec
{

class PieceDecoder
{
public:
    // Frames `begin` to `end`; `begin` is a multiple of `FrameCut::windowTurn`. Fails with 57.
    PieceDecoder(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t begin,
                 std::int64_t end);

    // The next frame's samples, valid until the next call. False for one that perhaps broke off in the
    // decoder: what that does, only decoding from the start can tell.
    bool next(std::span<const std::int16_t>& samples);

private:
    bool endsSilent(std::span<const std::int16_t> samples) const;

    const formats::SourceFile& file_;
    const formats::FrameTable& table_;
    FrameCut cut_;
    FrameDecoder decoder_;
    std::int64_t frame_; // to be decoded next, those of the lead-in included
    std::int64_t begin_;
};

}
