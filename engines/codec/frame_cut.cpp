// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/frame_cut.h"

#include "platform/failure.h"

#include <algorithm>
#include <iterator>

namespace codec
{

namespace
{

std::int64_t overlapOf(std::int64_t begin) { return std::max<std::int64_t>(0, begin - FrameCut::windowTurn); }

std::int64_t startOf(const formats::FrameTable& table, std::int64_t begin)
{
    return reservoirStart(table, overlapOf(begin)) / FrameCut::windowTurn * FrameCut::windowTurn;
}

constexpr std::size_t windowBytes = 1 << 16;

// Frames `start` to `begin`, silent up to those that overlap.
std::vector<std::uint8_t> leadInBytes(const formats::SourceFile& file, const formats::FrameTable& table,
                                      std::int64_t start, std::int64_t begin)
{
    FrameBytes bytes(file, table, start, begin);
    for (std::int64_t frame = start; frame < overlapOf(begin); ++frame)
        bytes.silence(frame);
    return bytes.take();
}

}

FrameCut::FrameCut(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t begin,
                   std::int64_t end) :
    FrameCut(file, table, startOf(table, begin), begin, end)
{
}

FrameCut::FrameCut(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t start,
                   std::int64_t begin, std::int64_t end) :
    leadIn_(begin - start),
    source_(leadInBytes(file, table, start, begin), file, table.placeOf(begin), table.placeOf(end))
{
}

FrameCut::Source::Source(std::vector<std::uint8_t> front, const formats::SourceFile& file, std::int64_t begin,
                         std::int64_t end) :
    file_(file),
    next_(begin), end_(end), window_(std::move(front)), left_(window_)
{
}

std::int64_t FrameCut::Source::read(void* bytes, std::size_t count)
{
    if (left_.empty() && !succeeds([this] { fill(); }))
        return -1;
    const auto given = left_.first(std::min(count, left_.size()));
    std::copy(given.begin(), given.end(), static_cast<std::uint8_t*>(bytes));
    left_ = left_.subspan(given.size());
    return std::ssize(given);
}

void FrameCut::Source::fill()
{
    window_.resize(windowBytes);
    const auto count = std::min(std::ssize(window_), end_ - next_);
    left_ = std::span(window_).first(file_.read(window_.data(), static_cast<std::size_t>(count), next_));
    next_ += count;
}

}
