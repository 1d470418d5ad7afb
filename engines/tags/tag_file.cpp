// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/tag_file.h"

#include "engines/formats/mp3_probe.h"
#include "engines/tags/id3v1.h"
#include "engines/tags/id3v2_read.h"
#include "engines/tags/id3v2_write.h"
#include "engines/tags/tag_parts.h"
#include "engines/tags/tag_text.h"
#include "files/file_swap.h"
#include "files/folders.h"
#include "platform/out_of_memory.h"

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace tags
{

namespace
{

constexpr std::int16_t noGenre = 255;

// A tag that cannot be read says nothing; the next one then answers.
Tag readable(files::ByteSource& file, const Id3v2Header& header)
{
    Tag tag;
    succeeds([&] {
        auto layout = id3v2Layout(file, header);
        tag = readId3v2(layout).tag;
    });
    return tag;
}

Tag tagOf(files::ByteSource& file, TagParts& parts)
{
    Tag tag;
    if (parts.id3v2)
        tag = readable(file, *parts.id3v2);
    if (parts.ape)
        addMissing(tag, readApe(*parts.ape).tag);
    if (!parts.id3v1.empty())
        addMissing(tag, readId3v1(parts.id3v1));
    return tag;
}

// What the formats can hold: valid text in one line, and no genre beyond ID3v1's byte.
Tag storable(Tag tag)
{
    for (Text* text : {&tag.title, &tag.artist, &tag.album, &tag.comment})
        *text = oneLine(upToZero(*text));
    if (tag.genreIndex < 0 || tag.genreIndex >= noGenre)
        tag.genreIndex = -1;
    tag.genreName = "";
    return tag;
}

// How a file reads that says `wanted` now and was `shown` before.
Tag saying(Tag wanted, const Tag& shown)
{
    if (keepsGenreName(wanted, shown)) {
        wanted.genreIndex = -1;
        wanted.genreName = shown.genreName;
    }
    return wanted;
}

Text resolved(const Text& path)
{
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr), std::free);
    if (!target)
        files::failWith("The file could not be opened", errno);
    return target.get();
}

// The tags as they shall be; one that is not set stays as it is.
struct NewTags {
    std::optional<Text> id3v2;
    std::optional<Text> ape;
    Text id3v1;
};

std::optional<Text> newId3v2For(files::ByteSource& file, const TagParts& parts, const Tag& wanted,
                                const Tag& shown)
{
    if (!parts.id3v2)
        return fitsId3v1(wanted) ? std::nullopt : std::optional(newId3v2(changesTo(wanted, {}, shown)));
    auto layout = id3v2Layout(file, *parts.id3v2);
    const auto changes = changesTo(wanted, readId3v2(layout), shown);
    return changes.empty() ? std::nullopt : std::optional(id3v2With(layout, changes));
}

std::optional<Text> newApeFor(TagParts& parts, const Tag& wanted, const Tag& shown)
{
    if (!parts.ape)
        return {};
    const auto changes = changesTo(wanted, readApe(*parts.ape), shown);
    return changes.empty() ? std::nullopt : std::optional(apeWith(*parts.ape, changes));
}

files::NewEnds endsFor(const NewTags& tags, const TagParts& parts, std::uint64_t size)
{
    files::NewEnds ends;
    if (tags.id3v2) {
        ends.head = *tags.id3v2;
        ends.begin = parts.id3v2 ? parts.id3v2->end : 0;
    }
    ends.end = tags.ape ? parts.audioEnd : size - parts.id3v1.size();
    ends.tail = tags.ape.value_or("") + tags.id3v1;
    return ends;
}

bool isMp3(const std::shared_ptr<const files::InputFile>& file)
{
    const auto place = formats::findMp3(file);
    return place && !place->isWrapped;
}

// A file whose tags are damaged in some way that was not foreseen stays as it is.
void requireSaying(const Tag& expected, const Text& path)
{
    const auto file = files::InputFile::open(path);
    if (!file || !isMp3(file) || readTag(path) != expected)
        throw Failure{Trouble::pathOrFileAccess, "Its tags are damaged and cannot be changed."};
}

// Where no copy can be made, and no tag is there or needed that readers would prefer, ID3v1 is written in the
// file itself: it is so short that there is next to no moment for a crash.
void put(const NewTags& tags, const TagParts& parts, const files::StandingFile& file, const Tag& expected,
         PartNotes& notes, const std::function<void()>& step)
{
    files::requireWritable(file);
    Failure refused;
    const auto ends = endsFor(tags, parts, static_cast<std::uint64_t>(file.status.st_size));
    const auto approve = [&](const Text& copy) { requireSaying(expected, copy); };
    if (guarded([&](const Failure& failure) { refused = failure; },
                [&] { files::swapEnds(file, ends, notes, approve, step); }))
        return;
    const bool id3v1Alone = !parts.id3v2 && !parts.ape && !tags.id3v2;
    if (!refused.is(Trouble::permissionDenied) || !id3v1Alone)
        throw refused;
    files::overwriteEnd(file, parts.audioEnd, tags.id3v1);
}

void write(const Text& path, const Tag& wanted, PartNotes& notes, const std::function<void()>& step)
{
    const Text target = resolved(path);
    const auto file = files::isFile(target) ? files::InputFile::open(target) : nullptr;
    if (!file)
        files::failWith("The file could not be opened", files::isFile(target) ? errno : EISDIR);
    files::StandingFile standing{target, file->descriptor(), {}};
    fstat(file->descriptor().number(), &standing.status);
    files::FileBytes bytes(file);
    TagParts parts = tagPartsOf(bytes);
    const Tag shown = tagOf(bytes, parts);

    NewTags tags;
    tags.id3v2 = newId3v2For(bytes, parts, wanted, shown);
    if (!isMp3(file))
        throw Failure{Trouble::pathOrFileAccess, "It is not an MP3 file."};
    tags.ape = newApeFor(parts, wanted, shown);
    tags.id3v1 = id3v1With(wanted, shown, parts.id3v1);
    if (tags.id3v2 || tags.ape || tags.id3v1 != parts.id3v1)
        put(tags, parts, standing, saying(wanted, shown), notes, step);
}

}

Tag readTag(const Text& path)
{
    const auto file = files::InputFile::open(path);
    if (!file || !isMp3(file))
        return {};
    files::FileBytes bytes(file);
    TagParts parts = tagPartsOf(bytes);
    return tagOf(bytes, parts);
}

Text writeTag(const Text& path, const Tag& tag, PartNotes& notes, const std::function<void()>& step)
{
    Text reason;
    toldInWords([&](std::string_view words) { reason = words; },
                [&] { write(path, storable(tag), notes, step); });
    return reason;
}

}
