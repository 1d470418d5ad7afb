// SPDX-License-Identifier: GPL-3.0-or-later
// The bytes of a list file: how its text becomes lines, and lines become text.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

inline constexpr std::string_view lineEnd = "\r\n";

// The lines of `text`. Nothing for an empty text, which has no lines at all, not even an empty one.
// The search for a delimiter begins one character behind the start of a line, so that a blank line is glued
// to the front of the line after it; the last character of an unterminated last line is lost.
std::optional<std::vector<Text>> splitListText(std::string_view text, std::string_view delimiter);

// True for a line that becomes a row: every line but those that begin with "#".
bool isRow(std::string_view line);

inline constexpr const char* m3uHeader = "#EXTM3U";

// The line before an entry's own in an M3U file. The length is in milliseconds; its whole seconds count one
// less.
Text m3uInformationLine(std::int32_t length, const Text& artist, const Text& title);

// The filters of the dialogs that open and save lists, as their index counts them.
inline constexpr std::int16_t listFilterOwn = 1;
inline constexpr std::int16_t listFilterM3u = 2;

// True when the name ends in the three letters, with or without a point before them.
bool isM3uName(std::string_view name);

// The name under which a list is saved: the filter's extension is added to a name that does not end in its
// letters.
Text listFileName(const Text& name, std::int16_t filter);
