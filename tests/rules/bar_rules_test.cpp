// SPDX-License-Identifier: GPL-3.0-or-later
#include "sliders/bar_rules.h"

#include <cmath>
#include <doctest/doctest.h>
#include <string>

namespace
{

struct Press {
    std::string where;
    Twips at;
    std::int32_t step;
};

struct Drop {
    std::string where;
    Twips x;
    Twips travel;
    std::int32_t value;
};

struct Mix {
    std::int32_t volume;
    std::int32_t balance;
    std::int16_t left;
    std::int16_t right;
};

constexpr Twips smallTravel = 1215;
constexpr Twips longTravel = 4020;

}

TEST_CASE("A press steps the thumb towards itself, unless it is within 20 twips of it")
{
    const Press presses[] = {
        {"far on the left", 360, -20},
        {"exactly 20 twips left of the thumb", 940, -20},
        {"just nearer than that", std::nextafter(940.0F, 2000.0F), 0},
        {"on the thumb", 1000, 0},
        {"a twip short of 20 on the right", 1084, 0},
        {"just nearer than 20 on the right", std::nextafter(1085.0F, 0.0F), 0},
        {"exactly 20 twips right of the thumb", 1085, 20},
        {"far on the right", 1680, 20},
    };
    for (const auto& c : presses) {
        CAPTURE(c.where);
        CHECK(stepTowards(c.at, 960, 105) == c.step);
    }
}

TEST_CASE("The place of a drop becomes a percentage of the travel, halves to the even neighbour")
{
    const Drop drops[] = {
        {"the left end", 0, smallTravel, 0},
        {"the middle", smallTravel / 2, smallTravel, 50},
        {"the right end", smallTravel, smallTravel, 100},
        {"the right end of a long track", longTravel, longTravel, 100},
        {"one per cent of a long track", 40.2F, longTravel, 1},
        {"2.5 per cent", 25, 1000, 2},
        {"3.5 per cent", 35, 1000, 4},
        {"just above 2.5 per cent", 25.01F, 1000, 3},
        {"99.5 per cent", 995, 1000, 100},
        {"98.5 per cent", 985, 1000, 98},
        {"a pixel from the left end", 15, smallTravel, 1},
    };
    for (const auto& c : drops) {
        CAPTURE(c.where);
        CHECK(percentAt(c.x, c.travel) == c.value);
    }
}

TEST_CASE("The place of a drop becomes a balance that is 0 in the middle")
{
    const Drop drops[] = {
        {"the left end", 0, smallTravel, -100},
        {"the middle", smallTravel / 2, smallTravel, 0},
        {"the right end", smallTravel, smallTravel, 100},
        {"half a step right of the middle", 502.5F, 1000, 0},
        {"a step and a half right of the middle", 507.5F, 1000, 2},
        {"half a step left of the middle", 497.5F, 1000, 0},
        {"a step and a half left of the middle", 492.5F, 1000, -2},
        {"just past a step and a half", 507.6F, 1000, 2},
        {"just short of a step and a half", 507.4F, 1000, 1},
    };
    for (const auto& c : drops) {
        CAPTURE(c.where);
        CHECK(balanceAt(c.x, c.travel) == c.value);
    }
}

TEST_CASE("A thumb stands at its share of the travel, not rounded to a pixel")
{
    CHECK(placeOfPercent(0, longTravel) == 0);
    CHECK(placeOfPercent(1, longTravel) == 40.2F);
    CHECK(placeOfPercent(33, longTravel) == 1326.6F);
    CHECK(placeOfPercent(99, longTravel) == 3979.8F);
    CHECK(placeOfPercent(100, longTravel) == longTravel);
    CHECK(placeOfPercent(-100, smallTravel / 2) == -smallTravel / 2);
}

TEST_CASE("The balance lowers one channel and never raises the other")
{
    const Mix mixes[] = {
        {50, 0, 50, 50},   {80, -30, 80, 50},  {80, 30, 50, 80},    {20, -50, 20, -30},
        {20, 50, -30, 20}, {100, 100, 0, 100}, {100, -100, 100, 0}, {0, 0, 0, 0},
        {0, -1, 0, -1},    {0, 1, -1, 0},      {0, 100, -100, 0},   {100, 1, 99, 100},
    };
    for (const auto& c : mixes) {
        CAPTURE(c.volume);
        CAPTURE(c.balance);
        const ChannelLevels levels = levelsOf(c.volume, c.balance);
        CHECK(levels.left == c.left);
        CHECK(levels.right == c.right);
    }
}
