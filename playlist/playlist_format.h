// The bytes of a list file: how its text becomes lines, and lines become text.
#pragma once

#include "platform/text.h"

#include <optional>
#include <string_view>
#include <vector>

inline constexpr std::string_view lineEnd = "\r\n";

// The lines of `text`. Nothing for an empty text, which has no lines at all, not even an empty one.
// The search for a delimiter begins one character behind the start of a line, so that a blank line is glued to the
// front of the line after it; the last character of an unterminated last line is lost.
std::optional<std::vector<Text>> splitListText(std::string_view text, std::string_view delimiter);

// True for a line that becomes a row: every line but those that begin with "#".
bool isRow(std::string_view line);
