// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/id3v1.h"

#include "engines/tags/tag_text.h"

#include <algorithm>

namespace tags
{

namespace
{

struct FixedField {
    std::size_t at;
    std::size_t size;
};

// clang-format off
constexpr FixedField titlePlace  {  3, 30};
constexpr FixedField artistPlace { 33, 30};
constexpr FixedField albumPlace  { 63, 30};
constexpr FixedField yearPlace   { 93,  4};
constexpr FixedField wholeComment{ 97, 30};
constexpr FixedField shortComment{ 97, 28}; // ID3v1.1: a zero and the track number follow
constexpr std::size_t trackAt = 126;
constexpr std::size_t genreAt = 127;
// clang-format on

constexpr unsigned char noGenre = 255;

std::string_view bytesAt(std::string_view block, FixedField place)
{
    return block.substr(place.at, place.size);
}

// A field without a closing zero is padded with blanks.
Text textAt(std::string_view block, FixedField place)
{
    std::string_view bytes = upToZero(bytesAt(block, place));
    if (bytes.size() == place.size)
        bytes = bytes.substr(0, bytes.find_last_not_of(' ') + 1);
    return oneLine(utf8OfUnstated(bytes));
}

bool hasTrack(std::string_view block) { return block[trackAt - 1] == '\0' && block[trackAt] != '\0'; }

FixedField commentPlace(std::string_view block) { return hasTrack(block) ? shortComment : wholeComment; }

void put(Text& block, FixedField place, std::string_view bytes)
{
    Text field(bytes.substr(0, place.size));
    field.resize(place.size, '\0');
    block.replace(place.at, place.size, field);
}

void putText(Text& block, FixedField place, const Text& wanted, const Text& shown)
{
    const Text held = textAt(block, place);
    const bool keptAsItWas = wanted == shown && !held.empty() && !isLatin1(wanted);
    if (held != wanted && !keptAsItWas)
        put(block, place, toLatin1(wanted));
}

// A year of more than four characters would be cut to another year: none is better.
void putYear(Text& block, std::int16_t wanted)
{
    if (yearOf(upToZero(bytesAt(block, yearPlace))) == wanted)
        return;
    const Text digits = yearText(wanted);
    put(block, yearPlace, digits.size() > yearPlace.size ? "" : digits);
}

// A comment that is cut anyway has no better use for the bytes of the track number.
bool needsTrackBytes(const Text& comment)
{
    const std::size_t length = characterCount(comment);
    return length > shortComment.size && length <= wholeComment.size;
}

void putComment(Text& block, const Text& wanted, const Text& shown)
{
    const bool overTrack = wanted != shown && needsTrackBytes(wanted);
    putText(block, overTrack ? wholeComment : commentPlace(block), wanted, shown);
}

Text emptyBlock()
{
    Text block(id3v1Size, '\0');
    block.replace(0, 3, "TAG");
    block[genreAt] = static_cast<char>(noGenre);
    return block;
}

}

bool isId3v1(std::string_view block) { return block.size() == id3v1Size && block.substr(0, 3) == "TAG"; }

Tag readId3v1(std::string_view block)
{
    const auto genre = static_cast<unsigned char>(block[genreAt]);
    Tag tag;
    tag.title = textAt(block, titlePlace);
    tag.artist = textAt(block, artistPlace);
    tag.album = textAt(block, albumPlace);
    tag.comment = textAt(block, commentPlace(block));
    tag.year = yearOf(upToZero(bytesAt(block, yearPlace)));
    tag.genreIndex = genre == noGenre ? std::int16_t{-1} : genre;
    return tag;
}

Text id3v1With(const Tag& wanted, const Tag& shown, std::string_view block)
{
    Text result = block.empty() ? emptyBlock() : Text(block);
    putText(result, titlePlace, wanted.title, shown.title);
    putText(result, artistPlace, wanted.artist, shown.artist);
    putText(result, albumPlace, wanted.album, shown.album);
    putComment(result, wanted.comment, shown.comment);
    putYear(result, wanted.year);
    const bool hasPlace = wanted.genreIndex >= 0; // and below 255, as no tag holds more
    if (hasPlace || shown.genreName.empty())
        result[genreAt] = static_cast<char>(hasPlace ? wanted.genreIndex : noGenre);
    return result;
}

bool fitsId3v1(const Tag& tag) { return readId3v1(id3v1With(tag, Tag(), "")) == tag; }

}
