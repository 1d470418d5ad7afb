// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/tag_text.h"

#include <algorithm>
#include <charconv>

namespace tags
{

namespace
{

char32_t characterOf(std::string_view sequence)
{
    const auto lead = static_cast<unsigned char>(sequence.front());
    if (sequence.size() == 1)
        return lead;
    char32_t character = lead & (0x7Fu >> sequence.size());
    for (const char byte : sequence.substr(1))
        character = (character << 6) | (static_cast<unsigned char>(byte) & 0x3Fu);
    return character;
}

void append(Text& text, char32_t character)
{
    static constexpr char32_t leads[] = {0x00, 0xC0, 0xE0, 0xF0};
    const int more = (character > 0x7F) + (character > 0x7FF) + (character > 0xFFFF);
    text += static_cast<char>(leads[more] | (character >> (6 * more)));
    for (int i = more - 1; i >= 0; --i)
        text += static_cast<char>(0x80 | ((character >> (6 * i)) & 0x3F));
}

void appendUnit(Text& text, char32_t unit)
{
    text += static_cast<char>(unit & 0xFF);
    text += static_cast<char>(unit >> 8);
}

bool breaksLine(char32_t character)
{
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    return isControl || character == 0x2028 || character == 0x2029;
}

bool isFirstHalf(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

bool isSecondHalf(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}

std::u32string charactersOf(std::string_view text)
{
    std::u32string characters;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = characterBytes(text, at);
        characters += characterOf(text.substr(at, length));
        at += length;
    }
    return characters;
}

Text validUtf8(std::string_view text)
{
    Text result;
    for (const char32_t character : charactersOf(text))
        append(result, character);
    return result;
}

Text utf8OfUtf16(std::u16string_view units)
{
    Text text;
    for (std::size_t at = 0; at < units.size(); ++at) {
        char32_t character = units[at];
        if (isFirstHalf(character) && at + 1 < units.size() && isSecondHalf(units[at + 1]))
            character = 0x10000 + ((character - 0xD800) << 10) + (units[++at] - 0xDC00u);
        append(text, isFirstHalf(character) || isSecondHalf(character) ? 0xFFFD : character);
    }
    return text;
}

Text utf8OfUnstated(std::string_view bytes) { return isValidUtf8(bytes) ? Text(bytes) : utf8OfLatin1(bytes); }

Text utf8OfLatin1(std::string_view bytes)
{
    Text text;
    for (const char byte : bytes)
        append(text, static_cast<unsigned char>(byte));
    return text;
}

Text oneLine(std::string_view text)
{
    Text line;
    for (const char32_t character : charactersOf(text))
        append(line, breaksLine(character) ? U' ' : character);
    return line;
}

bool isLatin1(std::string_view text)
{
    const auto characters = charactersOf(text);
    return std::all_of(characters.begin(), characters.end(),
                       [](char32_t character) { return character <= 0xFF; });
}

Text toLatin1(std::string_view text)
{
    Text bytes;
    for (const char32_t character : charactersOf(text))
        bytes += character <= 0xFF ? static_cast<char>(character) : '?';
    return bytes;
}

Text toUtf16(std::string_view text)
{
    Text bytes;
    appendUnit(bytes, 0xFEFF);
    for (const char32_t character : charactersOf(text)) {
        if (character <= 0xFFFF) {
            appendUnit(bytes, character);
            continue;
        }
        appendUnit(bytes, 0xD800 + ((character - 0x10000) >> 10));
        appendUnit(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF));
    }
    return bytes;
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::string_view upToZero(std::string_view text) { return text.substr(0, text.find('\0')); }

Text joined(const std::vector<Text>& values)
{
    Text line;
    for (const Text& value : values)
        line += (line.empty() ? "" : " / ") + value;
    return line;
}

std::int16_t yearOf(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    std::int16_t year = 0;
    const auto all = std::from_chars(text.data(), text.data() + text.size(), year);
    if (all.ec == std::errc::result_out_of_range) // a date without separators, such as 20040506
        std::from_chars(text.data(), text.data() + 4, year);
    return year;
}

Text yearText(std::int16_t year)
{
    const Text digits = year == 0 ? "" : std::to_string(year);
    return year > 0 && digits.size() < 4 ? Text(4 - digits.size(), '0') + digits : digits;
}

}
