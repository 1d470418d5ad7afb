// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mp3_tags.h"

#include <array>
#include <charconv>
#include <string_view>

namespace formats
{

namespace
{

std::string_view textAt(const unsigned char* bytes, std::size_t size)
{
    return {reinterpret_cast<const char*>(bytes), size};
}

// ID3v2, section 3.1: ten bytes, four of them the size in seven bits each; a footer repeats the ten. 0 where
// there is none.
std::int64_t id3v2Bytes(const unsigned char* head)
{
    const bool isNumber = ((head[6] | head[7] | head[8] | head[9]) & 0x80) == 0;
    if (textAt(head, 3) != "ID3" || head[3] == 0xFF || head[4] == 0xFF || !isNumber)
        return 0;
    const std::int64_t size = head[6] << 21 | head[7] << 14 | head[8] << 7 | head[9];
    return 10 + size + (head[5] & 0x10 ? 10 : 0);
}

std::int64_t littleEndian(const unsigned char* bytes)
{
    return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::int64_t>(bytes[3]) << 24;
}

constexpr std::int64_t id3v1Bytes = 128;
constexpr std::int64_t apeFooterBytes = 32;
constexpr std::int64_t lyricsFooterBytes = 15;

// Each of these: how many bytes before `end` the tag takes; 0 when there is none.

std::int64_t id3v1Before(const files::InputFile& file, std::int64_t end)
{
    std::array<unsigned char, 3> mark{};
    const bool present = end >= id3v1Bytes && file.read(mark.data(), mark.size(), end - id3v1Bytes) == 3 &&
                         textAt(mark.data(), mark.size()) == "TAG";
    return present ? id3v1Bytes : 0;
}

std::int64_t apeBefore(const files::InputFile& file, std::int64_t end)
{
    std::array<unsigned char, apeFooterBytes> footer{};
    if (end < apeFooterBytes ||
        file.read(footer.data(), footer.size(), end - apeFooterBytes) != apeFooterBytes ||
        textAt(footer.data(), 8) != "APETAGEX")
        return 0;
    const bool hasHeader = (footer[23] & 0x80) != 0;
    return littleEndian(&footer[12]) + (hasHeader ? apeFooterBytes : 0);
}

std::int64_t lyricsBefore(const files::InputFile& file, std::int64_t end)
{
    std::array<unsigned char, lyricsFooterBytes> footer{};
    if (end < lyricsFooterBytes ||
        file.read(footer.data(), footer.size(), end - lyricsFooterBytes) != lyricsFooterBytes ||
        textAt(&footer[6], 9) != "LYRICS200")
        return 0;
    std::int64_t size = 0;
    const auto digits = textAt(footer.data(), 6);
    std::from_chars(digits.data(), digits.data() + digits.size(), size);
    return size + lyricsFooterBytes;
}

}

std::int64_t endOfLeadingTags(files::FileWindow& window, std::int64_t at)
{
    for (const auto* head = window.view(at, 10); head && id3v2Bytes(head) > 0; head = window.view(at, 10))
        at += id3v2Bytes(head);
    return at;
}

std::int64_t startOfTrailingTags(const files::InputFile& file, std::int64_t end)
{
    for (const auto bytesBefore : {id3v1Before, lyricsBefore, apeBefore, lyricsBefore}) {
        const std::int64_t bytes = bytesBefore(file, end);
        if (bytes <= end)
            end -= bytes;
    }
    return end;
}

}
