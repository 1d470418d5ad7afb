// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/frame_walk.h"

#include "engines/formats/info_frame.h"
#include "engines/formats/side_info.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace formats
{

namespace
{

// Free format ends at 640 kbit/s; nothing is shorter than its own side information.
constexpr int shortestFreeFrame = 24;
constexpr int longestFreeFrame = 3456;

// Its headers say less, and samples look like them more often.
int convincing(const MpegHeader& header) { return header.isFreeFormat() ? 16 : 4; }

}

const std::uint8_t* FrameWalk::bytesAt(std::int64_t at, std::size_t count)
{
    return at + static_cast<std::int64_t>(count) > end_ ? nullptr : window_.view(at, count);
}

std::optional<MpegHeader> FrameWalk::plainHeaderAt(std::int64_t at)
{
    const auto* bytes = bytesAt(at, 4);
    return bytes ? mpegHeader(bytes) : std::nullopt;
}

std::optional<MpegHeader> FrameWalk::headerAt(std::int64_t at)
{
    auto header = plainHeaderAt(at);
    if (!header || !header->isFreeFormat())
        return header;
    if (freeFormatBytes_ == 0 && !resolveFreeFormat(at, *header))
        return std::nullopt;
    header->bytes = freeFormatBytes_ + header->padding;
    return header;
}

bool FrameWalk::beginsLike(const MpegHeader& header, std::int64_t at)
{
    const auto other = plainHeaderAt(at);
    return other && other->agreesWith(header);
}

// Frames of free format are equally long but for a byte of padding: a distance that repeats is their length.
bool FrameWalk::resolveFreeFormat(std::int64_t at, const MpegHeader& header)
{
    for (int distance = std::max(shortestFreeFrame, header.sideInfo); distance <= longestFreeFrame;
         ++distance) {
        const auto second = plainHeaderAt(at + distance);
        if (!second || !second->agreesWith(header))
            continue;
        const int unpadded = distance - header.padding;
        const std::int64_t third = at + distance + unpadded + second->padding;
        if (third < end_ && !beginsLike(header, third))
            continue;
        freeFormatBytes_ = unpadded;
        return true;
    }
    return false;
}

bool FrameWalk::mayBeSound(std::int64_t at, const MpegHeader& header)
{
    const auto* frame = bytesAt(at, static_cast<std::size_t>(header.sideInfo));
    return frame && isPossible(frame, header);
}

// Samples that swing evenly look like headers at even distances. No encoder makes the same frame twice, but
// of silence.
bool FrameWalk::repeats(std::int64_t at, std::int64_t before, const MpegHeader& header)
{
    const auto size = static_cast<std::size_t>(header.bytes);
    const auto* frame = bytesAt(before, size);
    if (!frame || soundBits(frame, header) == 0)
        return false;
    const std::vector<std::uint8_t> first(frame, frame + size);
    const auto* second = bytesAt(at, size);
    return second && std::equal(first.begin(), first.end(), second);
}

std::optional<InfoFrame> FrameWalk::infoFrameAt(std::int64_t at, const MpegHeader& header)
{
    const auto size = static_cast<std::size_t>(header.bytes);
    const auto* frame = bytesAt(at, size);
    return frame ? infoFrame(header, {frame, size}) : std::nullopt;
}

bool FrameWalk::isStreamAt(std::int64_t at)
{
    freeFormatBytes_ = 0;
    const auto first = headerAt(at);
    const std::int64_t begin = at;
    int repeated = 0;
    int count = 0;
    for (auto header = first; header && header->agreesWith(*first) && mayBeSound(at, *header);
         header = headerAt(at)) {
        repeated += count > 0 && repeats(at, begin, *header);
        at += header->bytes;
        if (++count == convincing(*first))
            return repeated < count - 1;
    }
    return count >= 4 && at == end_ && repeated < count - 1;
}

bool FrameWalk::isFilledFrom(std::int64_t at)
{
    freeFormatBytes_ = 0;
    const auto first = headerAt(at);
    int sounding = 0;
    for (auto header = first; header && header->agreesWith(*first) && mayBeSound(at, *header);
         header = headerAt(at)) {
        if (at + header->bytes > end_)
            return sounding > 0;
        sounding += !infoFrameAt(at, *header);
        at += header->bytes;
        if (sounding == convincing(*first))
            return false;
    }
    return sounding > 0 && at == end_;
}

std::optional<std::int64_t> FrameWalk::findStream(std::int64_t at, std::int64_t range)
{
    for (const std::int64_t last = std::min(at + range, end_ - 4); at <= last; ++at)
        if (isStreamAt(at))
            return at;
    return std::nullopt;
}

}
