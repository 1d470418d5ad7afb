// SPDX-License-Identifier: GPL-3.0-or-later
// Text is bytes in the platform's 8-bit code page (UTF-8 on Linux). Bytes that are not valid UTF-8 are kept
// as they are, so that any file name survives the way from a folder to a list and back.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

using Text = std::string;

// One character is one UTF-8 sequence, or one byte that belongs to none.
// The length in bytes of the character that begins at `at`; 0 at the end of the text.
std::size_t characterBytes(std::string_view text, std::size_t at);

std::size_t characterCount(std::string_view text);

// `text` without its last character; an empty text stays empty.
std::string_view withoutLastCharacter(std::string_view text);

// Without any of `blanks` at its beginning and its end.
std::string_view withoutBlanks(std::string_view text, std::string_view blanks = " \t");

// The first `count` characters.
std::string_view firstCharacters(std::string_view text, std::size_t count);

// The last three characters: what the program takes for a file's kind.
std::string_view lastThreeCharacters(std::string_view text);

bool isValidUtf8(std::string_view text);

// Lower case for A to Z alone: no locale, and no byte outside ASCII changes.
Text lowerCase(std::string_view text);

bool equalWithoutCase(std::string_view one, std::string_view other);
