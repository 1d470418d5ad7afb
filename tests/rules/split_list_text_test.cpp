#include "playlist/playlist_format.h"

#include <doctest/doctest.h>

namespace
{

struct Case {
    const char* what;
    Text text;
    std::vector<Text> lines;
};

}

TEST_CASE("A list's text falls into these lines")
{
    const Case cases[] = {
        {"two terminated lines", "a\r\nb\r\n", {"a", "b"}},
        {"an unterminated last line loses its last character", "a\r\nbcd", {"a", "bc"}},
        {"an unterminated last line of one character is empty", "a\r\nb", {"a", ""}},
        {"a blank first line is glued to the second", "\r\nx\r\n", {"\r\nx"}},
        {"a blank last line keeps a single CR", "a\r\n\r\n", {"a", "\r"}},
        {"a blank line in the middle is glued to the next", "a\r\n\r\nb\r\n", {"a", "\r\nb"}},
        {"bare LF line ends are no line ends", "a\nb\nc\n", {"a\nb\nc"}},
        {"the lost character is a whole one", "a\r\nb\xC3\xA9", {"a", "b"}},
        {"an invalid byte is one character", "a\r\nb\xE9", {"a", "b"}},
        {"a single character", "a", {""}},
        {"a single line end", "\r\n", {"\r"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto lines = splitListText(c.text, lineEnd);
        REQUIRE(lines.has_value());
        CHECK(*lines == c.lines);
    }
}

TEST_CASE("An empty text has no lines at all") { CHECK_FALSE(splitListText("", lineEnd).has_value()); }

TEST_CASE("A line that begins with # is no row; an empty line is")
{
    CHECK_FALSE(isRow("#EXTM3U"));
    CHECK_FALSE(isRow("#"));
    CHECK(isRow(""));
    CHECK(isRow(" #a"));
    CHECK(isRow("/music/a.mp3"));
}
