// SPDX-License-Identifier: GPL-3.0-or-later
// The unit of all window geometry: 1440 to the inch, 15 to the logical pixel, single precision.
#pragma once

#include <cmath>

using Twips = float;

inline constexpr Twips twipsPerPixel = 15;

constexpr Twips operator""_tw(unsigned long long twips) { return static_cast<Twips>(twips); }

// The nearest whole pixel.
inline int pixelsOf(Twips twips) { return static_cast<int>(std::lround(twips / twipsPerPixel)); }

inline Twips twipsOf(int pixels) { return static_cast<Twips>(pixels) * twipsPerPixel; }

struct Place {
    Twips left = 0;
    Twips top = 0;
    Twips width = 0;
    Twips height = 0;
};

struct Extent {
    Twips width = 0;
    Twips height = 0;
};
