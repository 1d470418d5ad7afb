// SPDX-License-Identifier: GPL-3.0-or-later
#include "sliders/bar_rules.h"

#include "platform/numbers.h"

#include <algorithm>

std::int32_t stepTowards(Twips press, Twips thumbLeft, Twips thumbWidth)
{
    if (thumbLeft + thumbWidth + sliderStep <= press)
        return sliderStep;
    return thumbLeft - sliderStep >= press ? -sliderStep : 0;
}

std::int32_t percentAt(Twips x, Twips travel)
{
    return roundToInteger32(static_cast<double>(x) * 100 / static_cast<double>(travel));
}

std::int32_t balanceAt(Twips x, Twips travel)
{
    const double length = travel;
    return roundToInteger32((static_cast<double>(x) - length / 2) * 200 / length);
}

Twips placeOfPercent(std::int32_t value, Twips travel)
{
    return static_cast<Twips>(static_cast<double>(travel) * value / 100);
}

ChannelLevels levelsOf(std::int32_t volume, std::int32_t balance)
{
    return {static_cast<std::int16_t>(volume - std::max(balance, 0)),
            static_cast<std::int16_t>(volume + std::min(balance, 0))};
}
