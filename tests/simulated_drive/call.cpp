// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/call.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace simulated
{

void add16(Bytes& bytes, int value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void add32(Bytes& bytes, std::int32_t value)
{
    add16(bytes, value >> 16);
    add16(bytes, value);
}

void addTime(Bytes& bytes, std::int32_t sector)
{
    const std::int32_t frames = sector >= -pregap ? sector + pregap : sector + 450150;
    for (const std::int32_t part : {frames / 75 / 60, frames / 75 % 60, frames % 75})
        bytes.push_back(static_cast<std::uint8_t>(part));
}

void setLength16(Bytes& bytes)
{
    const auto length = bytes.size() - 2;
    bytes[0] = static_cast<std::uint8_t>(length >> 8);
    bytes[1] = static_cast<std::uint8_t>(length);
}

std::size_t answer(const Call& call, const Bytes& bytes, std::size_t allowed)
{
    const auto count = std::min({bytes.size(), allowed, call.data.size()});
    std::copy_n(bytes.begin(), count, call.data.begin());
    return count;
}

void Call::takeTime(std::int32_t sectors, std::int32_t milliseconds) const
{
    if (milliseconds > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(sectors * milliseconds));
}

}
