#include "engines/formats/frame_walk.h"

#include <algorithm>
#include <array>

namespace
{

// Free format ends at 640 kbit/s; nothing is shorter than its own side information.
constexpr int shortestFreeFrame = 24;
constexpr int longestFreeFrame = 3456;

constexpr int convincing = 4;

}

std::optional<MpegHeader> FrameWalk::plainHeaderAt(std::int64_t at)
{
    std::array<unsigned char, 4> bytes{};
    if (at + 4 > end_ || window_.read(bytes.data(), bytes.size(), at) != 4)
        return std::nullopt;
    return mpegHeader(bytes.data());
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
    for (int distance = shortestFreeFrame; distance <= longestFreeFrame; ++distance) {
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

bool FrameWalk::isStreamAt(std::int64_t at)
{
    freeFormatBytes_ = 0;
    const auto first = headerAt(at);
    int count = 0;
    for (auto header = first; header && header->agreesWith(*first); header = headerAt(at)) {
        at += header->bytes;
        if (++count == convincing)
            return true;
    }
    // A very short file ends before. A lone frame may be chance, and cannot be decoded.
    return count >= 2 && at + 4 > end_;
}

std::optional<std::int64_t> FrameWalk::findStream(std::int64_t at, std::int64_t range)
{
    for (const std::int64_t last = std::min(at + range, end_ - 4); at <= last; ++at)
        if (isStreamAt(at))
            return at;
    return std::nullopt;
}
