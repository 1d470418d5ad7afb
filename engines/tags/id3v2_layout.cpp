// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/id3v2_layout.h"

#include "engines/formats/mp3_tags.h"
#include "platform/byte_order.h"
#include "platform/failure.h"

#include <algorithm>

namespace tags
{

namespace
{

constexpr std::size_t headerSize = 10;
constexpr std::size_t mostFrames = 10'000;
constexpr std::uint64_t longestText = 64 * 1024;
constexpr std::uint32_t longestScrambled = 64 << 20;

constexpr unsigned extendedHeaderFlag = 0x40; // of the tag

// Of a frame of ID3v2.4.
constexpr unsigned unsynchronisedFrame = 0x02;
constexpr unsigned hasLength = 0x01;
constexpr std::size_t lengthSize = 4;

struct ShortName {
    const char* id;
    const char* before; // in ID3v2.2
};

// clang-format off
constexpr ShortName shortNames[] = {
    {"TIT2", "TT2"}, {"TPE1", "TP1"}, {"TALB", "TAL"}, {"TYER", "TYE"}, {"TCON", "TCO"}, {"COMM", "COM"},
};
// clang-format on

Text nameOf(const Text& id)
{
    for (const auto& name : shortNames)
        if (id == name.before)
            return name.id;
    return id;
}

Text shortNameOf(const Text& id) { return std::ranges::find(shortNames, id, &ShortName::id)->before; }

std::size_t idSize(int version) { return version == 2 ? 3 : 4; }

std::size_t frameHeaderSize(int version) { return version == 2 ? 6 : headerSize; }

bool isId(std::string_view id, int version)
{
    const auto fits = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); };
    return id.size() == idSize(version) && std::all_of(id.begin(), id.end(), fits);
}

// Whether a next frame, padding or the end is at `at`.
bool goesOnAt(files::ByteSource& body, std::uint64_t at)
{
    const Text next = body.read(at, idSize(4));
    return at == body.size() || isId(next, 4) || (at < body.size() && next.front() == '\0');
}

// Some programs store plain sizes in ID3v2.4. Where only that leads to a next frame, it is meant.
std::uint64_t contentSize4(files::ByteSource& body, std::uint64_t at, std::string_view size)
{
    const std::uint64_t plain = fromBigEndian(size);
    if (!isSyncSafe(size))
        return plain;
    const std::uint64_t safe = fromSyncSafe(size);
    if (safe != plain && !goesOnAt(body, at + headerSize + safe) && goesOnAt(body, at + headerSize + plain))
        return plain;
    return safe;
}

std::uint64_t contentSize(files::ByteSource& body, std::uint64_t at, int version, std::string_view header)
{
    const std::string_view size = header.substr(idSize(version), version == 2 ? 3 : 4);
    return version == 4 ? contentSize4(body, at, size) : fromBigEndian(size);
}

// Neither encrypted nor grouped nor compressed: no program makes such text frames, but one who means harm
// might.
bool isReadable(int version, std::string_view header, std::uint64_t size)
{
    const unsigned flags = version == 2 ? 0 : valueOf(header[9]);
    return (flags & (version == 4 ? 0x4Cu : 0xE0u)) == 0 && size <= longestText;
}

std::optional<Id3v2Frame> frameAt(files::ByteSource& body, std::uint64_t at, int version)
{
    const Text header = body.read(at, frameHeaderSize(version));
    if (header.size() < frameHeaderSize(version) || !isId(header.substr(0, idSize(version)), version))
        return {};
    const std::uint64_t size = header.size() + contentSize(body, at, version, header);
    if (size > body.size() - at)
        return {};
    return Id3v2Frame{nameOf(header.substr(0, idSize(version))), at, size, isReadable(version, header, size)};
}

// 2.3 does not count the four bytes that say its size, 2.4 does.
std::uint64_t extendedHeaderSize(const Id3v2Layout& layout)
{
    const Text size = layout.body->read(0, 4);
    const std::uint64_t whole =
        layout.header.version == 3 ? std::uint64_t{4} + fromBigEndian(size) : fromSyncSafe(size);
    const std::uint64_t least = layout.header.version == 3 ? 10 : 6;
    if (whole < least || whole > layout.body->size())
        refuse("Its ID3v2 tag is damaged.");
    return whole;
}

// Some programs announce an extended header and go on with the first frame, or with padding. No extended
// header begins like one of these: it would be longer than any tag, or of no length.
bool beginsWithFrames(const Id3v2Layout& layout)
{
    const Text start = layout.body->read(0, idSize(layout.header.version));
    return isId(start, layout.header.version) || start == Text(4, '\0');
}

// The flag goes where it is not true: a written tag must not mislead the next reader.
void takeExtendedHeader(Id3v2Layout& layout)
{
    if (beginsWithFrames(layout))
        layout.header.bytes[5] = static_cast<char>(valueOf(layout.header.bytes[5]) & ~extendedHeaderFlag);
    else
        layout.framesBegin = extendedHeaderSize(layout);
}

