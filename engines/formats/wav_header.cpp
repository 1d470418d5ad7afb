// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_header.h"

#include "platform/byte_order.h"

#include <algorithm>

namespace formats
{

namespace
{

Text number(std::int64_t value, std::size_t bytes)
{
    return toLittleEndian(static_cast<std::uint32_t>(std::min<std::int64_t>(value, UINT32_MAX)), bytes);
}

}

WavHeader wavHeader(int rate, int channels, std::int64_t bytes)
{
    constexpr int formatBytes = 16;
    constexpr int pcm = 1;
    constexpr int sampleBits = 16;
    const int frameBytes = 2 * channels;
    const Text text = "RIFF" + number(bytes + 36, 4) + "WAVEfmt " + number(formatBytes, 4) + number(pcm, 2) +
                      number(channels, 2) + number(rate, 4) + number(std::int64_t{rate} * frameBytes, 4) +
                      number(frameBytes, 2) + number(sampleBits, 2) + "data" + number(bytes, 4);
    WavHeader header{};
    std::ranges::copy(text, header.begin());
    return header;
}

}
