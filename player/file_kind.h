// SPDX-License-Identifier: GPL-3.0-or-later
// The kind of the current file: the index that the file dialog's filter has for it.
#pragma once

#include <cstdint>

namespace kind
{
// Transport asks whether the kind is `mp3`, the clock, seeking and volume whether it is `wav`. Before the
// first file it is neither, and the two questions must not be answered by one another.
inline constexpr std::int16_t wav = 1;
inline constexpr std::int16_t mp3 = 2;
}
