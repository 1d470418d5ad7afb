// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/frame_bytes.h"

#include "engines/formats/side_info.h"
#include "platform/failure.h"

#include <algorithm>

namespace codec
{

FrameBytes::FrameBytes(const files::InputFile& file, const formats::FrameTable& table, std::int64_t start,
                       std::int64_t end) :
    table_(table),
    start_(start), bytes_(static_cast<std::size_t>(table.placeOf(end) - table.placeOf(start)))
{
    if (file.read(bytes_.data(), bytes_.size(), table.placeOf(start)) != std::ssize(bytes_))
        throw files::brokenOff();
}

formats::MpegHeader FrameBytes::header(std::int64_t frame) const
{
    const auto header = formats::mpegHeader(bytes_.data() + placeOf(frame));
    if (!header || header->bytes != table_.placeOf(frame + 1) - table_.placeOf(frame))
        throw Failure(Trouble::deviceInputOutput);
    return *header;
}

int FrameBytes::reservoirBefore(std::int64_t frame) const
{
    const int most = table_.first.maxReservoir();
    int reservoir = 0;
    while (--frame >= start_ && reservoir < most)
        reservoir += header(frame).mainData();
    return std::min(reservoir, most);
}

void FrameBytes::silence(std::int64_t frame)
{
    formats::silence(at(frame), header(frame), reservoirBefore(frame));
}

std::size_t FrameBytes::placeOf(std::int64_t frame) const
{
    return static_cast<std::size_t>(table_.placeOf(frame) - table_.placeOf(start_));
}

std::int64_t reservoirStart(const formats::FrameTable& table, std::int64_t frame)
{
    const int checksum = 2;
    for (std::int64_t filled = 0; frame > 0 && filled < table.first.maxReservoir(); --frame)
        filled += table.placeOf(frame) - table.placeOf(frame - 1) - table.first.sideInfo - checksum;
    return frame;
}

}
