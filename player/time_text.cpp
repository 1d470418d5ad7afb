// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/time_text.h"

#include "platform/numbers.h"

Text wholeMinutes(std::int32_t milliseconds) { return textOf(milliseconds / 60000); }

Text twoDigitSeconds(std::int32_t milliseconds)
{
    const std::int32_t seconds = milliseconds / 1000 % 60;
    return (seconds < 10 ? "0" : "") + textOf(seconds);
}

std::int32_t barValue(const Text& elapsed, const Text& total)
{
    if (toDouble(total) == 0)
        return 0;
    const double share = toDouble(elapsed) / toDouble(total) * 100;
    return share < 99.5 ? roundToInteger32(share) : 0;
}
