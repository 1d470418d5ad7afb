// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/id3v2_write.h"

#include "engines/tags/id3v2_read.h"
#include "engines/tags/tag_text.h"
#include "platform/byte_order.h"

#include <algorithm>
#include <map>
#include <utility>

#include <zlib.h>

namespace tags
{

namespace
{

constexpr std::size_t roomForMore = 2048;

// The frames of a tag while it changes: some replaced, an empty one gone, and new ones behind them.
struct Rewriting {
    std::map<std::size_t, Text> replaced;
    Text added;
};

constexpr char latin1 = 0;
constexpr char utf16 = 1;
constexpr char utf8 = 3;

constexpr unsigned checksumSize4 = 5;

// Not Latin-1, which many readers take for their own code page. UTF-8 since 2.4: it has no byte that
// unsynchronisation would change.
char encodingFor(std::string_view text, int version)
{
    if (isAscii(text))
        return latin1;
    return version == 4 ? utf8 : utf16;
}

Text encoded(std::string_view text, char encoding) { return encoding == utf16 ? toUtf16(text) : Text(text); }

Text textContent(const Text& text, int version)
{
    const char encoding = encodingFor(text, version);
    return encoding + encoded(text, encoding);
}

Text commentContent(const Text& text, const Text& language, int version)
{
    const char encoding = encodingFor(text, version);
    const Text noDescription = encoded("", encoding) + Text(encoding == utf16 ? 2 : 1, '\0');
    return encoding + language + noDescription + encoded(text, encoding);
}

void requireReadable(const Id3v2Frame& frame)
{
    if (!frame.readable)
        refuse("Its ID3v2 tag has an encrypted, compressed or overlong " + frame.id + " frame.");
}

// One frame of a kind remains: readers differ in which of several they take.
void changeText(Rewriting& rewriting, const Id3v2Layout& layout, const FieldChange& change)
{
    const int version = layout.header.version;
    const auto names = id3v2Names(change.field, version);
    Text frame =
        change.text.empty() ? "" : makeFrame(version, names.front(), textContent(change.text, version));
    for (std::size_t i = 0; i < layout.frames.size(); ++i) {
        if (std::find(names.begin(), names.end(), layout.frames[i].id) == names.end())
            continue;
        requireReadable(layout.frames[i]);
        rewriting.replaced[i] = std::exchange(frame, "");
    }
    rewriting.added += frame;
}

// Comments with a description stay. An emptied comment leaves an empty frame where one of them would answer
// for it.
void changeComment(Rewriting& rewriting, Id3v2Layout& layout, const Text& text)
{
    const int version = layout.header.version;
    const auto comments = id3v2Comments(layout);
    const auto plain = std::find_if(comments.begin(), comments.end(), isPlain);
    const bool isThere = plain != comments.end();
    const std::size_t others = comments.size() - (isThere ? 1 : 0);
    const Text language = isThere && plain->language.size() == 3 ? plain->language : "XXX";
    const Text content = commentContent(text, language, version);
    const Text frame = text.empty() && others == 0 ? "" : makeFrame(version, "COMM", content);
    if (isThere)
        rewriting.replaced[plain->frame] = frame;
    else
        rewriting.added += frame;
}

// Before 2.4, brackets tell a genre's number from a name.
FieldChange bracketed(FieldChange change, int version)
{
    const bool isNumber = !change.text.empty() && change.text.find_first_not_of("0123456789") == Text::npos;
    if (change.field == Field::Genre && isNumber && version < 4)
        change.text = "(" + change.text + ")";
    return change;
}

Rewriting rewritingFor(Id3v2Layout& layout, const std::vector<FieldChange>& changes)
{
    Rewriting rewriting;
    for (const auto& change : changes)
        if (change.field == Field::Comment)
            changeComment(rewriting, layout, change.text);
        else
            changeText(rewriting, layout, bracketed(change, layout.header.version));
    return rewriting;
}

Text framesWith(Id3v2Layout& layout, const Rewriting& rewriting)
{
    Text body = layout.body->readAll(0, layout.framesBegin);
    for (std::size_t i = 0; i < layout.frames.size(); ++i) {
        const auto replaced = rewriting.replaced.find(i);
        const auto& frame = layout.frames[i];
        body += replaced == rewriting.replaced.end() ? layout.body->readAll(frame.at, frame.size)
                                                     : replaced->second;
    }
    return body + rewriting.added;
}

// What lies behind the frames: nothing when it is padding, otherwise something that is not ours to drop.
Text remainsOf(Id3v2Layout& layout)
{
    Text rest = layout.body->readAll(layout.framesEnd, layout.body->size() - layout.framesEnd);
    return rest.find_first_not_of('\0') == Text::npos ? "" : rest;
}

// A tag that grows gets some room, so that its next change finds a place. None comes before a footer, nor
// behind remains: these may be a frame cut short, which would then become a longer one. Nor where its count,
// in the extended header, would have to be unsynchronised with the rest.
std::size_t paddingFor(const Id3v2Header& header, std::size_t size, const Text& remains)
{
    if (header.hasFooter() || !remains.empty() || (header.isScrambled() && header.hasExtendedHeader()))
        return 0;
    return size <= header.size ? header.size - size : roomForMore;
}

std::uint32_t checksumOf(std::string_view frames, std::size_t padding)
{
    const auto sum = [](uLong before, std::string_view bytes) {
        return crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    };
    return static_cast<std::uint32_t>(sum(sum(crc32_z(0, nullptr, 0), frames), Text(padding, '\0')));
}

void renew(Text& header, std::size_t at, const Text& bytes)
{
    if (at + bytes.size() > header.size())
        refuse("Its ID3v2 tag is damaged.");
    header.replace(at, bytes.size(), bytes);
}

// 2.3 counts the padding, and its checksum covers the frames alone.
void renewExtendedHeader3(Text& header, std::string_view frames, std::size_t padding)
{
    renew(header, 6, toBigEndian(padding));
    if ((valueOf(header[4]) & 0x80) != 0)
        renew(header, 10, toBigEndian(checksumOf(frames, 0)));
}

// The checksum of 2.4 covers the padding, too. It takes five bytes, behind one that counts them; before it
// stands what says that the tag is an update, a zero.
void renewExtendedHeader4(Text& header, std::string_view frames, std::size_t padding)
{
    const unsigned flags = valueOf(header[5]);
    if ((flags & 0x20) == 0)
        return;
    const std::uint32_t sum = checksumOf(frames, padding);
    const std::size_t at = (flags & 0x40) != 0 ? 7 : 6;
    if (header.size() <= at || valueOf(header[at]) != checksumSize4)
        refuse("Its ID3v2 tag is damaged.");
    renew(header, at + 1, Text(1, static_cast<char>(sum >> 28)) + toSyncSafe(sum));
}

// `body` without its padding.
void renewExtendedHeader(Text& body, const Id3v2Layout& layout, std::size_t padding)
{
    const auto size = static_cast<std::size_t>(layout.framesBegin);
    Text header = body.substr(0, size);
    const std::string_view frames = std::string_view(body).substr(size);
    (layout.header.version == 3 ? renewExtendedHeader3 : renewExtendedHeader4)(header, frames, padding);
    body.replace(0, size, header);
}

Text wholeTag(const Id3v2Header& header, const Text& body)
{
    if (body.size() >= syncSafeLimit)
        refuse("Its ID3v2 tag would become too long.");
    Text bytes = header.bytes;
    bytes.replace(6, 4, toSyncSafe(static_cast<std::uint32_t>(body.size())));
    return bytes + body + (header.hasFooter() ? "3DI" + bytes.substr(3) : "");
}

}

Text id3v2With(Id3v2Layout& layout, const std::vector<FieldChange>& changes)
{
    const Id3v2Header& header = layout.header;
    if (!layout.isFaithful)
        refuse("Its ID3v2 tag is not stored in the way it says.");
    const Text remains = remainsOf(layout);
    Text body = framesWith(layout, rewritingFor(layout, changes)) + remains;
    const std::size_t size = header.isScrambled() ? unsynchronised(body).size() : body.size();
    const std::size_t padding = paddingFor(header, size, remains);
    if (header.hasExtendedHeader())
        renewExtendedHeader(body, layout, padding);
    if (header.isScrambled())
        body = unsynchronised(body);
    return wholeTag(header, body + Text(padding, '\0'));
}

Text newId3v2(const std::vector<FieldChange>& changes)
{
    Id3v2Layout empty;
    empty.header.version = 3;
    empty.header.bytes = Text("ID3\3\0\0\0\0\0\0", 10);
    empty.body = std::make_unique<files::BytesInMemory>("");
    return id3v2With(empty, changes);
}

}
