// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the first frame of a song: what it notes of the song's length can be reckoned with. The bytes
// of the header are made ones of Layer III.
#include "engines/formats/info_frame.h"
#include "tests/fuzz/input.h"

#include <vector>

namespace
{

// What a header and twelve bits hold.
constexpr int mostSamples = 4095;

void check(const formats::InfoFrame& info)
{
    require(info.frames != 0u);
    require(info.delay >= 0 && info.delay <= mostSamples && info.padding >= 0 && info.padding <= mostSamples);
    require(info.skipAtStart() >= info.decoderDelay && info.skipAtEnd() >= 0);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    std::vector<std::uint8_t> frame(bytes, bytes + size);
    if (size < 4)
        return 0;
    frame[0] = 0xFF;
    frame[1] = static_cast<std::uint8_t>((frame[1] & 0x19) | 0xE2);
    if (const auto header = formats::mpegHeader(frame.data()))
        if (const auto info = formats::infoFrame(*header, frame))
            check(*info);
    return 0;
}
