// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/info_tag.h"

#include "tests/support/info_reader.h"

#include <doctest/doctest.h>

#include <random>
#include <vector>

using namespace codec;

namespace
{

std::vector<std::uint8_t> noise(std::size_t count)
{
    std::minstd_rand random(3);
    std::vector<std::uint8_t> bytes(count);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

}

TEST_CASE("A checksum is that of the polynomial, bit by bit")
{
    const auto bytes = noise(1000);
    Checksum checksum;
    checksum.add(bytes);
    CHECK(checksum.value() == slowChecksum({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
}

TEST_CASE("The checksums of parts add up to that of the whole")
{
    const auto bytes = noise(200000);
    const std::span<const std::uint8_t> all = bytes;
    for (const std::size_t at : {0u, 1u, 417u, 32766u, 32767u, 32768u, 65535u, 199999u, 200000u}) {
        CAPTURE(at);
        Checksum whole;
        whole.add(all);
        Checksum joined;
        joined.add(all.first(at));
        Checksum rest;
        rest.add(all.subspan(at));
        joined.add(rest, static_cast<std::int64_t>(all.size() - at));
        CHECK(joined.value() == whole.value());
    }
}
