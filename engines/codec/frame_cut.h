// SPDX-License-Identifier: GPL-3.0-or-later
// Frames cut out of the middle of a file, made decodable from their first one on.
#pragma once

#include "engines/codec/frame_bytes.h"
#include "engines/codec/frame_decoder.h"
#include "engines/formats/frame_scan.h"

#include <cstdint>
#include <span>
#include <vector>

namespace codec
{

// What a decoder needs to give frame `begin` exactly as if it came from the file's beginning. A frame's main
// data may begin up to 511 bytes back, in frames before it (the bit reservoir), so those come first,
// silenced; then frames for the overlap of one frame into the next.
class FrameCut
{
public:
    // The frames in which a decoder's synthesis window turns once: its roundings depend on where in the turn
    // a frame falls.
    static constexpr std::int64_t windowTurn = 8;

    // `begin` is a multiple of `windowTurn`. Fails with 57.
    FrameCut(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t begin,
             std::int64_t end);

    std::int64_t leadIn() const { return leadIn_; } // frames that come before `begin`
    DecoderInput& source() { return source_; }

private:
    // Changed bytes, and behind them those of the file.
    class Source final : public DecoderInput
    {
    public:
        Source(std::vector<std::uint8_t> front, const formats::SourceFile& file, std::int64_t begin,
               std::int64_t end);
        Source(const Source&) = delete;
        Source& operator=(const Source&) = delete;

        std::int64_t read(void* bytes, std::size_t count) override;
        std::int64_t seek(std::int64_t, int) override { return -1; }

    private:
        void fill();

        const formats::SourceFile& file_;
        std::int64_t next_; // in the file: what is read into the window next
        std::int64_t end_;
        std::vector<std::uint8_t> window_;
        std::span<const std::uint8_t> left_; // of the window
    };

    FrameCut(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t start,
             std::int64_t begin, std::int64_t end);

    std::int64_t leadIn_;
    Source source_;
};

}
