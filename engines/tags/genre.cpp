#include "engines/tags/genre.h"

#include <array>
#include <charconv>

#include <id3v1genres.h>

namespace
{

constexpr std::int16_t named = 192;

struct Spelling {
    std::int16_t genre;
    const char* name;
};

// Where the usual names (ID3v2.3, appendix A, as players show them) are not TagLib's.
constexpr Spelling spellings[] = {
    {29, "Jazz+Funk"}, {40, "AlternRock"}, {67, "Psychadelic"}, {80, "Unknown"}};

std::array<Text, named> usualNames()
{
    std::array<Text, named> names;
    for (std::int16_t genre = 0; genre < named; ++genre)
        names[genre] = TagLib::ID3v1::genre(genre).to8Bit(true);
    for (const auto& spelling : spellings)
        names[spelling.genre] = spelling.name;
    return names;
}

// Letters and digits alone: "Hip Hop" and "hip-hop" are one name.
Text bare(std::string_view name)
{
    Text letters;
    for (const char c : lowerCase(name))
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (c & 0x80) != 0)
            letters += c;
    return letters;
}

std::array<Text, named> bareNames(Text (*name)(std::int16_t))
{
    std::array<Text, named> names;
    for (std::int16_t genre = 0; genre < named; ++genre)
        names[genre] = bare(name(genre));
    return names;
}

std::int16_t find(const std::array<Text, named>& names, const Text& name)
{
    for (std::int16_t genre = 0; genre < named; ++genre)
        if (names[genre] == name)
            return genre;
    return -1;
}

std::int16_t numberOfName(std::string_view name)
{
    static const auto usual = bareNames(genreName);
    static const auto others =
        bareNames([](std::int16_t genre) -> Text { return TagLib::ID3v1::genre(genre).to8Bit(true); });
    const Text wanted = bare(name);
    if (wanted.empty())
        return -1;
    const std::int16_t genre = find(usual, wanted);
    return genre >= 0 ? genre : find(others, wanted);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t digitsIn(std::string_view text)
{
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count]))
        ++count;
    return count;
}

std::int16_t leadingNumber(std::string_view text)
{
    std::int16_t genre = -1;
    std::from_chars(text.data(), text.data() + digitsIn(text), genre);
    return genre < 255 ? genre : -1;
}

std::string_view withoutBlanks(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}

Text genreName(std::int16_t genre)
{
    static const auto names = usualNames();
    return genre >= 0 && genre < named ? names[genre] : "";
}

std::int16_t genreNumber(std::string_view text)
{
    text = withoutBlanks(text);
    const std::size_t digits = digitsIn(text);
    if (digits > 0 && digits == text.size())
        return leadingNumber(text);
    if (text.empty() || text.front() != '(')
        return numberOfName(text);
    const std::string_view inside = text.substr(1);
    const std::size_t inner = digitsIn(inside);
    if (inner > 0 && inner < inside.size() && inside[inner] == ')')
        return leadingNumber(inside);
    return numberOfName(text);
}
