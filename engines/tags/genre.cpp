// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/genre.h"

#include <array>
#include <charconv>

namespace tags
{

namespace
{

// The numbers of ID3v1 and those that players have agreed on since.
// clang-format off
constexpr std::array<const char*, 192> names = {
    "Blues", "Classic Rock", "Country", "Dance", "Disco", "Funk", "Grunge", "Hip-Hop", "Jazz", "Metal",
    "New Age", "Oldies", "Other", "Pop", "R&B", "Rap", "Reggae", "Rock", "Techno", "Industrial",
    "Alternative", "Ska", "Death Metal", "Pranks", "Soundtrack", "Euro-Techno", "Ambient", "Trip-Hop",
    "Vocal", "Jazz+Funk", "Fusion", "Trance", "Classical", "Instrumental", "Acid", "House", "Game",
    "Sound Clip", "Gospel", "Noise", "AlternRock", "Bass", "Soul", "Punk", "Space", "Meditative",
    "Instrumental Pop", "Instrumental Rock", "Ethnic", "Gothic", "Darkwave", "Techno-Industrial",
    "Electronic", "Pop-Folk", "Eurodance", "Dream", "Southern Rock", "Comedy", "Cult", "Gangsta", "Top 40",
    "Christian Rap", "Pop/Funk", "Jungle", "Native American", "Cabaret", "New Wave", "Psychadelic", "Rave",
    "Showtunes", "Trailer", "Lo-Fi", "Tribal", "Acid Punk", "Acid Jazz", "Polka", "Retro", "Musical",
    "Rock & Roll", "Hard Rock", "Unknown", "Folk Rock", "National Folk", "Swing", "Fast Fusion", "Bebop",
    "Latin", "Revival", "Celtic", "Bluegrass", "Avant-garde", "Gothic Rock", "Progressive Rock",
    "Psychedelic Rock", "Symphonic Rock", "Slow Rock", "Big Band", "Chorus", "Easy Listening", "Acoustic",
    "Humour", "Speech", "Chanson", "Opera", "Chamber Music", "Sonata", "Symphony", "Booty Bass", "Primus",
    "Porn Groove", "Satire", "Slow Jam", "Club", "Tango", "Samba", "Folklore", "Ballad", "Power Ballad",
    "Rhythmic Soul", "Freestyle", "Duet", "Punk Rock", "Drum Solo", "A Cappella", "Euro-House", "Dancehall",
    "Goa", "Drum & Bass", "Club-House", "Hardcore Techno", "Terror", "Indie", "Britpop", "Worldbeat",
    "Polsk Punk", "Beat", "Christian Gangsta Rap", "Heavy Metal", "Black Metal", "Crossover",
    "Contemporary Christian", "Christian Rock", "Merengue", "Salsa", "Thrash Metal", "Anime", "Jpop",
    "Synthpop", "Abstract", "Art Rock", "Baroque", "Bhangra", "Big Beat", "Breakbeat", "Chillout",
    "Downtempo", "Dub", "EBM", "Eclectic", "Electro", "Electroclash", "Emo", "Experimental", "Garage",
    "Global", "IDM", "Illbient", "Industro-Goth", "Jam Band", "Krautrock", "Leftfield", "Lounge",
    "Math Rock", "New Romantic", "Nu-Breakz", "Post-Punk", "Post-Rock", "Psytrance", "Shoegaze",
    "Space Rock", "Trop Rock", "World Music", "Neoclassical", "Audiobook", "Audio Theatre",
    "Neue Deutsche Welle", "Podcast", "Indie Rock", "G-Funk", "Dubstep", "Garage Rock", "Psybient",
};
// clang-format on

constexpr std::int16_t named = names.size();
constexpr std::int16_t lastRow = 80; // of those that the tag editor has

struct Spelling {
    std::int16_t genre;
    const char* name;
};

// What later programs call the genres that the first list misspelt.
constexpr Spelling laterSpellings[] = {{40, "Alternative Rock"}, {67, "Psychedelic"}};

// Letters and digits alone: "Hip Hop" and "hip-hop" are one name.
Text bare(std::string_view name)
{
    Text letters;
    for (const char c : lowerCase(name))
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (c & 0x80) != 0)
            letters += c;
    return letters;
}

std::int16_t numberOfName(std::string_view name)
{
    const Text wanted = bare(name);
    for (std::int16_t genre = 0; genre <= lastRow; ++genre)
        if (!wanted.empty() && bare(names[static_cast<std::size_t>(genre)]) == wanted)
            return genre;
    for (const auto& spelling : laterSpellings)
        if (bare(spelling.name) == wanted)
            return spelling.genre;
    return -1;
}

// "17", "(17)" and "(17)Hard" begin with a number; any other text is a name alone.
struct GenreText {
    std::string_view number;
    std::string_view name;
};

std::string_view digitsIn(std::string_view text)
{
    return text.substr(0, text.find_first_not_of("0123456789"));
}

GenreText parted(std::string_view text)
{
    text = withoutBlanks(text);
    if (digitsIn(text) == text)
        return {text, {}};
    if (!text.starts_with('('))
        return {{}, text};
    const auto number = digitsIn(text.substr(1));
    const auto rest = text.substr(1 + number.size());
    const bool isClosed = !number.empty() && rest.starts_with(')');
    return isClosed ? GenreText{number, withoutBlanks(rest.substr(1))} : GenreText{{}, text};
}

// -1 for 255, the standards' own "none", and for what is no genre's number.
std::int16_t genreOf(std::string_view digits)
{
    int number = -1; // and so it stays where the digits are too many
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number < 255 ? static_cast<std::int16_t>(number) : std::int16_t{-1};
}

}

Text genreName(std::int16_t genre)
{
    return genre >= 0 && genre < named ? names[static_cast<std::size_t>(genre)] : "";
}

std::int16_t genreNumber(std::string_view text)
{
    const auto [number, name] = parted(text);
    return number.empty() ? numberOfName(name) : genreOf(number);
}

Text genreWithoutNumber(std::string_view text)
{
    const auto name = parted(text).name;
    return genreNumber(text) >= 0 || digitsIn(name) == name ? Text() : Text(name);
}

}
