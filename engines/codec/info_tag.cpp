// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/info_tag.h"

#include "engines/formats/mpeg_header.h"
#include "platform/byte_order.h"

#include <algorithm>
#include <array>

namespace codec
{

namespace
{

// The remainders of this polynomial repeat after so many zero bytes (and so many bits).
constexpr std::int64_t checksumPeriod = 32767;

constexpr std::array<std::uint16_t, 256> checksumTable()
{
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = value >> 1 ^ (value & 1 ? 0xA001 : 0);
        table[byte] = static_cast<std::uint16_t>(value);
    }
    return table;
}

constexpr auto table = checksumTable();

std::uint16_t updated(std::uint16_t value, std::uint8_t byte)
{
    return static_cast<std::uint16_t>(value >> 8 ^ table[(value ^ byte) & 0xFF]);
}

void put(std::uint8_t* at, std::int64_t value, std::size_t bytes)
{
    const auto held = static_cast<std::uint32_t>(std::min<std::int64_t>(value, UINT32_MAX));
    std::ranges::copy(toBigEndian(held, bytes), at);
}

// Fields, counted from the word "Info".
constexpr int framesAt = 8;
constexpr int bytesAt = 12;
constexpr int placesAt = 16; // of the hundredths of the playing time, in 256ths of the bytes
constexpr int delayAt = 141; // 12 bits of delay, 12 of padding
constexpr int musicLengthAt = 148;
constexpr int musicChecksumAt = 152;
constexpr int tagChecksumAt = 154;

// LAME keeps the running size at up to 400 places, a power of two frames apart, and looks it up at each
// hundredth.
void putPlaces(std::uint8_t* info, std::int64_t frames)
{
    std::int64_t apart = 1;
    while (frames / apart >= 400)
        apart *= 2;
    const std::int64_t places = frames / apart;
    info[placesAt] = 0;
    for (int i = 1; i < 100; ++i) {
        const auto place = std::min(
            places - 1, static_cast<std::int64_t>(static_cast<float>(i) / 100 * static_cast<float>(places)));
        const auto part = 256 * (place + 1) * apart / frames;
        info[placesAt + i] = static_cast<std::uint8_t>(std::min<std::int64_t>(part, 255));
    }
}

void putPadding(std::uint8_t* info, std::int64_t allSamples, std::int64_t samples)
{
    const int delay = info[delayAt] << 4 | info[delayAt + 1] >> 4;
    const auto padding = std::clamp<std::int64_t>(allSamples - delay - samples, 0, 4095);
    put(info + delayAt, delay << 12 | padding, 3);
}

}

void Checksum::add(std::span<const std::uint8_t> bytes)
{
    for (const auto byte : bytes)
        value_ = updated(value_, byte);
}

void Checksum::add(Checksum next, std::int64_t length)
{
    for (std::int64_t zeros = length % checksumPeriod; zeros > 0; --zeros)
        value_ = updated(value_, 0);
    value_ ^= next.value_;
}

void rewriteInfoTag(std::span<std::uint8_t> tag, const StreamFacts& facts)
{
    const auto header = formats::mpegHeader(tag.data());
    auto* info = tag.data() + header->sideInfo;
    const auto allBytes = facts.bytes + static_cast<std::int64_t>(tag.size());
    put(info + framesAt, facts.frames, 4);
    put(info + bytesAt, allBytes, 4);
    putPlaces(info, facts.frames);
    putPadding(info, facts.frames * header->samples, facts.samples);
    put(info + musicLengthAt, allBytes, 4);
    put(info + musicChecksumAt, facts.checksum.value(), 2);

    Checksum checksum;
    checksum.add(tag.first(static_cast<std::size_t>(header->sideInfo + tagChecksumAt)));
    put(info + tagChecksumAt, checksum.value(), 2);
}

}
