// SPDX-License-Identifier: GPL-3.0-or-later
// The header of a WAV file (RIFF WAVE, Microsoft and IBM, 1991) with 16-bit PCM sound.
#pragma once

#include <array>
#include <cstdint>

namespace formats
{

using WavHeader = std::array<std::uint8_t, 44>;

// `bytes` of sound follow the header. A number past 32 bits is written as the largest one, which readers take
// for "up to the end of the file".
WavHeader wavHeader(int rate, int channels, std::int64_t bytes);

}
