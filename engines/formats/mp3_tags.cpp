// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mp3_tags.h"

#include "platform/byte_order.h"

#include <charconv>

namespace formats
{

namespace
{

constexpr std::int64_t id3v2HeadBytes = 10; // a footer repeats them
constexpr std::int64_t id3v1Bytes = 128;
constexpr std::int64_t apeFooterBytes = 32;
constexpr std::int64_t lyricsFooterBytes = 15;

Text readAt(files::ByteSource& file, std::int64_t at, std::int64_t count)
{
    return at < 0 ? Text() : file.read(static_cast<std::uint64_t>(at), static_cast<std::size_t>(count));
}

// Each of these: how many bytes before `end` the tag takes; 0 when there is none.

std::int64_t id3v1Before(files::ByteSource& file, std::int64_t end)
{
    return readAt(file, end - id3v1Bytes, id3v1Bytes).starts_with("TAG") ? id3v1Bytes : 0;
}

std::int64_t apeBefore(files::ByteSource& file, std::int64_t end)
{
    const Text footer = readAt(file, end - apeFooterBytes, apeFooterBytes);
    if (!footer.starts_with("APETAGEX"))
        return 0;
    const bool hasHeader = (valueOf(footer[23]) & 0x80) != 0;
    return static_cast<std::int64_t>(fromLittleEndian(footer.substr(12, 4))) +
           (hasHeader ? apeFooterBytes : 0);
}

std::int64_t lyricsBefore(files::ByteSource& file, std::int64_t end)
{
    const Text footer = readAt(file, end - lyricsFooterBytes, lyricsFooterBytes);
    if (!footer.ends_with("LYRICS200"))
        return 0;
    std::int64_t size = 0;
    std::from_chars(footer.data(), footer.data() + 6, size);
    return size + lyricsFooterBytes;
}

}

std::int64_t id3v2Bytes(std::string_view head)
{
    if (head.size() < id3v2HeadBytes || !head.starts_with("ID3") || head[3] == '\xFF' || head[4] == '\xFF' ||
        !isSyncSafe(head.substr(6, 4)))
        return 0;
    const bool hasFooter = head[3] == 4 && (valueOf(head[5]) & 0x10) != 0;
    return id3v2HeadBytes + fromSyncSafe(head.substr(6, 4)) + (hasFooter ? id3v2HeadBytes : 0);
}

std::int64_t endOfLeadingTags(files::ByteSource& file, std::int64_t at)
{
    while (const auto bytes = id3v2Bytes(readAt(file, at, id3v2HeadBytes)))
        at += bytes;
    return at;
}

std::int64_t startOfTrailingTags(files::ByteSource& file, std::int64_t end)
{
    for (const auto bytesBefore : {id3v1Before, lyricsBefore, apeBefore, lyricsBefore}) {
        const std::int64_t bytes = bytesBefore(file, end);
        if (bytes <= end)
            end -= bytes;
    }
    return end;
}

}
