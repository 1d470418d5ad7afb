#include "playlist/playlist_format.h"

std::optional<std::vector<Text>> splitListText(std::string_view text, std::string_view delimiter)
{
    if (text.empty())
        return std::nullopt;
    std::vector<Text> lines;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find(delimiter, start + characterBytes(text, start));
        if (end == std::string_view::npos)
            end = start + withoutLastCharacter(text.substr(start)).size();
        lines.emplace_back(text.substr(start, end - start));
        start = end + delimiter.size();
    }
    return lines;
}

bool isRow(std::string_view line) { return !line.starts_with('#'); }
