// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/cddb_answer.h"

#include <algorithm>
#include <charconv>
#include <map>

namespace disc
{

namespace
{

constexpr std::size_t mostTracks = 99;
constexpr std::size_t mostMatches = 100;

enum AnswerCode {
    exactMatch = 200,
    noMatch = 202,
    severalExact = 210,
    severalInexact = 211,
    entryFollows = 210
};

std::string_view untilFirst(std::string_view text, std::string_view end)
{
    return text.substr(0, text.find(end));
}

std::string_view trimmed(std::string_view text) { return withoutBlanks(text, " \t\r\n"); }

std::string_view takeLine(std::string_view& text)
{
    std::string_view line = untilFirst(text, "\n");
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

std::string_view takeWord(std::string_view& line)
{
    const std::string_view word = untilFirst(line, " ");
    line.remove_prefix(std::min(word.size() + 1, line.size()));
    return word;
}

int takeCode(std::string_view& line)
{
    const std::string_view word = takeWord(line);
    int code = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), code);
    return error == std::errc() && end == word.data() + word.size() ? code : 0;
}

bool isIdentifier(std::string_view word)
{
    return !word.empty() && word.size() <= 32 && std::all_of(word.begin(), word.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
}

std::optional<CddbMatch> matchIn(std::string_view line)
{
    const std::string_view category = takeWord(line);
    const std::string_view id = takeWord(line);
    if (!isIdentifier(category) || !isIdentifier(id))
        return std::nullopt;
    return CddbMatch{Text(category), Text(id)};
}

// The lines before the one that holds a dot alone; nothing when that one is missing.
std::optional<std::vector<std::string_view>> linesBeforeDot(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (line == ".")
            return lines;
        lines.push_back(line);
    }
    return std::nullopt;
}

std::optional<std::vector<CddbMatch>> listedMatches(std::string_view text)
{
    const auto lines = linesBeforeDot(text);
    if (!lines)
        return std::nullopt;
    std::vector<CddbMatch> matches;
    for (const std::string_view line : *lines)
        if (const auto match = matchIn(line); match && matches.size() < mostMatches)
            matches.push_back(*match);
    return matches;
}

Text fromLatin1(std::string_view text)
{
    Text utf8;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
            continue;
        }
        utf8 += static_cast<char>(0xC0 | byte >> 6);
        utf8 += static_cast<char>(0x80 | (byte & 0x3F));
    }
    return utf8;
}

char escaped(char c) { return c == 'n' || c == 't' ? ' ' : c; }

// A title is shown in one line and becomes a file's name: line breaks, tabs and other control characters are
// blanks.
Text oneLine(std::string_view text)
{
    Text line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escapes = text[i] == '\\' && i + 1 < text.size();
        const char c = escapes ? escaped(text[++i]) : text[i];
        const auto byte = static_cast<unsigned char>(c);
        line += byte < 0x20 || byte == 0x7F ? ' ' : c;
    }
    return line;
}

// Controls beyond ASCII, line separators, and what turns the direction of writing: a name that reads
// backwards would pass for another.
bool isUnseen(std::string_view character)
{
    constexpr std::string_view separatorsAndTurns[] = {"\u2028", "\u2029", "\u202A", "\u202B",
                                                       "\u202C", "\u202D", "\u202E", "\u2066",
                                                       "\u2067", "\u2068", "\u2069"};
    const bool isControl = character.size() == 2 && character[0] == '\xC2' && character[1] < '\xA0';
    return isControl || std::ranges::find(separatorsAndTurns, character) != std::end(separatorsAndTurns);
}

Text withoutUnseen(std::string_view text)
{
    Text seen;
    for (std::size_t at = 0, bytes = 0; (bytes = characterBytes(text, at)) != 0; at += bytes) {
        const auto character = text.substr(at, bytes);
        seen += isUnseen(character) ? " " : character;
    }
    return seen;
}

// Older entries are in Latin-1, some in both.
Text title(std::string_view value)
{
    const Text line = oneLine(value);
    return Text(trimmed(withoutUnseen(isValidUtf8(line) ? line : fromLatin1(line))));
}

// KEY=value lines; a key's value goes on where its next line begins.
std::map<Text, Text> valuesIn(const std::vector<std::string_view>& lines)
{
    std::map<Text, Text> values;
    for (const std::string_view line : lines) {
        const std::string_view key = untilFirst(line, "=");
        if (key.size() < line.size() && !key.starts_with('#'))
            values[Text(key)] += line.substr(key.size() + 1);
    }
    return values;
}

std::vector<Text> trackTitles(const std::map<Text, Text>& values)
{
    std::vector<Text> titles;
    for (std::size_t track = 0; track < mostTracks; ++track) {
        const auto value = values.find("TTITLE" + std::to_string(track));
        titles.push_back(value == values.end() ? "" : title(value->second));
    }
    while (!titles.empty() && titles.back().empty())
        titles.pop_back();
    return titles;
}

}

std::optional<std::vector<CddbMatch>> matchesIn(std::string_view answer)
{
    std::string_view line = takeLine(answer);
    switch (takeCode(line)) {
    case exactMatch:
        if (const auto match = matchIn(line))
            return std::vector{*match};
        return std::nullopt;
    case noMatch:
        return std::vector<CddbMatch>{};
    case severalExact:
    case severalInexact:
        return listedMatches(answer);
    default:
        return std::nullopt;
    }
}

std::optional<DiscTitles> titlesIn(std::string_view answer)
{
    std::string_view line = takeLine(answer);
    if (takeCode(line) != entryFollows)
        return std::nullopt;
    const auto lines = linesBeforeDot(answer);
    if (!lines)
        return std::nullopt;
    auto values = valuesIn(*lines);
    if (!values.contains("DTITLE"))
        return std::nullopt;
    const Text disc = title(values["DTITLE"]);
    return DiscTitles{Text(trimmed(untilFirst(disc, " / "))), trackTitles(values)};
}

}
