// SPDX-License-Identifier: GPL-3.0-or-later
// The arithmetic of the drawn bars. Lengths in twips; a bar's travel is its track's width less its thumb's.
#pragma once

#include "platform/twips.h"

#include <cstdint>

inline constexpr std::int32_t sliderStep = 20; // twips

// +20 or -20: which way a press at `press` steps a thumb; 0 within 20 twips of it. All in twips of the form.
std::int32_t stepTowards(Twips press, Twips thumbLeft, Twips thumbWidth);

// 0 to 100 along the travel.
std::int32_t percentAt(Twips x, Twips travel);

// -100 to 100, 0 in the middle.
std::int32_t balanceAt(Twips x, Twips travel);

// Where a thumb stands for a value in per cent, from the left end of its track.
Twips placeOfPercent(std::int32_t value, Twips travel);

struct ChannelLevels {
    std::int16_t left;
    std::int16_t right;
};

// The stronger channel stays at the volume, the other is lowered by the balance; nothing holds it above 0.
ChannelLevels levelsOf(std::int32_t volume, std::int32_t balance);
