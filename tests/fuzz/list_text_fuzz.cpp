// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a list file: the lines are those that counting characters one by one gives, and together they
// are the text.
#include "playlist/playlist_format.h"
#include "tests/fuzz/input.h"

namespace
{

std::vector<Text> charactersOf(std::string_view text)
{
    std::vector<Text> characters;
    for (std::size_t at = 0; at < text.size(); at += characterBytes(text, at))
        characters.emplace_back(text.substr(at, characterBytes(text, at)));
    return characters;
}

Text joined(const std::vector<Text>& characters, std::size_t from, std::size_t to)
{
    Text text;
    for (std::size_t i = from; i < to; ++i)
        text += characters[i - 1];
    return text;
}

// Places count from 1.
std::size_t lineEndFrom(const std::vector<Text>& characters, std::size_t place)
{
    for (; place < characters.size(); ++place)
        if (characters[place - 1] == "\r" && characters[place] == "\n")
            return place;
    return characters.size();
}

std::vector<Text> linesByCounting(const std::vector<Text>& characters)
{
    std::vector<Text> lines;
    for (std::size_t i = 1; i <= characters.size();) {
        const std::size_t j = lineEndFrom(characters, i + 1);
        lines.push_back(joined(characters, i, j));
        i = j + 2;
    }
    return lines;
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = asText(data, size);
    const auto lines = splitListText(text, lineEnd);
    require(lines.has_value() == !text.empty());
    if (!lines)
        return 0;
    require(*lines == linesByCounting(charactersOf(text)));

    Text whole;
    for (const auto& line : *lines) {
        require(isRow(line) == (line.empty() || line.front() != '#'));
        whole += line + Text(lineEnd);
    }
    // What was not terminated lost its last character to the line end that stands there now.
    require(whole == text || whole == Text(withoutLastCharacter(text)) + Text(lineEnd));
    return 0;
}
