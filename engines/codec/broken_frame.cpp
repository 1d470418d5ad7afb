// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/broken_frame.h"

#include "engines/codec/frame_bytes.h"
#include "engines/codec/frame_decoder.h"
#include "engines/formats/side_info.h"

#include <algorithm>

namespace codec
{

namespace
{

// The decoder silences a frame whose main data begin before those it has. One of low rate it breaks off where
// the rest of them is too short as well.
bool isMeantSilent(FrameBytes& bytes, std::int64_t frame)
{
    const auto header = bytes.header(frame);
    const bool lacksBeginning =
        formats::mainDataBegin(bytes.at(frame), header) > bytes.reservoirBefore(frame);
    const bool lacksRest =
        header.isLowRate() && formats::soundBits(bytes.at(frame), header) > 8 * header.mainData();
    return formats::isEmpty(bytes.at(frame), header) || (lacksBeginning && !lacksRest);
}

// A frame's sound reaches into the next: an empty one stands there.
std::vector<std::uint8_t> emptyFrameBehind(FrameBytes& bytes, std::int64_t frame)
{
    const auto header = bytes.header(frame);
    std::vector<std::uint8_t> empty(bytes.at(frame), bytes.at(frame) + header.bytes);
    const int reservoir = bytes.reservoirBefore(frame) + header.mainData();
    formats::silence(empty.data(), header, std::min(reservoir, header.maxReservoir()));
    return empty;
}

bool isHeard(std::vector<std::uint8_t> frames)
{
    MemorySource source(std::move(frames));
    FrameDecoder decoder(source, FrameDecoder::Kind::Frames);
    for (std::span<const std::int16_t> samples; decoder.next(samples);)
        if (std::any_of(samples.begin(), samples.end(), [](std::int16_t sample) { return sample != 0; }))
            return true;
    return false;
}

}

bool mayHaveBrokenOff(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t frame)
{
    const std::int64_t start = reservoirStart(table, frame);
    FrameBytes bytes(file, table, start, frame + 1);
    if (isMeantSilent(bytes, frame))
        return false;
    for (std::int64_t i = start; i < frame; ++i)
        bytes.silence(i);
    const auto behind = emptyFrameBehind(bytes, frame);
    formats::keepLastSound(bytes.at(frame), bytes.header(frame));
    auto frames = bytes.take();
    frames.insert(frames.end(), behind.begin(), behind.end());
    return !isHeard(std::move(frames));
}

}
