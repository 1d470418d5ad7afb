// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"

#include "platform/failure.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace
{

// Longer than any finite double in plain decimal.
using Digits = std::array<char, 1100>;

template <typename Number>
Text plainDecimal(Number number)
{
    Digits digits;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed);
    Text text(digits.data(), end.ptr);
    return text == "-0" ? "0" : text;
}

bool startsANumber(std::string_view text)
{
    if (!text.empty() && text.front() == '-')
        text.remove_prefix(1);
    return !text.empty() && (text.front() == '.' || (text.front() >= '0' && text.front() <= '9'));
}

template <typename Integer>
Integer rounded(double number)
{
    const double nearest = std::nearbyint(number);
    if (!(nearest >= std::numeric_limits<Integer>::min() && nearest <= std::numeric_limits<Integer>::max()))
        throw Failure(Trouble::overflow);
    return static_cast<Integer>(nearest);
}

}

Text textOf(float number) { return plainDecimal(number); }

Text textOf(double number) { return plainDecimal(number); }

Text textOf(std::int32_t number) { return std::to_string(number); }

Text twoDigits(std::int64_t number)
{
    const Text digits = std::to_string(number);
    return digits.size() < 2 ? "0" + digits : digits;
}

double toDouble(std::string_view text)
{
    std::string_view number = withoutBlanks(text);
    if (!number.empty() && number.front() == '+') {
        number.remove_prefix(1);
        if (!number.empty() && number.front() == '-')
            throw Failure(Trouble::typeMismatch);
    }
    if (!startsANumber(number))
        throw Failure(Trouble::typeMismatch);
    double value = 0;
    const auto end = std::from_chars(number.data(), number.data() + number.size(), value);
    if (end.ptr != number.data() + number.size())
        throw Failure(Trouble::typeMismatch);
    if (end.ec == std::errc::result_out_of_range)
        throw Failure(Trouble::overflow);
    if (end.ec != std::errc())
        throw Failure(Trouble::typeMismatch);
    return value;
}

float toSingle(std::string_view text)
{
    const double value = toDouble(text);
    if (std::abs(value) > std::numeric_limits<float>::max())
        throw Failure(Trouble::overflow);
    return static_cast<float>(value);
}

std::int16_t toInteger16(std::string_view text) { return rounded<std::int16_t>(toDouble(text)); }

std::int32_t toInteger32(std::string_view text) { return rounded<std::int32_t>(toDouble(text)); }

std::int16_t roundToInteger16(double number) { return rounded<std::int16_t>(number); }

std::int32_t roundToInteger32(double number) { return rounded<std::int32_t>(number); }
