// SPDX-License-Identifier: GPL-3.0-or-later
// Sound, WAV files and disc images made in a test.
#pragma once

#include "platform/text.h"
#include "tests/support/files.h"

#include <cstdint>

inline constexpr std::int64_t bytesOfSecond = 44100 * 4;
inline constexpr std::int64_t bytesOfSector = 2352;

// White noise of that many bytes, as samples lie on a disc.
inline Text noise(std::int64_t bytes, std::uint64_t seed = 1)
{
    Text sound(static_cast<std::size_t>(bytes), '\0');
    std::uint64_t state = seed * 0x9E3779B97F4A7C15u + 1;
    for (char& byte : sound) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        byte = static_cast<char>(state >> 32);
    }
    return sound;
}

inline Text littleEndian(std::uint32_t number, int bytes)
{
    Text text;
    for (int i = 0; i < bytes; ++i, number >>= 8)
        text += static_cast<char>(number & 0xFF);
    return text;
}

struct WavForm {
    std::uint32_t coding = 1; // PCM
    std::uint32_t channels = 2;
    std::uint32_t rate = 44100;
    std::uint32_t bits = 16;
};

inline Text wavFile(const Text& sound, const WavForm& form = {})
{
    const std::uint32_t frameBytes = form.channels * form.bits / 8;
    const auto size = static_cast<std::uint32_t>(sound.size());
    return "RIFF" + littleEndian(size + 36, 4) + "WAVEfmt " + littleEndian(16, 4) +
           littleEndian(form.coding, 2) + littleEndian(form.channels, 2) + littleEndian(form.rate, 4) +
           littleEndian(form.rate * frameBytes, 4) + littleEndian(frameBytes, 2) +
           littleEndian(form.bits, 2) + "data" + littleEndian(size, 4) + sound;
}

// The sound of a plain WAV file whose header agrees with its length; "" for any other file.
inline Text soundOfWav(const Text& path)
{
    const Text file = fileBytes(path);
    if (file.size() < 44 || file.substr(0, 44) != wavFile(file.substr(44)).substr(0, 44))
        return {};
    return file.substr(44);
}

inline Text swappedSamples(Text sound)
{
    for (std::size_t i = 0; i + 1 < sound.size(); i += 2)
        std::swap(sound[i], sound[i + 1]);
    return sound;
}

// A sheet of audio tracks that begin at these times of one file.
inline Text sheetOf(const Text& file, std::initializer_list<const char*> starts)
{
    Text sheet = "FILE \"" + file + "\" BINARY\n";
    int number = 0;
    for (const char* start : starts) {
        const Text digits = std::to_string(++number);
        sheet +=
            "  TRACK " + Text(digits.size() < 2 ? "0" : "") + digits + " AUDIO\n    INDEX 01 " + start + '\n';
    }
    return sheet;
}
