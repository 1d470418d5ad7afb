// SPDX-License-Identifier: GPL-3.0-or-later
#include "config/docking.h"

#include <algorithm>
#include <iterator>

namespace
{

Twips right(const Place& place) { return place.left + place.width; }

Twips bottom(const Place& place) { return place.top + place.height; }

// The reach is tested from either side by itself: sums of single numbers need not be symmetric.
bool reaches(Twips edge, Twips other) { return edge <= other + snapDistance && edge >= other - snapDistance; }

bool overlapsAcross(const Place& main, const Place& list)
{
    return right(list) >= main.left && right(main) >= list.left;
}

bool overlapsAlong(const Place& main, const Place& list)
{
    return bottom(list) >= main.top && bottom(main) >= list.top;
}

template <typename Test>
std::optional<DockSide> firstSide(Test&& passes)
{
    const auto* side = std::find_if(std::begin(dockSides), std::end(dockSides), passes);
    return side == std::end(dockSides) ? std::nullopt : std::optional(*side);
}

}

const char* nameOf(DockSide side)
{
    constexpr const char* names[] = {"bottom", "top", "right", "left"};
    return names[static_cast<int>(side)];
}

bool isNear(DockSide side, const Place& main, const Place& list)
{
    switch (side) {
    case DockSide::bottom:
        return reaches(bottom(main), list.top) && overlapsAcross(main, list);
    case DockSide::top:
        return bottom(list) + snapDistance >= main.top && bottom(list) - snapDistance <= main.top &&
               overlapsAcross(main, list);
    case DockSide::right:
        return reaches(right(main), list.left) && overlapsAlong(main, list);
    case DockSide::left:
        return right(list) + snapDistance >= main.left && right(list) - snapDistance <= main.left &&
               overlapsAlong(main, list);
    }
    return false;
}

bool isFlush(DockSide side, const Place& main, const Place& list)
{
    switch (side) {
    case DockSide::bottom:
        return bottom(main) == list.top;
    case DockSide::top:
        return bottom(list) == main.top;
    case DockSide::right:
        return right(main) == list.left;
    case DockSide::left:
        return right(list) == main.left;
    }
    return false;
}

std::optional<DockSide> nearSide(const Place& main, const Place& list)
{
    return firstSide([&](DockSide side) { return isNear(side, main, list); });
}

std::optional<DockSide> snapSide(const Place& main, const Place& list)
{
    return firstSide([&](DockSide side) { return isNear(side, main, list) && !isFlush(side, main, list); });
}

Place docked(DockSide side, const Place& main, const Place& list)
{
    Place place = list;
    place.left = side == DockSide::right ? right(main) : main.left;
    place.top = side == DockSide::bottom ? bottom(main) : main.top;
    if (side == DockSide::left)
        place.left = main.left - list.width;
    if (side == DockSide::top)
        place.top = main.top - list.height;
    return place;
}
