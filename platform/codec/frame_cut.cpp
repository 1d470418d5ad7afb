#include "platform/codec/frame_cut.h"

#include "platform/codec/frame_bytes.h"

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

std::vector<std::uint8_t> cut(const SourceFile& file, const FrameTable& table, std::int64_t begin,
                              std::int64_t end)
{
    const std::int64_t start = startOf(table, begin);
    FrameBytes bytes(file, table, start, end);
    for (std::int64_t frame = start; frame < overlapOf(begin); ++frame)
        bytes.silence(frame);
    return bytes.take();
}

}

FrameCut::FrameCut(const SourceFile& file, const FrameTable& table, std::int64_t begin, std::int64_t end) :
    leadIn_(begin - startOf(table, begin)), source_(cut(file, table, begin, end))
{
}

}
