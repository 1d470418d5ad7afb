// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/frame_scan.h"

#include "engines/formats/frame_walk.h"
#include "engines/formats/mp3_probe.h"
#include "engines/formats/side_info.h"

#include <algorithm>

namespace formats
{

namespace
{

// Frames that the decoder warms up on before the first one that sounds. Where more lie before it, it skips
// them.
constexpr int warmUpFrames = 4;

std::optional<Trim> trimOf(const std::optional<InfoFrame>& info, std::int64_t frames, int samples)
{
    const std::int64_t all = frames * samples;
    if (!info || !info->frames)
        return Trim{0, all};
    if (*info->frames != frames)
        return std::nullopt;
    const Trim trim{info->skipAtStart(), all - info->skipAtEnd()};
    if (trim.begin >= trim.end || trim.begin / samples > warmUpFrames)
        return std::nullopt;
    return trim;
}

// What the frames so far leave for the next.
class Reservoir
{
public:
    // False for a frame that reaches back past what the decoder keeps, which is what the last frame took from
    // the reservoir and brought itself: it finds there what frames long before happened to leave.
    bool take(const MpegHeader& header, int wanted)
    {
        const int taken = std::min(wanted, filled_);
        const bool isKept = taken <= kept_;
        kept_ = taken + header.mainData();
        filled_ = std::min(filled_ + header.mainData(), header.maxReservoir());
        return isKept;
    }

private:
    int filled_ = 0;
    int kept_ = 0;
};

bool mayFollow(const std::optional<MpegHeader>& header, const MpegHeader& first)
{
    return header && header->agreesWith(first) && header->channels == first.channels;
}

// Adds each frame's place to `table`. False when the frames do not fill the sound, or one depends on others
// than those shortly before it.
bool collect(FrameWalk& walk, std::int64_t position, std::int64_t end, FrameTable& table)
{
    Reservoir reservoir;
    for (; position < end; position = table.positions.back()) {
        const auto header = walk.headerAt(position);
        if (!mayFollow(header, table.first) || position + header->bytes > end)
            return false;
        const auto* frame = walk.bytesAt(position, static_cast<std::size_t>(header->sideInfo));
        if (!frame || !reservoir.take(*header, mainDataBegin(frame, *header)))
            return false;
        table.positions.push_back(position + header->bytes);
    }
    return true;
}

}

std::optional<FrameTable> scanFrames(const std::shared_ptr<const files::InputFile>& file)
{
    const auto place = findMp3(file);
    if (!place || place->begin != place->start)
        return std::nullopt;
    FrameWalk walk(file, place->end);
    const auto first = walk.headerAt(place->begin);
    if (!first || first->isFreeFormat())
        return std::nullopt;

    FrameTable table;
    table.first = *first;
    const auto info = walk.infoFrameAt(place->begin, *first);
    table.positions = {place->begin + (info ? first->bytes : 0)};
    if (!collect(walk, table.positions.front(), place->end, table))
        return std::nullopt;
    const auto trim = trimOf(info, table.frames(), first->samples);
    if (!trim)
        return std::nullopt;
    table.trim = *trim;
    return table;
}

}
