// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/profile_text.h"

#include <algorithm>

namespace files
{

namespace
{

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr auto npos = std::string_view::npos;

std::string_view trimmed(std::string_view text) { return withoutBlanks(text, " \t\r\v\f"); }

std::string_view withoutQuotes(std::string_view value)
{
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<std::string_view> sectionName(std::string_view line)
{
    const std::string_view header = trimmed(line);
    const std::size_t end = header.find(']');
    if (!header.starts_with('[') || end == npos)
        return std::nullopt;
    return trimmed(header.substr(1, end - 1));
}

bool isComment(std::string_view line) { return trimmed(line).starts_with(';'); }

std::string_view keyName(std::string_view line) { return trimmed(line.substr(0, line.find('='))); }

// What stands behind the equals sign, as far as a reader sees it.
std::optional<std::string_view> rawValue(std::string_view line)
{
    const std::size_t sign = line.find('=');
    if (sign == npos)
        return std::nullopt;
    const std::string_view value = line.substr(sign + 1);
    return trimmed(value.substr(0, value.find('\0')));
}

// Walks over the lines; `line` is without its LF.
struct LineCursor {
    std::string_view text;
    std::size_t next = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    std::string_view line = {};

    bool step()
    {
        if (next >= text.size())
            return false;
        const std::size_t end = std::min(text.find('\n', next), text.size());
        line = text.substr(next, end - next);
        next = std::min(end + 1, text.size());
        return true;
    }
};

struct EntryPlace {
    std::optional<std::string_view> entry; // the key's line
    std::optional<std::size_t> insertAt; // where a new line of the section goes; nothing without the section
};

EntryPlace findEntry(LineCursor lines, std::string_view key, std::size_t insertAt)
{
    while (lines.step() && !sectionName(lines.line)) {
        if (!isComment(lines.line) && equalWithoutCase(keyName(lines.line), key))
            return {lines.line, insertAt};
        if (!trimmed(lines.line).empty())
            insertAt = lines.next;
    }
    return {std::nullopt, insertAt};
}

EntryPlace find(std::string_view text, std::string_view section, std::string_view key)
{
    LineCursor lines{text};
    while (lines.step())
        if (const auto name = sectionName(lines.line); name && equalWithoutCase(*name, trimmed(section)))
            return findEntry(lines, trimmed(key), lines.next);
    return {};
}

std::string_view lineEnd(std::string_view text)
{
    const std::size_t end = text.find('\n');
    return end == npos || (end > 0 && text[end - 1] == '\r') ? "\r\n" : "\n";
}

Text inserted(std::string_view text, std::size_t at, std::string_view line)
{
    const bool open = at > 0 && text[at - 1] != '\n' && text.substr(0, at) != byteOrderMark;
    Text result(text.substr(0, at));
    result.append(open ? lineEnd(text) : "").append(line).append(lineEnd(text));
    return result.append(text.substr(at));
}

Text replaced(std::string_view text, std::string_view entry, std::string_view value)
{
    const auto start = static_cast<std::size_t>(entry.data() - text.data());
    const std::string_view ending = entry.ends_with('\r') ? "\r" : "";
    const std::size_t sign = entry.find('=');
    Text result(text.substr(0, start));
    if (sign == npos)
        result.append(entry.substr(0, entry.size() - ending.size())).append("=");
    else
        result.append(entry.substr(0, sign + 1));
    return result.append(value).append(ending).append(text.substr(start + entry.size()));
}

}

std::optional<std::string_view> profileValue(std::string_view text, std::string_view section,
                                             std::string_view key)
{
    const EntryPlace place = find(text, section, key);
    const auto value = place.entry ? rawValue(*place.entry) : std::nullopt;
    if (!value)
        return std::nullopt;
    return withoutQuotes(*value);
}

Text profileWith(std::string_view text, std::string_view section, std::string_view key,
                 std::string_view value)
{
    const EntryPlace place = find(text, section, key);
    if (place.entry && rawValue(*place.entry) == trimmed(value))
        return Text(text);
    if (place.entry)
        return replaced(text, *place.entry, trimmed(value));
    const Text line = Text(trimmed(key)).append("=").append(trimmed(value));
    if (place.insertAt)
        return inserted(text, *place.insertAt, line);
    const Text header = Text("[").append(trimmed(section)).append("]").append(lineEnd(text));
    return inserted(text, text.size(), header + line);
}

bool fitsProfile(std::string_view section, std::string_view key, std::string_view value)
{
    constexpr std::string_view ends("\r\n\0", 3);
    const auto isOneLine = [&](std::string_view text) { return text.find_first_of(ends) == npos; };
    const std::string_view name = trimmed(key);
    return isOneLine(section) && isOneLine(key) && isOneLine(value) && section.find(']') == npos &&
           !name.empty() && name.find('=') == npos && !name.starts_with(';') && !name.starts_with('[');
}

}
