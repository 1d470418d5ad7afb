// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/frame_join.h"

#include "platform/failure.h"

#include <doctest/doctest.h>

#include <algorithm>

using namespace codec;
using namespace formats;

namespace
{

// Frames of 32 kbit/s, 44.1 kHz, mono: 21 bytes of header and side information, 83 of main data, which are
// filled with a letter for each frame. `reservoirs` tells how many bytes each begins before itself.
Mp3Bytes frames(char letter, const std::vector<int>& reservoirs)
{
    Mp3Bytes bytes;
    for (const int reservoir : reservoirs) {
        bytes.insert(bytes.end(), {0xff, 0xfb, 0x10, 0xc0, static_cast<std::uint8_t>(reservoir >> 1),
                                   static_cast<std::uint8_t>(reservoir << 7)});
        bytes.insert(bytes.end(), 15, 0);
        bytes.insert(bytes.end(), 83, static_cast<std::uint8_t>(letter++));
    }
    return bytes;
}

constexpr std::size_t frameBytes = 104;

// The letters of the main data, each with how often it stands.
std::string mainData(const Mp3Bytes& bytes)
{
    std::string letters;
    for (std::size_t at = 0; at < bytes.size(); at += frameBytes)
        letters.append(bytes.begin() + static_cast<std::ptrdiff_t>(at) + 21,
                       bytes.begin() + static_cast<std::ptrdiff_t>(at + frameBytes));
    std::string text;
    for (std::size_t i = 0; i < letters.size();) {
        const auto end = std::min(letters.size(), letters.find_first_not_of(letters[i], i));
        text += (text.empty() ? "" : " ") + std::to_string(end - i) + letters[i];
        i = end;
    }
    return text;
}

std::vector<int> reservoirs(const Mp3Bytes& bytes)
{
    std::vector<int> found;
    for (std::size_t at = 0; at < bytes.size(); at += frameBytes)
        found.push_back(bytes[at + 4] << 1 | bytes[at + 5] >> 7);
    return found;
}

}

TEST_CASE("Frames are joined where the second encoder needs what the first one left")
{
    struct Case {
        std::string what;
        std::vector<int> before;
        std::vector<int> after;
        std::vector<int> joined;
        std::string mainData;
    };
    const Case cases[] = {
        {"the last of equals", {0, 10, 20, 30}, {0, 10, 20, 30}, {0, 10, 20, 30}, "83a 83b 53c 30C 83D"},
        {"equal once", {80, 60, 40, 70}, {0, 30, 40, 50}, {80, 60, 40, 50}, "83a 43b 40B 83C 83D"},
        {"a little less", {80, 60, 50, 90}, {0, 30, 49, 50}, {80, 60, 49, 50}, "83a 34b 49B 83C 83D"},
        {"never more", {80, 29, 29, 40}, {0, 30, 30, 41}, {0, 30, 30, 41}, "83A 83B 83C 83D"},
        {"nothing needed", {5, 7, 0, 9}, {0, 0, 0, 11}, {5, 7, 0, 11}, "83a 83b 83C 83D"},
        {"over two frames", {90, 80, 160, 90}, {0, 70, 150, 100}, {90, 80, 150, 100}, "16a 67A 83B 83C 83D"},
        {"over whole frames", {0, 80, 166, 90}, {0, 70, 166, 100}, {0, 80, 166, 100}, "83A 83B 83C 83D"},
        {"a single byte", {0, 1}, {0, 1}, {0, 1}, "82a 1A 83B"},
        {"the first leaves least", {10, 60, 70}, {0, 10, 20}, {0, 10, 20}, "83A 83B 83C"},
        {"the only frame", {33}, {0}, {0}, "83A"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto joined = joinFrames(frames('a', c.before), frames('A', c.after));
        CHECK(reservoirs(joined) == c.joined);
        CHECK(mainData(joined) == c.mainData);
    }
}

TEST_CASE("Frames that are not the same stretch are not joined")
{
    const auto good = frames('a', {0, 10});
    auto noise = good;
    noise[frameBytes] = 0;
    auto longer = good;
    longer.resize(longer.size() + 1);
    auto cut = good;
    cut.resize(cut.size() - 1);
    auto otherRate = good;
    otherRate[2] = 0x20;
    for (const auto& bad :
         {Mp3Bytes{}, noise, longer, cut, otherRate, frames('a', {0}), frames('a', {0, 1, 2})}) {
        CAPTURE(bad.size());
        CHECK_THROWS_AS(joinFrames(good, bad), Failure);
        CHECK_THROWS_AS(joinFrames(bad, good), Failure);
    }
    CHECK_THROWS_AS(joinFrames({}, {}), Failure);
    CHECK_THROWS_AS(joinFrames(good, frames('a', {1, 10})), Failure);
    CHECK_THROWS_AS(joinFrames(frames('a', {0, 200}), frames('a', {0, 200})), Failure);
    CHECK_NOTHROW(joinFrames(good, good));
}
