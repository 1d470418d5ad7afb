// SPDX-License-Identifier: GPL-3.0-or-later
// The size of type: the windows' own, or as much larger as the desktop asks for and a place has room. For the
// toolkit's own sources and for who knows the desktop.
#pragma once

#include <QFont>
#include <QFontMetrics>

// Everything fits its place in it.
inline constexpr int ownTypePixels = 11;

// Type larger than that breaks the lines of lists and boxes.
inline constexpr int largestTypePixels = 15;

// `font`, or the largest below it for which `fits` holds; never below the windows' own size, which fits.
template <typename Fits>
QFont typeThatFits(const QFont& font, Fits&& fits)
{
    QFont smaller = font;
    while (smaller.pixelSize() > ownTypePixels && smaller.pixelSize() <= largestTypePixels &&
           !fits(QFontMetrics(smaller)))
        smaller.setPixelSize(smaller.pixelSize() - 1);
    return smaller;
}
