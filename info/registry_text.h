// SPDX-License-Identifier: GPL-3.0-or-later
// How a registry value reads as text.
#pragma once

#include "platform/text.h"

#include <cstdint>
#include <optional>

// The text of a value of `size` bytes at the start of `buffer`, a closing NUL not counted: a string (type 1)
// as it is, a double word (type 4) in decimal, appended to what `before` holds as its leading digits. Nothing
// for other types. Fails with 13 or 6 for a double word that is no number.
std::optional<Text> registryText(std::uint32_t type, const Text& buffer, std::uint32_t size,
                                 const Text& before);
