// SPDX-License-Identifier: GPL-3.0-or-later
// Whole numbers as the tag formats store them.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tags
{

// The most significant byte first; `bytes` holds at most four.
std::uint32_t fromBigEndian(std::string_view bytes);
Text toBigEndian(std::uint32_t number, std::size_t count);

// The least significant byte first.
std::uint32_t fromLittleEndian(std::string_view bytes);
Text toLittleEndian(std::uint32_t number);

// Seven bits a byte, four bytes, so that no byte looks like the start of a frame (ID3v2.4, section 6.2).
constexpr std::uint32_t syncSafeLimit = 1u << 28;
bool isSyncSafe(std::string_view bytes);
std::uint32_t fromSyncSafe(std::string_view bytes);
Text toSyncSafe(std::uint32_t number);

}
