// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/side_info.h"

#include <algorithm>

namespace formats
{

namespace
{

// In bits. Each granule has one part for each channel.
struct Layout {
    int mainDataBegin; // its length
    int firstPart;     // where the parts begin, in the side information
    int granules;
    int partBits;
    int windowSwitching; // where it stands, in a part
};

constexpr int lengthBits = 12;
constexpr int pairsBits = 9;
constexpr unsigned mostPairs = 288; // of values, in a granule
constexpr int gainAt = lengthBits + pairsBits;
constexpr int gainBits = 8;

Layout layoutOf(const MpegHeader& header)
{
    const bool isStereo = header.channels == 2;
    if (header.isLowRate())
        return {8, 8 + (isStereo ? 2 : 1), 1, 63, gainAt + gainBits + 9};
    return {9, 9 + (isStereo ? 3 + 8 : 5 + 4), 2, 59, gainAt + gainBits + 4};
}

int startOf(const MpegHeader& header) { return header.isProtected() ? 6 : 4; }

unsigned bitsAt(const std::uint8_t* bytes, int at, int count)
{
    unsigned value = 0;
    for (int i = at; i < at + count; ++i)
        value = value << 1 | (bytes[i / 8] >> (7 - i % 8) & 1);
    return value;
}

void setBits(std::uint8_t* bytes, int at, int count, bool on)
{
    for (int i = at; i < at + count; ++i) {
        const auto mask = static_cast<std::uint8_t>(0x80 >> i % 8);
        bytes[i / 8] = static_cast<std::uint8_t>(on ? bytes[i / 8] | mask : bytes[i / 8] & ~mask);
    }
}

}

int mainDataBegin(const std::uint8_t* frame, const MpegHeader& header)
{
    return static_cast<int>(bitsAt(frame + startOf(header), 0, layoutOf(header).mainDataBegin));
}

int soundBits(const std::uint8_t* frame, const MpegHeader& header)
{
    const auto layout = layoutOf(header);
    int bits = 0;
    for (int i = 0; i < layout.granules * header.channels; ++i)
        bits += static_cast<int>(
            bitsAt(frame + startOf(header), layout.firstPart + i * layout.partBits, lengthBits));
    return bits;
}

void silence(std::uint8_t* frame, const MpegHeader& header, int reservoir)
{
    auto* info = frame + startOf(header);
    std::fill(info, frame + header.sideInfo, 0);
    if (header.isLowRate()) {
        info[0] = static_cast<std::uint8_t>(reservoir);
        return;
    }
    info[0] = static_cast<std::uint8_t>(reservoir >> 1);
    info[1] = static_cast<std::uint8_t>(reservoir << 7);
}

void keepLastSound(std::uint8_t* frame, const MpegHeader& header)
{
    const auto layout = layoutOf(header);
    auto* info = frame + startOf(header);
    const auto part = [&](int granule, int channel) {
        return layout.firstPart + (granule * header.channels + channel) * layout.partBits;
    };
    const auto hasValues = [&](int granule) {
        return bitsAt(info, part(granule, 0), lengthBits) != 0 ||
               bitsAt(info, part(granule, header.channels - 1), lengthBits) != 0;
    };
    int last = layout.granules - 1;
    while (last > 0 && !hasValues(last))
        --last;
    for (int granule = 0; granule < layout.granules; ++granule)
        for (int channel = 0; channel < header.channels; ++channel)
            setBits(info, part(granule, channel) + gainAt, gainBits, granule == last);
}

bool isPossible(const std::uint8_t* frame, const MpegHeader& header)
{
    const auto layout = layoutOf(header);
    const auto* info = frame + startOf(header);
    for (int i = 0; i < layout.granules * header.channels; ++i) {
        const int at = layout.firstPart + i * layout.partBits;
        const bool hasTooMany = bitsAt(info, at + lengthBits, pairsBits) > mostPairs;
        const bool hasWrongWindow = bitsAt(info, at + layout.windowSwitching, 3) == 0b100;
        if (hasTooMany || hasWrongWindow)
            return false;
    }
    const int room = mainDataBegin(frame, header) + header.mainData();
    return header.isFreeFormat() || soundBits(frame, header) <= 8 * room;
}

bool isEmpty(const std::uint8_t* frame, const MpegHeader& header)
{
    const auto layout = layoutOf(header);
    const auto* info = frame + startOf(header);
    for (int i = 0; i < layout.granules * header.channels; ++i) {
        const int at = layout.firstPart + i * layout.partBits;
        const bool hasValues = bitsAt(info, at, lengthBits) != 0;
        const bool hasWrongWindow = bitsAt(info, at + layout.windowSwitching, 3) == 0b100;
        if (hasValues || hasWrongWindow)
            return false;
    }
    return true;
}

}
