#include "platform/disc/cddb_disc.h"

#include "platform/numbers.h"

#include <algorithm>
#include <cstdio>

namespace
{

constexpr std::int32_t sectorsPerSecond = 75;
constexpr std::uint32_t checksumModulus = 255;

std::uint32_t seconds(std::int32_t sectors)
{
    return static_cast<std::uint32_t>(std::max(sectors, 0) / sectorsPerSecond);
}

std::uint32_t digitSum(std::uint32_t number)
{
    std::uint32_t sum = 0;
    for (; number > 0; number /= 10)
        sum += number % 10;
    return sum;
}

}

Text discId(const CddbDisc& disc)
{
    std::uint32_t sum = 0;
    for (const std::int32_t start : disc.trackStarts)
        sum += digitSum(seconds(start));
    const std::uint32_t first = disc.trackStarts.empty() ? 0 : seconds(disc.trackStarts.front());
    const std::uint32_t length = (seconds(disc.leadOut) - first) & 0xFFFF;
    const auto tracks = static_cast<std::uint32_t>(disc.trackStarts.size()) & 0xFF;
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08x", (sum % checksumModulus) << 24 | length << 8 | tracks);
    return digits;
}

Text queryCommand(const CddbDisc& disc)
{
    Text command = "cddb query " + discId(disc) + ' ' + std::to_string(disc.trackStarts.size());
    for (const std::int32_t start : disc.trackStarts)
        command += ' ' + textOf(start);
    return command + ' ' + std::to_string(seconds(disc.leadOut));
}
