#include "platform/codec/frame_cut.h"

#include "platform/failure.h"

#include <algorithm>
#include <cstring>

namespace codec
{

namespace
{

// The first of the silenced frames: together their main data fill the reservoir.
std::int64_t firstSilenced(const FrameTable& table, std::int64_t overlap)
{
    const int checksum = 2;
    std::int64_t frame = overlap;
    for (std::int64_t filled = 0; frame > 0 && filled < table.first.maxReservoir(); --frame)
        filled += table.positions[frame] - table.positions[frame - 1] - table.first.sideInfo - checksum;
    return frame / FrameCut::windowTurn * FrameCut::windowTurn;
}

// No sound, but the whole reservoir so far is handed on to the next frame.
void silence(std::uint8_t* frame, const FrameHeader& header, int reservoir)
{
    auto* sideInfo = frame + 4 + (header.bits >> 16 & 1 ? 0 : 2);
    std::fill(sideInfo, frame + header.sideInfo, 0);
    if (header.isLowRate()) {
        sideInfo[0] = static_cast<std::uint8_t>(reservoir);
        return;
    }
    sideInfo[0] = static_cast<std::uint8_t>(reservoir >> 1);
    sideInfo[1] = static_cast<std::uint8_t>(reservoir << 7);
}

}

FrameCut::FrameCut(const InputFile& file, const FrameTable& table, std::int64_t begin, std::int64_t end)
{
    const std::int64_t overlap = std::max<std::int64_t>(0, begin - windowTurn);
    const std::int64_t start = firstSilenced(table, overlap);
    leadIn_ = begin - start;

    const auto& places = table.positions;
    bytes_.resize(static_cast<std::size_t>(places[end] - places[start]));
    if (file.read(bytes_.data(), bytes_.size(), places[start]) != bytes_.size())
        throw failure(57);

    int reservoir = 0;
    for (std::int64_t i = start; i < overlap; ++i) {
        auto* frame = bytes_.data() + (places[i] - places[start]);
        const auto header = parseHeader(frame);
        if (!header)
            throw failure(57);
        silence(frame, *header, reservoir);
        reservoir = std::min(reservoir + header->mainData(), header->maxReservoir());
    }
}

std::int64_t FrameCut::read(void* bytes, std::size_t count)
{
    count = std::min(count, bytes_.size() - at_);
    std::memcpy(bytes, bytes_.data() + at_, count);
    at_ += count;
    return static_cast<std::int64_t>(count);
}

std::int64_t FrameCut::seek(std::int64_t, int)
{
    return -1;
}

}
