// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/byte_order.h"

#include <algorithm>

namespace
{

std::uint64_t joined(std::string_view bytes, int bits)
{
    std::uint64_t number = 0;
    for (const char byte : bytes)
        number = number << bits | (valueOf(byte) & ((1u << bits) - 1));
    return number;
}

Text parted(std::uint64_t number, std::size_t count, int bits)
{
    Text bytes(count, '\0');
    for (auto at = bytes.rbegin(); at != bytes.rend(); ++at, number >>= bits)
        *at = static_cast<char>(number & ((1u << bits) - 1));
    return bytes;
}

}

std::uint64_t fromBigEndian(std::string_view bytes) { return joined(bytes, 8); }

Text toBigEndian(std::uint64_t number, std::size_t count) { return parted(number, count, 8); }

std::uint64_t fromLittleEndian(std::string_view bytes)
{
    return fromBigEndian(Text(bytes.rbegin(), bytes.rend()));
}

Text toLittleEndian(std::uint64_t number, std::size_t count)
{
    const Text bytes = toBigEndian(number, count);
    return {bytes.rbegin(), bytes.rend()};
}

bool isSyncSafe(std::string_view bytes)
{
    return std::ranges::all_of(bytes, [](char byte) { return valueOf(byte) < 0x80; });
}

std::uint32_t fromSyncSafe(std::string_view bytes) { return static_cast<std::uint32_t>(joined(bytes, 7)); }

Text toSyncSafe(std::uint32_t number) { return parted(number, 4, 7); }
