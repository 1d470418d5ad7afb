#include "engines/formats/mpeg_header.h"

namespace
{

constexpr int kilobits[2][15] = {
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
};

constexpr int rates[] = {44100, 48000, 32000};

enum Version { mpeg25 = 0, reserved = 1, mpeg2 = 2, mpeg1 = 3 };

constexpr int layerThree = 1;
constexpr int mono = 3;

int rateOf(int version, int index)
{
    if (version == mpeg1)
        return rates[index];
    return version == mpeg2 ? rates[index] / 2 : rates[index] / 4;
}

}

int MpegHeader::sideInfoBytes() const
{
    if (lowSamplingRate)
        return channels == 1 ? 9 : 17;
    return channels == 1 ? 17 : 32;
}

std::optional<MpegHeader> mpegHeader(const unsigned char* fourBytes)
{
    const int version = fourBytes[1] >> 3 & 3;
    const int layer = fourBytes[1] >> 1 & 3;
    const int bitrateIndex = fourBytes[2] >> 4;
    const int rateIndex = fourBytes[2] >> 2 & 3;
    const bool synchronised = fourBytes[0] == 0xff && fourBytes[1] >> 5 == 7;
    if (!synchronised || version == reserved || layer != layerThree || bitrateIndex == 15 || rateIndex == 3)
        return std::nullopt;

    MpegHeader header;
    header.lowSamplingRate = version != mpeg1;
    header.rate = rateOf(version, rateIndex);
    header.channels = fourBytes[3] >> 6 == mono ? 1 : 2;
    header.samples = header.lowSamplingRate ? 576 : 1152;
    header.bitsPerSecond = kilobits[header.lowSamplingRate][bitrateIndex] * 1000;
    header.padding = fourBytes[2] >> 1 & 1;
    if (!header.isFreeFormat())
        header.bytes = header.samples / 8 * header.bitsPerSecond / header.rate + header.padding;
    return header;
}
