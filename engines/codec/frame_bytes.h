// SPDX-License-Identifier: GPL-3.0-or-later
// A run of frames in memory, to be changed before it is decoded.
#pragma once

#include "engines/formats/frame_scan.h"
#include "files/input_file.h"

#include <cstdint>
#include <vector>

namespace codec
{

class FrameBytes
{
public:
    // Frames `start` to `end`. Fails with 57.
    FrameBytes(const files::InputFile& file, const formats::FrameTable& table, std::int64_t start,
               std::int64_t end);

    std::uint8_t* at(std::int64_t frame) { return bytes_.data() + placeOf(frame); }
    formats::MpegHeader
    header(std::int64_t frame) const; // fails with 57 when the file has changed since it was scanned

    // Bytes in the bit reservoir, as far back as the run goes: main data of earlier frames that this one may
    // use.
    int reservoirBefore(std::int64_t frame) const;

    // No sound any more, but the reservoir is handed on.
    void silence(std::int64_t frame);

    std::vector<std::uint8_t> take() { return std::move(bytes_); }

private:
    std::size_t placeOf(std::int64_t frame) const;

    const formats::FrameTable& table_;
    std::int64_t start_;
    std::vector<std::uint8_t> bytes_;
};

// Where a run must start to know all that `frame` may find in its reservoir.
std::int64_t reservoirStart(const formats::FrameTable& table, std::int64_t frame);

}
