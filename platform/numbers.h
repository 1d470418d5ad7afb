// SPDX-License-Identifier: GPL-3.0-or-later
// How numbers become text and text becomes numbers everywhere in the program, whatever the locale.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <string_view>

// The shortest plain decimal that reads back to the same number; no exponent, no grouping.
Text textOf(float number);
Text textOf(double number);
Text textOf(std::int32_t number);

// An integer with at least two digits.
Text twoDigits(std::int64_t number);

// Blanks around the number, a sign, a decimal point and an exponent are allowed. Everything else, the empty
// text included, fails with 13 "Type mismatch"; a number that the type cannot hold fails with 6 "Overflow".
double toDouble(std::string_view text);
float toSingle(std::string_view text);
std::int16_t toInteger16(std::string_view text);
std::int32_t toInteger32(std::string_view text);

// To the nearest integer, halves to the even neighbour. Fails with 6 "Overflow" outside the type.
std::int16_t roundToInteger16(double number);
std::int32_t roundToInteger32(double number);
