// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/text.h"

#include <algorithm>

namespace
{

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isContinuation(std::string_view text, std::size_t at)
{
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

// The length that a leading byte announces; 0 for a byte that leads nothing.
std::size_t announced(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

// The second byte rules out overlong forms, surrogates and what lies past U+10FFFF (RFC 3629).
bool secondByteFits(unsigned char lead, unsigned char second)
{
    switch (lead) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second <= 0x9F;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second <= 0x8F;
    default:
        return true;
    }
}

// The length of the valid sequence at `at`; 0 when there is none.
std::size_t sequenceBytes(std::string_view text, std::size_t at)
{
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = announced(lead);
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(text, at + i))
            return 0;
    if (length > 2 && !secondByteFits(lead, static_cast<unsigned char>(text[at + 1])))
        return 0;
    return length;
}

}

std::size_t characterBytes(std::string_view text, std::size_t at)
{
    if (at >= text.size())
        return 0;
    return std::max<std::size_t>(sequenceBytes(text, at), 1);
}

std::size_t characterCount(std::string_view text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at += characterBytes(text, at))
        ++count;
    return count;
}

std::string_view withoutLastCharacter(std::string_view text)
{
    const std::size_t earliest = text.size() > 4 ? text.size() - 4 : 0;
    for (std::size_t at = earliest; at + 1 < text.size(); ++at)
        if (sequenceBytes(text, at) == text.size() - at)
            return text.substr(0, at);
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

std::string_view withoutBlanks(std::string_view text, std::string_view blanks)
{
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count)
        at += characterBytes(text, at);
    return text.substr(0, at);
}

std::string_view lastThreeCharacters(std::string_view text)
{
    std::string_view rest = text;
    for (int i = 0; i < 3; ++i)
        rest = withoutLastCharacter(rest);
    return text.substr(rest.size());
}

bool isValidUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceBytes(text, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

Text lowerCase(std::string_view text)
{
    Text result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool equalWithoutCase(std::string_view one, std::string_view other)
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}
