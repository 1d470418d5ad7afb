// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the head and the tail of an MP3 file: reading its tags ends, and writing them changes nothing
// else, or nothing at all.
//
// An input is the head of a file and its tail, with four MP3 frames between them, so that the file stays one
// worth reading: a byte for the new tag, two for the length of the head, then both.
#include "engines/tags/tag_file.h"

#include "engines/tags/tag_parts.h"
#include "tests/fuzz/input.h"
#include "tests/support/mp3_files.h"

#include <algorithm>

using namespace tags;

namespace
{

const Text audio = mp3Frames(4);

const Tag newTags[] = {
    {"Title", "Artist", "Album", "Comment", 1987, 17},
    {"\xD0\x9F\xD1\x80\xD0\xB8", "caf\xC3\xA9", "", " ", 0, 80},
    {Text(60, 'x'), "", "\xF0\x9F\x8E\xB5", Text(29, 'c'), 32767, -1},
    {},
};

// A genre without a number stays under 80 and under none.
Tag saying(Tag wanted, const Tag& shown)
{
    if (!shown.genreName.empty() && (wanted.genreIndex == 80 || wanted.genreIndex == -1)) {
        wanted.genreIndex = -1;
        wanted.genreName = shown.genreName;
    }
    return wanted;
}

Text fileOf(const Text& input)
{
    const auto length = static_cast<std::size_t>(static_cast<unsigned char>(input[1]) << 8 |
                                                 static_cast<unsigned char>(input[2]));
    const std::size_t head = std::min(length, input.size() - 3);
    return input.substr(3, head) + audio + input.substr(3 + head);
}

// What lies between the tags; a damaged tag may claim some of the frames.
Text soundIn(const Text& file)
{
    files::BytesInMemory bytes(file);
    const TagParts parts = tagPartsOf(bytes);
    const std::uint64_t begin = parts.id3v2 ? parts.id3v2->end : 0;
    return begin < parts.audioEnd ? file.substr(begin, parts.audioEnd - begin) : "";
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const Text input(asText(data, size));
    const Text before = fileOf(input);
    const Text path = putSong(memory(), before);
    const Tag shown = readTag(path);
    for (const Text* text : {&shown.title, &shown.artist, &shown.album, &shown.comment, &shown.genreName})
        require(isValidUtf8(*text) && text->find_first_of("\r\n") == Text::npos,
                "a field is no line of text");

    Tag wanted = newTags[data[0] & 3];
    if ((data[0] & 4) != 0)
        wanted.title = shown.title;
    const Text reason = writeTag(path, wanted);
    const Text after = fileBytes(path);
    require(namesInFolder(memory().path()).size() == 1, "a copy stayed");
    require(after.find(soundIn(before)) != Text::npos, "the audio is damaged");
    if (reason.empty())
        require(readTag(path) == saying(wanted, shown), "the tag does not say what it should");
    else
        require(after == before, "a refused file has changed");
    return 0;
}
