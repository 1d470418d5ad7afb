// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/reach.h"

#include <algorithm>

namespace
{

int gap(int low, int high, int otherLow, int otherHigh)
{
    return std::max({0, otherLow - high, low - otherHigh});
}

qint64 distance(const QRect& a, const QRect& b)
{
    const qint64 across = gap(a.left(), a.right(), b.left(), b.right());
    const qint64 along = gap(a.top(), a.bottom(), b.top(), b.bottom());
    return across * across + along * along;
}

// A window that is larger than the screen shows its upper left corner: its title bar is there.
int broughtInto(int place, int size, int low, int high)
{
    return std::max(low, std::min(place, high + 1 - size));
}

}

QPoint withinReach(const QRect& window, const QList<QRect>& screens)
{
    const auto touches = [&](const QRect& screen) { return screen.intersects(window); };
    if (screens.isEmpty() || std::any_of(screens.begin(), screens.end(), touches))
        return window.topLeft();
    const QRect nearest =
        *std::min_element(screens.begin(), screens.end(), [&](const QRect& a, const QRect& b) {
            return distance(window, a) < distance(window, b);
        });
    return {broughtInto(window.x(), window.width(), nearest.left(), nearest.right()),
            broughtInto(window.y(), window.height(), nearest.top(), nearest.bottom())};
}
