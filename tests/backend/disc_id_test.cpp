// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_id.h"

#include <doctest/doctest.h>

#include <vector>

namespace
{

// A disc by where its tracks begin and end, counted from the very beginning, as lists of discs do.
disc::DiscContents discOf(const std::vector<std::int32_t>& starts, std::int32_t leadOut)
{
    disc::DiscContents disc;
    for (const std::int32_t start : starts)
        disc.tracks.push_back({true, start - 150, 0});
    disc.leadOut = leadOut - 150;
    return disc;
}

}

TEST_CASE("A disc's id comes from where its tracks begin")
{
    struct Case {
        const char* disc;
        std::vector<std::int32_t> starts;
        std::int32_t leadOut;
        const char* id;
    };
    // clang-format off
    const Case cases[] = {
        {"eleven tracks", {150, 28615, 51027, 75835, 102620, 121460, 148977, 175697, 204322, 231082, 268002}, 3826 * 75, "920ef00b"},
        {"sixteen tracks", {150, 20972, 36331, 50117, 69524, 86255, 101371, 112896, 131608, 138844, 157390, 174137, 193697, 208667, 224774, 238280}, 3342 * 75, "f00d0c10"},
        {"an enhanced disc counts the data track of its second session", {150, 12767, 40487, 63225, 93410, 118115, 151865, 184340, 215260, 247455, 281735}, 333801, "9e11600b"},
        {"a data track comes first", {150, 66728, 76502, 85963, 93760, 104048, 116066, 124743, 134206, 142916, 151852, 160720, 169425, 178731, 188459, 196711, 206354, 214845, 223686, 225746, 226384, 232668, 239447, 239931, 244989, 254264, 260066, 261222, 261674}, 261976, "af0da31d"},
        {"one track", {150}, 150 + 75, "02000101"},
        {"no track", {}, 0, "00000000"},
        {"starts that no disc has", {-5}, -1, "00000001"},
    };
    // clang-format on
    for (const auto& c : cases) {
        CAPTURE(c.disc);
        CHECK(disc::discId(discOf(c.starts, c.leadOut)) == c.id);
    }
}

TEST_CASE("A checksum of 255 is 0")
{
    const std::vector<std::int32_t> starts(51, 5 * 75); // 51 times the digit 5
    CHECK(disc::discId(discOf(starts, 65 * 75)) == "00003c33");
}

TEST_CASE("Data tracks count")
{
    disc::DiscContents disc = discOf({150, 30000}, 60000);
    const Text id = disc::discId(disc);
    disc.tracks[1].isAudio = false;
    CHECK(disc::discId(disc) == id);
}

TEST_CASE("The query names every start and the whole length in seconds")
{
    CHECK(disc::queryCommand(discOf({150, 12767, 40487}, 63225 + 74)) ==
          "cddb query 1b034903 3 150 12767 40487 843");
}

TEST_CASE("A disc that begins with a later track is told by the tracks that it has")
{
    const disc::DiscContents whole = discOf({150, 12767, 40487}, 63225);
    disc::DiscContents late = whole;
    late.tracks.insert(late.tracks.begin(), 3, {false, 0, 0, true});
    CHECK(disc::discId(late) == disc::discId(whole));
    CHECK(disc::queryCommand(late) == disc::queryCommand(whole));
}
