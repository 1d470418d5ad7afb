// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mpeg_header.h"

#include "platform/byte_order.h"

namespace formats
{

namespace
{

// clang-format off
constexpr int kilobits[2][15] = {
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0,  8, 16, 24, 32, 40, 48, 56,  64,  80,  96, 112, 128, 144, 160},
};
constexpr int rates[] = {44100, 48000, 32000};
// clang-format on

enum Version : unsigned { mpeg25 = 0, reserved = 1, mpeg2 = 2, mpeg1 = 3 };

constexpr unsigned layerThree = 1;
constexpr unsigned mono = 3;

int rateOf(unsigned version, unsigned index)
{
    if (version == mpeg1)
        return rates[index];
    return version == mpeg2 ? rates[index] / 2 : rates[index] / 4;
}

int sideInfoOf(const MpegHeader& header)
{
    const int checksum = header.isProtected() ? 2 : 0;
    if (header.isLowRate())
        return 4 + checksum + (header.channels == 1 ? 9 : 17);
    return 4 + checksum + (header.channels == 1 ? 17 : 32);
}

}

std::optional<MpegHeader> mpegHeader(const std::uint8_t* fourBytes)
{
    MpegHeader header;
    header.bits = static_cast<std::uint32_t>(fromBigEndian(bytesFrom(fourBytes, 4)));
    const unsigned version = header.bits >> 19 & 3;
    const unsigned layer = header.bits >> 17 & 3;
    const unsigned bitrate = header.bits >> 12 & 15;
    const unsigned rate = header.bits >> 10 & 3;
    if (header.bits >> 21 != 0x7FF || version == reserved || layer != layerThree || bitrate == 15 ||
        rate == 3)
        return std::nullopt;

    const bool low = version != mpeg1;
    header.rate = rateOf(version, rate);
    header.channels = (header.bits >> 6 & 3) == mono ? 1 : 2;
    header.samples = low ? 576 : 1152;
    header.bitsPerSecond = kilobits[low][bitrate] * 1000;
    header.padding = static_cast<int>(header.bits >> 9 & 1);
    header.sideInfo = sideInfoOf(header);
    if (header.isFreeFormat())
        return header;
    header.bytes = header.samples / 8 * header.bitsPerSecond / header.rate + header.padding;
    return header; // the shortest, of 24 bytes, has room for its side information
}

}
