// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/playlist_format.h"

#include "platform/numbers.h"

namespace
{

bool endsInLetters(std::string_view name, std::string_view letters)
{
    return lowerCase(lastThreeCharacters(name)) == letters;
}

}

std::optional<std::vector<Text>> splitListText(std::string_view text, std::string_view delimiter)
{
    if (text.empty())
        return std::nullopt;
    std::vector<Text> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find(delimiter, start + characterBytes(text, start));
        if (end == std::string_view::npos) {
            lines.emplace_back(withoutLastCharacter(text.substr(start)));
            break;
        }
        lines.emplace_back(text.substr(start, end - start));
        start = end + delimiter.size();
    }
    return lines;
}

bool isRow(std::string_view line) { return !line.starts_with('#'); }

Text m3uInformationLine(std::int32_t length, const Text& artist, const Text& title)
{
    return "#EXTINF:" + textOf(length / 1000 - 1) + "," + artist + " - " + title;
}

bool isM3uName(std::string_view name) { return endsInLetters(name, "m3u"); }

Text listFileName(const Text& name, std::int16_t filter)
{
    if (filter == listFilterOwn && !endsInLetters(name, "vlp"))
        return name + ".vlp";
    if (filter == listFilterM3u && !endsInLetters(name, "m3u"))
        return name + ".m3u";
    return name;
}
