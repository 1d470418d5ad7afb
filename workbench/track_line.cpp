// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/track_line.h"

#include "platform/numbers.h"

namespace
{

// Megabytes of CD audio to the minute, in hundredths.
constexpr std::int64_t hundredthsOfMegabytePerMinute = 1009;

// The number that the time text stands for, in hundredths: the arithmetic is decimal throughout.
std::int64_t hundredthsOf(std::int64_t minutes, std::int64_t seconds, bool decimalComma)
{
    const bool oneDigit = seconds < 10;
    if (decimalComma)
        return minutes * 100 + (oneDigit ? seconds * 10 : seconds);
    return (minutes * (oneDigit ? 10 : 100) + seconds) * 100;
}

Text withTwoPlaces(std::int64_t hundredths, const Text& sign)
{
    return twoDigits(hundredths / 100) + sign + twoDigits(hundredths % 100);
}

Text withOnePlace(std::int64_t tenths, const Text& sign)
{
    return twoDigits(tenths / 10) + sign + std::to_string(tenths % 10);
}

}

Text trackLine(const Text& name, std::int32_t minutes, std::int32_t seconds, const Text& decimalSign)
{
    const std::int64_t time = hundredthsOf(minutes, seconds, decimalSign == ",");
    // Ten-thousandths of a megabyte; a final 5 goes upward.
    const std::int64_t size = (time * hundredthsOfMegabytePerMinute + 500) / 1000;
    return name + "    " + withTwoPlaces(time, decimalSign) + "    " + withOnePlace(size, decimalSign) +
           "  MB";
}
