// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/side_info.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <span>

using namespace formats;

namespace
{

// The first four bytes of frames of both sizes of side information, with one and two channels.
struct Kind {
    const char* what;
    std::array<std::uint8_t, 4> start;
    int most; // that the reservoir takes
};
constexpr Kind kinds[] = {
    {"MPEG-1, stereo", {0xff, 0xfb, 0x90, 0x00}, 511},
    {"MPEG-1, mono", {0xff, 0xfb, 0x90, 0xc0}, 511},
    {"MPEG-1, a checksum", {0xff, 0xfa, 0x90, 0x00}, 511},
    {"MPEG-2, stereo", {0xff, 0xf3, 0x80, 0x00}, 255},
    {"MPEG-2, mono", {0xff, 0xf3, 0x80, 0xc0}, 255},
    {"MPEG-2, a checksum", {0xff, 0xf2, 0x80, 0xc0}, 255},
};

// Where the parts begin and how many bits each has, in the side information.
struct Parts {
    explicit Parts(const MpegHeader& header) :
        first(header.isLowRate() ? 8 + header.channels : 9 + (header.channels == 2 ? 3 + 8 : 5 + 4)),
        bits(header.isLowRate() ? 63 : 59), start(header.isProtected() ? 48 : 32), channels(header.channels)
    {
    }
    // Bit of the frame where the granule's part for that channel begins.
    int at(int granule, int channel) const { return start + first + (granule * channels + channel) * bits; }

    int first, bits, start, channels;
};

using Frame = std::array<std::uint8_t, 64>;

void setBits(Frame& frame, int at, int count, unsigned value)
{
    for (int bit = at + count - 1; bit >= at; --bit, value >>= 1) {
        auto& byte = frame[static_cast<std::size_t>(bit / 8)];
        const auto mask = static_cast<std::uint8_t>(0x80 >> bit % 8);
        byte = static_cast<std::uint8_t>((value & 1) != 0 ? byte | mask : byte & ~mask);
    }
}

// All ones behind the header.
Frame frameOf(const Kind& kind)
{
    Frame frame;
    frame.fill(0xff);
    std::ranges::copy(kind.start, frame.begin());
    return frame;
}

}

TEST_CASE("A silent frame has no sound, hands the reservoir on, and is any decoder's")
{
    for (const Kind& kind : kinds)
        for (const int reservoir : {0, 1, 100, kind.most}) {
            CAPTURE(kind.what);
            CAPTURE(reservoir);
            auto frame = frameOf(kind);
            const auto header = mpegHeader(frame.data());
            REQUIRE(header);
            CHECK(mainDataBegin(frame.data(), *header) == kind.most);
            CHECK(soundBits(frame.data(), *header) ==
                  4095 * (header->isLowRate() ? 1 : 2) * header->channels);
            CHECK_FALSE(isEmpty(frame.data(), *header));
            CHECK_FALSE(isPossible(frame.data(), *header));
            silence(frame.data(), *header, reservoir);
            CHECK(mainDataBegin(frame.data(), *header) == reservoir);
            CHECK(soundBits(frame.data(), *header) == 0);
            CHECK(isEmpty(frame.data(), *header));
            CHECK(isPossible(frame.data(), *header));
            CHECK(std::ranges::equal(kind.start, std::span(frame).first(4)));
            CHECK(std::all_of(frame.begin() + header->sideInfo, frame.end(),
                              [](std::uint8_t byte) { return byte == 0xff; }));
        }
}

TEST_CASE("Of the last granule that has values the sound is as loud as can be, and of all before it as quiet")
{
    for (const Kind& kind : kinds) {
        const auto header = mpegHeader(kind.start.data());
        REQUIRE(header);
        const Parts parts(*header);
        const int granules = header->isLowRate() ? 1 : 2;
        for (int last = 0; last < granules; ++last)
            for (int channel = 0; channel < header->channels; ++channel) {
                CAPTURE(kind.what);
                CAPTURE(last);
                CAPTURE(channel);
                Frame frame{};
                std::ranges::copy(kind.start, frame.begin());
                setBits(frame, parts.at(last, channel), 12, 1);
                setBits(frame, parts.at(0, 0) + 21, 8, 170);
                Frame wanted = frame;
                for (int granule = 0; granule < granules; ++granule)
                    for (int side = 0; side < header->channels; ++side)
                        setBits(wanted, parts.at(granule, side) + 21, 8, granule == last ? 255 : 0);
                keepLastSound(frame.data(), *header);
                CHECK((frame == wanted));
            }
    }
}
