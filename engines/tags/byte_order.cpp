// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/byte_order.h"

#include <algorithm>

namespace tags
{

namespace
{

std::uint32_t value(char byte) { return static_cast<unsigned char>(byte); }

}

std::uint32_t fromBigEndian(std::string_view bytes)
{
    std::uint32_t number = 0;
    for (const char byte : bytes)
        number = (number << 8) | value(byte);
    return number;
}

Text toBigEndian(std::uint32_t number, std::size_t count)
{
    Text bytes(count, '\0');
    for (auto at = bytes.rbegin(); at != bytes.rend(); ++at, number >>= 8)
        *at = static_cast<char>(number & 0xFF);
    return bytes;
}

std::uint32_t fromLittleEndian(std::string_view bytes)
{
    return fromBigEndian(Text(bytes.rbegin(), bytes.rend()));
}

Text toLittleEndian(std::uint32_t number)
{
    const Text bytes = toBigEndian(number, 4);
    return {bytes.rbegin(), bytes.rend()};
}

bool isSyncSafe(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return value(byte) < 0x80; });
}

std::uint32_t fromSyncSafe(std::string_view bytes)
{
    std::uint32_t number = 0;
    for (const char byte : bytes)
        number = (number << 7) | (value(byte) & 0x7F);
    return number;
}

Text toSyncSafe(std::uint32_t number)
{
    Text bytes(4, '\0');
    for (auto at = bytes.rbegin(); at != bytes.rend(); ++at, number >>= 7)
        *at = static_cast<char>(number & 0x7F);
    return bytes;
}

}
