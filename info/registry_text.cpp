// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/registry_text.h"

#include "platform/failure.h"

#include <charconv>

namespace
{

constexpr std::uint32_t string = 1;
constexpr std::uint32_t doubleWord = 4;

Text hexadecimal(unsigned char byte)
{
    char digits[2];
    const auto end = std::to_chars(digits, digits + 2, byte, 16);
    return {digits, end.ptr};
}

Text decimalOfHexadecimal(const Text& digits)
{
    std::uint64_t number = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    if (end.ec == std::errc::result_out_of_range)
        throw Failure(Trouble::overflow);
    if (digits.empty() || end.ptr != digits.data() + digits.size())
        throw Failure(Trouble::typeMismatch);
    return std::to_string(number);
}

}

std::optional<Text> registryText(std::uint32_t type, const Text& buffer, std::uint32_t size,
                                 const Text& before)
{
    const bool closed = size > 0 && size <= buffer.size() && buffer[size - 1] == '\0';
    const Text kept = buffer.substr(0, closed ? size - 1 : size);
    if (type == string)
        return kept;
    if (type != doubleWord)
        return std::nullopt;
    // The lowest byte comes first; each gives its digits without a leading zero.
    Text digits = before;
    for (auto byte = kept.rbegin(); byte != kept.rend(); ++byte)
        digits += hexadecimal(static_cast<unsigned char>(*byte));
    return decimalOfHexadecimal(digits);
}
