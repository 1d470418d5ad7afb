// SPDX-License-Identifier: GPL-3.0-or-later
// MP3 files built frame by frame, silent, for their headers.
#pragma once

#include "platform/text.h"

#include <cstdint>

// 32 kbit/s, 44100 Hz, one channel.
constexpr std::size_t silentFrameBytes = 104;

inline Text silentFrames(std::size_t count)
{
    Text frame(silentFrameBytes, '\0');
    frame.replace(0, 4, "\xff\xfb\x10\xc4", 4);
    Text frames;
    frames.reserve(count * frame.size());
    for (std::size_t n = 0; n < count; ++n)
        frames += frame;
    return frames;
}

inline Text bigEndian(std::uint32_t number)
{
    return {static_cast<char>(number >> 24), static_cast<char>(number >> 16), static_cast<char>(number >> 8),
            static_cast<char>(number)};
}

// The frame that goes before so many silent ones, and says that the file has so many bytes in all.
inline Text infoFrameFor(std::uint32_t frames, std::uint32_t bytes, const char* mark = "Info")
{
    Text frame = silentFrames(1);
    frame.replace(4 + 17, 4, mark);
    frame.replace(4 + 17 + 4, 4, bigEndian(3));
    frame.replace(4 + 17 + 8, 4, bigEndian(frames));
    frame.replace(4 + 17 + 12, 4, bigEndian(bytes));
    return frame;
}

inline Text withInfoFrame(std::uint32_t frames)
{
    const auto bytes = static_cast<std::uint32_t>((frames + 1) * silentFrameBytes);
    return infoFrameFor(frames, bytes) + silentFrames(frames);
}

// An ID3v2 tag that holds nothing but so many bytes.
inline Text id3v2Tag(std::uint32_t bytes)
{
    Text tag("ID3\x03\0\0", 6);
    for (int shift = 21; shift >= 0; shift -= 7)
        tag += static_cast<char>(bytes >> shift & 0x7f);
    return tag + Text(bytes, 'p');
}

inline Text id3v1Tag() { return "TAG" + Text(125, 't'); }

inline Text apeTag()
{
    const auto part = [](char flags) {
        return Text("APETAGEX", 8) + Text("\xd0\x07\0\0", 4) + Text("\x20\0\0\0", 4) + Text("\0\0\0\0", 4) +
               Text("\0\0\0", 3) + flags + Text(8, '\0');
    };
    return part('\xa0') + part('\x80');
}
