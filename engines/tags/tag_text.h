// SPDX-License-Identifier: GPL-3.0-or-later
// Between the program's text and the encodings of the tag formats.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tags
{

// The characters of `text`; a byte that belongs to no UTF-8 sequence is the Latin-1 letter of that number.
std::u32string charactersOf(std::string_view text);

// The same characters as UTF-8 and nothing else.
Text validUtf8(std::string_view text);

// Code units of UTF-16; half a surrogate pair becomes U+FFFD.
Text utf8OfUtf16(std::u16string_view units);

// Bytes that do not say what they are: UTF-8 where they are valid as such, otherwise Latin-1.
Text utf8OfUnstated(std::string_view bytes);

// Latin-1, whatever the bytes are.
Text utf8OfLatin1(std::string_view bytes);

// UTF-8 that a label, a box and a row of a list can show: a blank stands for each control character and for
// each other end of a line.
Text oneLine(std::string_view text);

bool isLatin1(std::string_view text);

// One byte a character; '?' stands for one that Latin-1 does not have.
Text toLatin1(std::string_view text);

// Little endian, with a byte order mark.
Text toUtf16(std::string_view text);

bool isAscii(std::string_view text);

// `text` up to its first zero.
std::string_view upToZero(std::string_view text);

// Several values of one field in one line.
Text joined(const std::vector<Text>& values);

// The year that a date or a year begins with; 0 where there is none.
std::int16_t yearOf(std::string_view text);

// The other way round: four digits, as the standards ask; nothing for 0.
Text yearText(std::int16_t year);

}
