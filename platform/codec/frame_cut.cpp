#include "platform/codec/frame_cut.h"

#include <algorithm>

namespace codec
{

namespace
{

std::int64_t overlapOf(std::int64_t begin) { return std::max<std::int64_t>(0, begin - FrameCut::windowTurn); }

std::int64_t startOf(const FrameTable& table, std::int64_t begin)
{
    return reservoirStart(table, overlapOf(begin)) / FrameCut::windowTurn * FrameCut::windowTurn;
}

// The decoder keeps what the last frame took from the reservoir and brought itself. One that reaches back
// past that finds what frames long before happened to leave there.
std::int64_t firstPastReservoir(const FrameBytes& bytes, std::int64_t begin, std::int64_t end)
{
    for (std::int64_t frame = std::max<std::int64_t>(1, begin); frame < end; ++frame)
        if (bytes.takenBefore(frame) > bytes.takenBefore(frame - 1) + bytes.header(frame - 1).mainData())
            return frame;
    return end;
}

std::vector<std::uint8_t> silenced(FrameBytes bytes, std::int64_t start, std::int64_t end)
{
    for (std::int64_t frame = start; frame < end; ++frame)
        bytes.silence(frame);
    return bytes.take();
}

}

FrameCut::FrameCut(const SourceFile& file, const FrameTable& table, std::int64_t begin, std::int64_t end) :
    FrameCut(FrameBytes(file, table, startOf(table, begin), end), startOf(table, begin), begin, end)
{
}

FrameCut::FrameCut(FrameBytes bytes, std::int64_t start, std::int64_t begin, std::int64_t end) :
    leadIn_(begin - start), exactEnd_(firstPastReservoir(bytes, begin, end)),
    source_(silenced(std::move(bytes), start, overlapOf(begin)))
{
}

}
