// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the tag frame of an MP3 file, by the published layout alone and by nothing that is tested.
#pragma once

#include "platform/text.h"

#include <array>
#include <cstdint>

struct InfoRead {
    bool present = false;
    std::uint32_t flags = 0;
    std::uint32_t frames = 0;
    std::uint32_t bytes = 0;
    std::array<std::uint8_t, 100> places{};
    Text encoder;
    int delay = 0;
    int padding = 0;
    std::uint32_t musicLength = 0;
    std::uint16_t musicChecksum = 0;
    std::uint16_t tagChecksum = 0;
    std::size_t frameBytes = 0;
    std::size_t checkedBytes = 0; // from the frame's start, what the tag's checksum covers
};

// Bit by bit, as the polynomial is written: x^16 + x^15 + x^2 + 1, least significant bit first.
inline std::uint16_t slowChecksum(std::string_view bytes)
{
    unsigned value = 0;
    for (const char byte : bytes) {
        value ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? value >> 1 ^ 0xA001 : value >> 1;
    }
    return static_cast<std::uint16_t>(value);
}

class TagBytes
{
public:
    TagBytes(std::string_view file, std::size_t at) : file_(file), at_(at) {}

    std::uint32_t number(int bytes)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | static_cast<std::uint8_t>(file_.at(at_++));
        return value;
    }

    Text word(std::size_t bytes)
    {
        at_ += bytes;
        return Text(file_.substr(at_ - bytes, bytes));
    }

    std::size_t at() const { return at_; }

private:
    std::string_view file_;
    std::size_t at_;
};

// The first frame's bytes for the bit rates and the two sample rates that Velmora writes, without padding.
inline std::size_t plainFrameBytes(std::string_view file)
{
    constexpr int full[] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
    constexpr int half[] = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
    const bool isFull = static_cast<std::uint8_t>(file.at(1)) >> 3 & 1;
    const int rate = static_cast<std::uint8_t>(file.at(2)) >> 4;
    return isFull ? 144000 * full[rate] / 44100 : 72000 * half[rate] / 22050;
}

inline InfoRead readInfoTag(std::string_view file)
{
    InfoRead read;
    if (file.size() < 200)
        return read;
    const bool isFull = static_cast<std::uint8_t>(file[1]) >> 3 & 1;
    const bool isMono = static_cast<std::uint8_t>(file[3]) >> 6 == 3;
    TagBytes from(file, 4 + (isFull ? (isMono ? 17 : 32) : (isMono ? 9 : 17)));
    read.present = from.word(4) == "Info";
    if (!read.present)
        return read;
    read.frameBytes = plainFrameBytes(file);
    read.flags = from.number(4);
    read.frames = from.number(4);
    read.bytes = from.number(4);
    for (auto& place : read.places)
        place = static_cast<std::uint8_t>(from.number(1));
    from.number(4); // quality
    read.encoder = from.word(9);
    from.word(1 + 1 + 4 + 2 + 2 + 1 + 1); // method, low pass, peak, gains, flags, bit rate
    const auto delays = from.number(3);
    read.delay = static_cast<int>(delays >> 12);
    read.padding = static_cast<int>(delays & 0xFFF);
    from.word(1 + 1 + 2); // stereo and noise shaping, gain, preset
    read.musicLength = from.number(4);
    read.musicChecksum = static_cast<std::uint16_t>(from.number(2));
    read.checkedBytes = from.at();
    read.tagChecksum = static_cast<std::uint16_t>(from.number(2));
    return read;
}

// From header to header; -1 when they do not end with the file.
inline int countFrames(std::string_view file)
{
    int frames = 0;
    for (; file.size() >= 4; ++frames) {
        const std::size_t padding = static_cast<std::uint8_t>(file[2]) >> 1 & 1;
        const std::size_t bytes = plainFrameBytes(file) + padding;
        if (static_cast<std::uint8_t>(file[0]) != 0xFF || bytes > file.size())
            return -1;
        file.remove_prefix(bytes);
    }
    return file.empty() ? frames : -1;
}
