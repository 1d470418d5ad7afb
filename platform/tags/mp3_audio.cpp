#include "platform/tags/mp3_audio.h"

#include "platform/tags/byte_order.h"

#include <algorithm>
#include <string_view>

namespace
{

constexpr std::size_t quickLook = 8 * 1024;
constexpr std::size_t searched = 64 * 1024;
constexpr std::size_t longestFrame = 12 * 1024; // free format at 640 kbit/s and 8 kHz
constexpr int enough = 4;
constexpr int mostFreeFormats = 16; // each costs a search for its second frame

// clang-format off
constexpr int bitRates1[] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr int bitRates2[] = {0,  8, 16, 24, 32, 40, 48, 56,  64,  80,  96, 112, 128, 144, 160};
constexpr int sampleRates[] = {44100, 48000, 32000}; // of MPEG 1; halved and halved again for 2 and 2.5
// clang-format on

// Sync, version, layer and sample rate, which all frames of a file share.
constexpr std::uint32_t shared = 0xFFFE0C00;

std::uint32_t headerAt(std::string_view bytes, std::size_t at)
{
    return at + 4 <= bytes.size() ? fromBigEndian(bytes.substr(at, 4)) : 0;
}

bool isHeader(std::uint32_t header)
{
    const bool synchronised = header >> 21 == 0x7FF;
    const bool isLayer3 = (header >> 17 & 3) == 1;
    return synchronised && isLayer3 && (header >> 19 & 3) != 1 && (header >> 12 & 15) != 15 &&
           (header >> 10 & 3) != 3;
}

std::size_t padding(std::uint32_t header) { return header >> 9 & 1; }

// 0 for free format, whose length only the next frame tells.
std::size_t frameSize(std::uint32_t header)
{
    const unsigned version = header >> 19 & 3; // 3: MPEG 1, 2: MPEG 2, 0: MPEG 2.5
    const std::size_t rate = header >> 12 & 15;
    const int sampleRate = sampleRates[header >> 10 & 3] >> (version == 3 ? 0 : version == 2 ? 1 : 2);
    if (rate == 0)
        return 0;
    const int bytes = version == 3 ? 144'000 * bitRates1[rate] : 72'000 * bitRates2[rate];
    return static_cast<std::size_t>(bytes / sampleRate) + padding(header);
}

std::size_t freeFormatSize(std::string_view bytes, std::size_t at)
{
    const std::uint32_t header = headerAt(bytes, at);
    const std::size_t end = std::min(bytes.size(), at + longestFrame);
    for (std::size_t next = at + 24; next + 4 <= end; ++next)
        if (isHeader(headerAt(bytes, next)) && ((headerAt(bytes, next) ^ header) & (shared | 0xF000)) == 0)
            return next - at - padding(header);
    return 0;
}

// `last`: the bytes are all that there are. Frames that fill them are enough, however few.
bool framesBeginAt(std::string_view bytes, std::size_t at, std::size_t freeSize, bool last)
{
    const std::uint32_t first = headerAt(bytes, at);
    for (int frames = 0; frames < enough; ++frames) {
        const std::uint32_t header = headerAt(bytes, at);
        if (last && at == bytes.size() && frames > 0)
            return true;
        if (!isHeader(header) || ((header ^ first) & shared) != 0)
            return false;
        at += freeSize > 0 ? freeSize + padding(header) : frameSize(header);
        if (last && at > bytes.size())
            return frames > 0;
    }
    return true;
}

bool isAnotherKind(std::string_view bytes)
{
    const std::string_view begin = bytes.substr(0, 4);
    return begin == "RIFF" || begin == "OggS" || begin == "fLaC" ||
           bytes.substr(std::min<std::size_t>(4, bytes.size()), 4) == "ftyp";
}

bool framesBeginIn(std::string_view bytes, std::size_t starts, bool last)
{
    int freeFormats = 0;
    for (std::size_t at = 0; at < std::min(starts, bytes.size()); ++at) {
        const std::uint32_t header = headerAt(bytes, at);
        if (!isHeader(header))
            continue;
        const bool isFree = frameSize(header) == 0;
        if (isFree && ++freeFormats > mostFreeFormats)
            continue;
        const std::size_t freeSize = isFree ? freeFormatSize(bytes, at) : 0;
        if ((!isFree || freeSize > 0) && framesBeginAt(bytes, at, freeSize, last))
            return true;
    }
    return false;
}

}

bool holdsMp3(ByteSource& file, std::uint64_t from, std::uint64_t to)
{
    if (from >= to)
        return false;
    const std::uint64_t room = to - from;
    const Text begin = file.read(from, std::min<std::uint64_t>(room, quickLook));
    if (isAnotherKind(begin))
        return false;
    if (framesBeginIn(begin, 1, begin.size() == room))
        return true;
    const Text more = file.read(from, std::min<std::uint64_t>(room, searched + enough * longestFrame));
    return framesBeginIn(more, searched, more.size() == room);
}