Text resynchronised(std::string_view stored)
{
    Text body;
    for (std::size_t at = 0; at < stored.size(); ++at) {
        body += stored[at];
        if (valueOf(stored[at]) == 0xFF && at + 1 < stored.size() && stored[at + 1] == '\0')
            ++at;
    }
    return body;
}

void takeBody(Id3v2Layout& layout, files::ByteSource& file)
{
    const auto& header = layout.header;
    const std::uint64_t at = header.end - (header.hasFooter() ? headerSize : 0) - header.size;
    if (!header.isScrambled()) {
        layout.body = std::make_unique<files::StretchOfBytes>(file, at, header.size);
        return;
    }
    if (header.size > longestScrambled)
        refuse("Its ID3v2 tag is too long.");
    const Text stored = file.readAll(at, header.size);
    const Text body = resynchronised(stored);
    layout.isFaithful = unsynchronised(body) == stored;
    layout.body = std::make_unique<files::BytesInMemory>(body);
}

void takeFrames(Id3v2Layout& layout)
{
    layout.framesEnd = layout.framesBegin;
    while (layout.frames.size() < mostFrames) {
        auto frame = frameAt(*layout.body, layout.framesEnd, layout.header.version);
        if (!frame)
            break;
        layout.framesEnd += frame->size;
        layout.frames.push_back(std::move(*frame));
    }
}

void checkForm(files::ByteSource& file, const Id3v2Header& header)
{
    if (header.end > file.size())
        refuse("Its ID3v2 tag is longer than the file.");
    const bool packed = header.version == 2 && (valueOf(header.bytes[5]) & 0x40) != 0;
    if (header.version < 2 || header.version > 4 || packed)
        refuse("Its ID3v2 tag has a form that Velmora does not know.");
}

}

void refuse(const Text& reason) { throw Failure{Trouble::pathOrFileAccess, reason}; }

bool Id3v2Header::saysScrambled() const { return (valueOf(bytes[5]) & 0x80) != 0; }

bool Id3v2Header::isScrambled() const { return version < 4 && saysScrambled(); }

bool Id3v2Header::hasExtendedHeader() const
{
    return version > 2 && (valueOf(bytes[5]) & extendedHeaderFlag) != 0;
}

bool Id3v2Header::hasFooter() const { return version == 4 && (valueOf(bytes[5]) & 0x10) != 0; }

std::optional<Id3v2Header> id3v2HeaderAt(files::ByteSource& file, std::uint64_t at)
{
    Id3v2Header header{file.read(at, headerSize)};
    const auto bytes = formats::id3v2Bytes(header.bytes);
    if (bytes == 0)
        return {};
    header.version = static_cast<int>(valueOf(header.bytes[3]));
    header.size = fromSyncSafe(header.bytes.substr(6));
    header.end = at + static_cast<std::uint64_t>(bytes);
    return header;
}

Id3v2Layout id3v2Layout(files::ByteSource& file, const Id3v2Header& header)
{
    checkForm(file, header);
    Id3v2Layout layout;
    layout.header = header;
    takeBody(layout, file);
    if (header.hasExtendedHeader())
        takeExtendedHeader(layout);
    takeFrames(layout);
    return layout;
}

Text frameContent(Id3v2Layout& layout, const Id3v2Frame& frame)
{
    const Id3v2Header& tag = layout.header;
    Text bytes = layout.body->read(frame.at, frame.size);
    if (bytes.size() < frame.size)
        return {};
    const unsigned flags = tag.version == 4 ? valueOf(bytes[9]) : 0;
    bytes.erase(0, frameHeaderSize(tag.version) + ((flags & hasLength) != 0 ? lengthSize : 0));
    const bool isScrambled = tag.version == 4 && ((flags & unsynchronisedFrame) != 0 || tag.saysScrambled());
    return isScrambled ? resynchronised(bytes) : bytes;
}

Text makeFrame(int version, const Text& id, const Text& content)
{
    if (content.size() + headerSize > longestText)
        refuse("A text is too long for an ID3v2 tag.");
    const auto size = static_cast<std::uint32_t>(content.size());
    if (version == 2)
        return shortNameOf(id) + toBigEndian(size, 3) + content;
    return id + (version == 4 ? toSyncSafe(size) : toBigEndian(size)) + Text(2, '\0') + content;
}

Text unsynchronised(std::string_view body)
{
    Text result;
    for (std::size_t at = 0; at < body.size(); ++at) {
        result += body[at];
        const unsigned next = at + 1 < body.size() ? valueOf(body[at + 1]) : 0;
        if (valueOf(body[at]) == 0xFF && (next >= 0xE0 || next == 0))
            result += '\0';
    }
    return result;
}

}
