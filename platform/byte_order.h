// SPDX-License-Identifier: GPL-3.0-or-later
// Whole numbers as file formats store them.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

inline unsigned valueOf(char byte) { return static_cast<unsigned char>(byte); }

inline std::string_view bytesFrom(const unsigned char* at, std::size_t count)
{
    return {reinterpret_cast<const char*>(at), count};
}

// The most significant byte first; `bytes` holds at most eight.
std::uint64_t fromBigEndian(std::string_view bytes);
Text toBigEndian(std::uint64_t number, std::size_t count = 4);

// The least significant byte first.
std::uint64_t fromLittleEndian(std::string_view bytes);
Text toLittleEndian(std::uint64_t number, std::size_t count = 4);

// Seven bits a byte, so that no byte looks like the start of a frame (ID3v2.4, section 6.2).
constexpr std::uint32_t syncSafeLimit = 1u << 28;
bool isSyncSafe(std::string_view bytes);
std::uint32_t fromSyncSafe(std::string_view bytes);
Text toSyncSafe(std::uint32_t number); // four bytes
