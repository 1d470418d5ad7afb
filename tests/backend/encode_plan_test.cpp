// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_plan.h"

#include "engines/codec/lame_encoder.h"
#include "engines/codec/mp3_settings.h"

#include <doctest/doctest.h>

#include <string>

using namespace codec;
using namespace formats;

namespace
{

constexpr std::int64_t inSecond = 44100;

std::int64_t framesOf(std::int64_t seconds) { return seconds * inSecond / 1152; }

std::vector<EncodeChunk> planOf(std::int64_t seconds, const EncodeClock& clock = {})
{
    return planChunks(framesOf(seconds), clock);
}

}

TEST_CASE("A sound is cut into more chunks the longer it is")
{
    struct Case {
        std::int64_t seconds;
        std::size_t chunks;
    };
    for (const auto& c : {Case{0, 1}, {8, 1}, {12, 2}, {60, 4}, {200, 8}, {600, 8}, {3600, 48}}) {
        CAPTURE(c.seconds);
        CHECK(planOf(c.seconds).size() == c.chunks);
    }
}

TEST_CASE("Chunks follow one another, and each encoder starts early enough where padding begins anew")
{
    for (const int rateIn : {44100, 48000, 8000, 11025, 96000, 11024, 12345}) {
        const EncodeClock clock = EncodeClock::of(rateIn, 44100, 1152);
        for (const std::int64_t seconds : {5, 12, 61, 600, 4000}) {
            CAPTURE(rateIn);
            CAPTURE(seconds);
            const auto chunks = planOf(seconds, clock);
            CHECK(chunks.front().start == 0);
            CHECK(chunks.front().first == 0);
            CHECK(chunks.back().isLast());
            for (std::size_t i = 1; i < chunks.size(); ++i) {
                CHECK(chunks[i - 1].end == chunks[i].bodyFirst());
                CHECK(chunks[i - 1].bodyEnd() == chunks[i].first);
                CHECK(chunks[i - 1].bodyFirst() <= chunks[i - 1].bodyEnd());
                CHECK(chunks[i].first - chunks[i].start >= 24);
                CHECK(chunks[i].start % 49 == 0);
                CHECK(chunks[i].start * 1152 * rateIn % 44100 == 0);
                CHECK(chunks[i].bodyFirst() < framesOf(seconds) - 8);
            }
        }
    }
}

TEST_CASE("The place of every frame is known before it is encoded")
{
    struct Case {
        int kilobits;
        bool half;
    };
    for (const auto& c :
         {Case{128, false}, {320, false}, {32, false}, {56, false}, {64, true}, {8, true}, {160, true}}) {
        CAPTURE(c.kilobits);
        LameEncoder encoder({c.kilobits * 1000, c.half}, 44100, 1);
        const auto clock = encoder.clock();
        Mp3Bytes out;
        encoder.encode({std::vector<float>(1), std::vector<float>(1)}, out);
        const auto tag = out.size();
        SoundBlock block{std::vector<float>(576), std::vector<float>(576)};
        for (int i = 0; i < 700; ++i)
            encoder.encode(block, out);
        encoder.flushAtFrame(out);
        CHECK(encoder.frames() > 150);
        CHECK(static_cast<std::int64_t>(out.size() - tag) ==
              bytesBefore(encoder.frames(), c.kilobits, clock));
    }
    CHECK(bytesBefore(0, 128, {}) == 0);
    CHECK(bytesBefore(1, 128, {}) == 417);
    CHECK(bytesBefore(49, 128, {}) == 49 * 417 + 47);
    CHECK(bytesBefore(50, 128, {}) == 50 * 417 + 47);
}

TEST_CASE("A bit rate becomes the nearest that the format has")
{
    struct Case {
        std::int32_t asked;
        int full;
        int half;
    };
    const Case cases[] = {
        {320000, 320, 160},
        {192000, 192, 160},
        {160000, 160, 160},
        {144000, 160, 144},
        {128000, 128, 128},
        {100000, 96, 96},
        {99999, 96, 96},
        {32000, 32, 32},
        {24000, 32, 24},
        {8000, 32, 8},
        {0, 32, 8},
        {-5, 32, 8},
        {2147483647, 320, 160},
        {-2147483647 - 1, 32, 8},
        {120000, 128, 128},
    };
    for (const auto& c : cases) {
        CAPTURE(c.asked);
        CHECK(kilobits({c.asked, false}) == c.full);
        CHECK(kilobits({c.asked, true}) == c.half);
    }
}

TEST_CASE("A rate that differs by a hair is taken as the rate out")
{
    CHECK(EncodeClock::of(44100, 44100, 1152).rateIn == 44100);
    CHECK(EncodeClock::of(44077, 44100, 1152).rateIn == 44100);
    CHECK(EncodeClock::of(44122, 44100, 1152).rateIn == 44100);
    CHECK(EncodeClock::of(44056, 44100, 1152).rateIn == 44056);
    CHECK(EncodeClock::of(22038, 22050, 576).rateIn == 22050);
    CHECK(EncodeClock::of(22000, 22050, 576).rateIn == 22000);
}
