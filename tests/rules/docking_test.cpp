// SPDX-License-Identifier: GPL-3.0-or-later
#include "config/docking.h"

#include <doctest/doctest.h>
#include <string>

namespace
{

constexpr Place mainWindow{3000, 6000, 6435, 2985}; // right edge 9435, bottom edge 8985

constexpr Place listAt(Twips left, Twips top) { return {left, top, 6435, 2985}; }

// The list on that side, its facing edge so far away from the main window's; negative: over it.
Place listBeside(DockSide side, Twips gap)
{
    switch (side) {
    case DockSide::bottom:
        return listAt(3500, 8985 + gap);
    case DockSide::top:
        return listAt(3500, 6000 - 2985 - gap);
    case DockSide::right:
        return listAt(9435 + gap, 6500);
    case DockSide::left:
        return listAt(3000 - 6435 - gap, 6500);
    }
    return {};
}

struct Gap {
    std::string where;
    Twips gap;
    bool isNear;
    bool snaps;
};

struct Corner {
    std::string where;
    DockSide side;
    Twips left;
    Twips top;
    bool isNear;
};

struct Found {
    std::string where;
    Place list;
    std::optional<DockSide> near;
    std::optional<DockSide> snap;
};

}

TEST_CASE("A side is near within 200 twips either way, and snaps unless the edges touch")
{
    const Gap gaps[] = {
        {"201 twips away", 201, false, false},
        {"just over 200 twips away", 200.001F, false, false},
        {"exactly 200 twips away", 200, true, true},
        {"a twip away", 1, true, true},
        {"a pixel away", 15, true, true},
        {"flush", 0, true, false},
        {"a twip over", -1, true, true},
        {"exactly 200 twips over", -200, true, true},
        {"201 twips over", -201, false, false},
    };
    for (const auto side : dockSides)
        for (const auto& c : gaps) {
            CAPTURE(std::string(nameOf(side)));
            CAPTURE(c.where);
            const Place list = listBeside(side, c.gap);
            CHECK(isNear(side, mainWindow, list) == c.isNear);
            CHECK((nearSide(mainWindow, list) == side) == c.isNear);
            CHECK((snapSide(mainWindow, list) == side) == c.snaps);
            CHECK(isFlush(side, mainWindow, list) == (c.gap == 0));
        }
}

TEST_CASE("The windows must overlap along the side; edges that touch do")
{
    const Corner corners[] = {
        {"below, its right edge at the left edge", DockSide::bottom, 3000 - 6435, 8985, true},
        {"below, a twip further left", DockSide::bottom, 3000 - 6436, 8985, false},
        {"below, its left edge at the right edge", DockSide::bottom, 9435, 8985, true},
        {"below, a twip further right", DockSide::bottom, 9436, 8985, false},
        {"above, its right edge at the left edge", DockSide::top, 3000 - 6435, 3015, true},
        {"above, a twip further left", DockSide::top, 3000 - 6436, 3015, false},
        {"above, its left edge at the right edge", DockSide::top, 9435, 3015, true},
        {"above, a twip further right", DockSide::top, 9436, 3015, false},
        {"on the right, its bottom edge at the top edge", DockSide::right, 9435, 3015, true},
        {"on the right, a twip higher", DockSide::right, 9435, 3014, false},
        {"on the right, its top edge at the bottom edge", DockSide::right, 9435, 8985, true},
        {"on the right, a twip lower", DockSide::right, 9435, 8986, false},
        {"on the left, its bottom edge at the top edge", DockSide::left, 3000 - 6435, 3015, true},
        {"on the left, a twip higher", DockSide::left, 3000 - 6435, 3014, false},
        {"on the left, its top edge at the bottom edge", DockSide::left, 3000 - 6435, 8985, true},
        {"on the left, a twip lower", DockSide::left, 3000 - 6435, 8986, false},
    };
    for (const auto& c : corners) {
        CAPTURE(c.where);
        CHECK(isNear(c.side, mainWindow, listAt(c.left, c.top)) == c.isNear);
    }
}

TEST_CASE("The sides are tried in the order bottom, top, right, left")
{
    using enum DockSide;
    const Found places[] = {
        {"over the bottom right corner", listAt(9400, 8900), bottom, bottom},
        {"over the bottom left corner", listAt(3000 - 6435 + 50, 8900), bottom, bottom},
        {"over the top right corner", listAt(9400, 3100), top, top},
        {"over the top left corner", listAt(3000 - 6435 + 50, 3000), top, top},
        {"flush below and near the right side: the flush side gives way", listAt(9335, 8985), bottom, right},
        {"flush above and near the left side", listAt(3000 - 6435 + 100, 3015), top, left},
        {"flush on both edges of a corner", listAt(9435, 8985), bottom, std::nullopt},
        {"150 twips right, wholly above", listAt(9435 + 150, 3014), std::nullopt, std::nullopt},
        {"flush below, 1000 twips to the right", listAt(4000, 8985), bottom, std::nullopt},
        {"right over the main window", listAt(3000, 6000), std::nullopt, std::nullopt},
        {"far away", listAt(20000, 20000), std::nullopt, std::nullopt},
    };
    for (const auto& c : places) {
        CAPTURE(c.where);
        CHECK(nearSide(mainWindow, c.list) == c.near);
        CHECK(snapSide(mainWindow, c.list) == c.snap);
    }

    // So small that opposite sides are near at once.
    const Place small{1000, 1000, 100, 100};
    CHECK(nearSide(small, {1010, 1010, 100, 100}) == bottom);
    CHECK(snapSide(small, {1010, 1100, 100, 100}) == top);
    const Place narrow{1000, 1000, 100, 1000};
    CHECK(nearSide(narrow, {1010, 1500, 100, 100}) == right);
    CHECK(snapSide(narrow, {1100, 1500, 100, 100}) == left);
}

TEST_CASE("A docked window shares a corner with the main window, however it lay before")
{
    const Place before = listAt(123, 456);
    struct Row {
        DockSide side;
        Twips left;
        Twips top;
    };
    const Row rows[] = {
        {DockSide::bottom, 3000, 8985},
        {DockSide::top, 3000, 3015},
        {DockSide::right, 9435, 6000},
        {DockSide::left, 3000 - 6435, 6000},
    };
    for (const auto& c : rows) {
        CAPTURE(std::string(nameOf(c.side)));
        const Place place = docked(c.side, mainWindow, before);
        CHECK(place.left == c.left);
        CHECK(place.top == c.top);
        CHECK(place.width == before.width);
        CHECK(place.height == before.height);
        CHECK(isFlush(c.side, mainWindow, place));
        CHECK(isNear(c.side, mainWindow, place));
    }
}

TEST_CASE("A docked window that is wider or taller keeps its size and still shares the corner")
{
    const Place wide{0, 0, 9000, 5000};
    CHECK(docked(DockSide::top, mainWindow, wide).top == 6000 - 5000);
    CHECK(docked(DockSide::left, mainWindow, wide).left == 3000 - 9000);
    CHECK(docked(DockSide::bottom, mainWindow, wide).left == 3000);
    CHECK(docked(DockSide::right, mainWindow, wide).top == 6000);
}

TEST_CASE("The store knows the sides by these names")
{
    CHECK(std::string(nameOf(DockSide::bottom)) == "bottom");
    CHECK(std::string(nameOf(DockSide::top)) == "top");
    CHECK(std::string(nameOf(DockSide::right)) == "right");
    CHECK(std::string(nameOf(DockSide::left)) == "left");
}
