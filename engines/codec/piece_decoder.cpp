// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/piece_decoder.h"

#include "engines/codec/frame_bytes.h"
#include "engines/formats/side_info.h"

#include <algorithm>

namespace codec
{

namespace
{

bool isZero(std::int16_t sample) { return sample == 0; }

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

bool isHeard(std::vector<std::uint8_t> frames, int channels)
{
    formats::Mpg123Decoder decoder({nullptr, 0, 0, std::move(frames)}, {.channels = channels, .isCut = true});
    for (std::span<const std::int16_t> samples; decoder.next(samples);)
        if (!std::ranges::all_of(samples, isZero))
            return true;
    return false;
}

// For a frame that decoded to silence at its end, as one does that broke off: false when it surely did not. A
// frame without values cannot, one that counts on a reservoir before the file's first frame is silent by
// itself, and of a quiet one something is heard at full gain.
bool mayHaveBrokenOff(const files::InputFile& file, const formats::FrameTable& table, std::int64_t frame)
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
    return !isHeard(std::move(frames), table.first.channels);
}

}

FrameCut cutFrames(const std::shared_ptr<const files::InputFile>& file, const formats::FrameTable& table,
                   std::int64_t begin, std::int64_t end)
{
    const auto overlap = std::max<std::int64_t>(0, begin - windowTurn);
    const auto start = reservoirStart(table, overlap) / windowTurn * windowTurn;
    FrameBytes front(*file, table, start, begin);
    for (std::int64_t frame = start; frame < overlap; ++frame)
        front.silence(frame);
    return {begin - start, {file, table.placeOf(begin), table.placeOf(end), front.take()}};
}

PieceDecoder::PieceDecoder(const files::InputFile& file, const formats::FrameTable& table, std::int64_t begin,
                           FrameCut cut) :
    file_(file),
    table_(table), decoder_(std::move(cut.input), {.channels = table.first.channels, .isCut = true}),
    frame_(begin - cut.leadIn), begin_(begin)
{
}

bool PieceDecoder::next(std::span<const std::int16_t>& samples)
{
    for (; frame_ < begin_; ++frame_)
        if (!decoder_.next(samples))
            return false;
    const auto expected = static_cast<std::size_t>(table_.first.samples * table_.first.channels);
    if (!decoder_.next(samples) || samples.size() != expected)
        return false;
    if (endsSilent(samples) && mayHaveBrokenOff(file_, table_, frame_))
        return false;
    ++frame_;
    return true;
}

// The decoder fills up with zeros what it could not decode; the last granule of a frame is 576 samples for
// each channel.
bool PieceDecoder::endsSilent(std::span<const std::int16_t> samples) const
{
    const auto granule = samples.last(static_cast<std::size_t>(576 * table_.first.channels));
    return std::all_of(granule.rbegin(), granule.rend(), isZero);
}

}
