// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/piece_decoder.h"

#include "engines/codec/broken_frame.h"

#include <algorithm>

namespace codec
{

PieceDecoder::PieceDecoder(const formats::SourceFile& file, const formats::FrameTable& table,
                           std::int64_t begin, std::int64_t end) :
    file_(file),
    table_(table), cut_(file, table, begin, end), decoder_(cut_.source(), FrameDecoder::Kind::Frames),
    frame_(begin - cut_.leadIn()), begin_(begin)
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
    return std::all_of(granule.rbegin(), granule.rend(), [](std::int16_t sample) { return sample == 0; });
}

}
