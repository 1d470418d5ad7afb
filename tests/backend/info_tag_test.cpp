// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/info_tag.h"

#include "tests/support/info_reader.h"

#include <doctest/doctest.h>

#include <algorithm>
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

TEST_CASE("A rewritten tag tells the truth about every field that it has, and leaves the others")
{
    constexpr std::size_t info = 36; // of MPEG-1, stereo
    std::vector<std::uint8_t> tag(417, 0xEE);
    const std::uint8_t start[] = {0xff, 0xfb, 0x90, 0x64};
    std::ranges::copy(start, tag.begin());
    tag[info + 141] = 0x24; // a delay of 576
    tag[info + 142] = 0x0E;
    auto wanted = tag;
    const auto put = [&](std::size_t at, std::size_t bytes, std::uint64_t value) {
        for (; bytes-- > 0; value >>= 8)
            wanted[info + at + bytes] = static_cast<std::uint8_t>(value);
    };
    const auto music = noise(5000);
    StreamFacts facts{.frames = 1000, .bytes = 417'000, .checksum = {}, .samples = 1'151'000};
    facts.checksum.add(music);
    rewriteInfoTag(tag, facts);

    put(8, 4, 1000);
    put(12, 4, 417'417);
    put(141, 3, 576 << 12 | (1000 * 1152 - 576 - 1'151'000));
    put(148, 4, 417'417);
    put(152, 2, facts.checksum.value());
    for (int i = 0; i < 100; ++i) { // a size is kept every four frames, and looked up by whole ones
        const int place = std::min(249, i * 250 / 100);
        put(static_cast<std::size_t>(16 + i), 1,
            i == 0 ? 0 : static_cast<std::uint64_t>(256 * (place + 1) * 4 / 1000));
    }
    put(154, 2, slowChecksum({reinterpret_cast<const char*>(wanted.data()), info + 154}));
    CHECK(tag == wanted);

    rewriteInfoTag(tag, {.frames = 20'000'000, .bytes = 5'000'000'000, .checksum = {}, .samples = 0});
    const auto greatest = std::vector<std::uint8_t>(4, 0xff);
    CHECK(std::equal(greatest.begin(), greatest.end(), tag.begin() + info + 12));
    CHECK(std::equal(greatest.begin(), greatest.end(), tag.begin() + info + 148));
    CHECK((tag[info + 142] & 15) == 15); // the most padding that the field can say
    CHECK(tag[info + 143] == 0xff);
}
