// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/frame_join.h"

#include "engines/formats/side_info.h"
#include "platform/failure.h"

#include <algorithm>
#include <iterator>

namespace codec
{

namespace
{

struct JoinedFrame {
    std::ptrdiff_t at;
    formats::MpegHeader header;
    int reservoir; // bytes that its main data have before it

    std::ptrdiff_t end() const { return at + header.bytes; }
};

Failure gaps() { return {Trouble::deviceInputOutput, "The encoder left gaps."}; }

std::vector<JoinedFrame> framesIn(std::span<const std::uint8_t> bytes)
{
    std::vector<JoinedFrame> frames;
    for (std::ptrdiff_t at = 0; at < std::ssize(bytes); at = frames.back().end()) {
        const auto left = std::ssize(bytes) - at;
        const auto header = left < 4 ? std::nullopt : formats::mpegHeader(bytes.data() + at);
        if (!header || header->mainData() <= 0 || header->bytes > left)
            throw gaps();
        frames.push_back({at, *header, formats::mainDataBegin(bytes.data() + at, *header)});
    }
    return frames;
}

// The frame that needs of `before` what is left there, or the least less; the last of equals, for the
// encoders come to agree.
std::size_t joinOf(const std::vector<JoinedFrame>& before, const std::vector<JoinedFrame>& after)
{
    std::size_t join = 0;
    int least = INT32_MAX;
    for (std::size_t i = 0; i < before.size(); ++i) {
        const int unused = before[i].reservoir - after[i].reservoir;
        if (unused < 0 || unused > least)
            continue;
        least = unused;
        join = i;
    }
    return join;
}

}

Mp3Bytes joinFrames(std::span<const std::uint8_t> before, std::span<const std::uint8_t> after)
{
    const auto frames = framesIn(after);
    const auto framesBefore = framesIn(before);
    const auto isInPlace = [](const JoinedFrame& one, const JoinedFrame& other) {
        return one.end() == other.end();
    };
    if (frames.empty() || frames[0].reservoir > 0 || !std::ranges::equal(frames, framesBefore, isInPlace))
        throw gaps();

    const auto join = joinOf(framesBefore, frames);
    Mp3Bytes joined(before.begin(), before.begin() + frames[join].at);
    joined.insert(joined.end(), after.begin() + frames[join].at, after.end());
    int needed = frames[join].reservoir;
    for (auto i = join; needed > 0; --i) {
        if (i == 0)
            throw gaps();
        const auto& frame = frames[i - 1];
        const int count = std::min(needed, frame.header.mainData());
        std::copy_n(after.begin() + frame.end() - count, count, joined.begin() + frame.end() - count);
        needed -= count;
    }
    return joined;
}

}
