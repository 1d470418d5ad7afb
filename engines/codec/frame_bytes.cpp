#include "engines/codec/frame_bytes.h"

#include "engines/formats/side_info.h"
#include "platform/failure.h"

#include <algorithm>

namespace codec
{

FrameBytes::FrameBytes(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t start,
                       std::int64_t end) :
    table_(table),
    start_(start), bytes_(static_cast<std::size_t>(table.positions[end] - table.positions[start]))
{
    if (file.read(bytes_.data(), bytes_.size(), table.positions[start]) != bytes_.size())
        throw failure(57);
}

formats::MpegHeader FrameBytes::header(std::int64_t frame) const
{
    const auto header = formats::mpegHeader(bytes_.data() + placeOf(frame));
    if (!header || header->bytes != table_.positions[frame + 1] - table_.positions[frame])
        throw failure(57);
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
    return static_cast<std::size_t>(table_.positions[frame] - table_.positions[start_]);
}

std::int64_t reservoirStart(const formats::FrameTable& table, std::int64_t frame)
{
    const int checksum = 2;
    for (std::int64_t filled = 0; frame > 0 && filled < table.first.maxReservoir(); --frame)
        filled += table.positions[frame] - table.positions[frame - 1] - table.first.sideInfo - checksum;
    return frame;
}

}
