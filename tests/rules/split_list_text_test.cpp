// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/playlist_format.h"

#include <doctest/doctest.h>

namespace
{

struct Case {
    Text what;
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
        {"a lost character of three bytes brings no row of its own", "a\r\nb\xE2\x82\xAC", {"a", "b"}},
        {"nor does one of four", "a\r\nb\xF0\x9F\x8E\xB5", {"a", "b"}},
        {"a stray byte before it", "\x9F\xEF\x9F\x83", {"\x9F"}},
        {"a character of three bytes cut short: its last byte", "a\xE2\x82", {"a\xE2"}},
        {"a single character", "a", {""}},
        {"a single character of four bytes", "\xF0\x9F\x8E\xB5", {""}},
        {"a single line end", "\r\n", {"\r"}},
        {"two line ends", "\r\n\r\n", {"\r\n"}},
        {"three line ends", "\r\n\r\n\r\n", {"\r\n", "\r"}},
        {"a CR alone", "\r", {""}},
        {"an LF alone", "\n", {""}},
        {"a CR as the first character of a line", "\r\r\na\r\n", {"\r", "a"}},
        {"a CR as the last character of a line", "a\r\r\nb\r\n", {"a\r", "b"}},
        {"a CR at the end of the text", "a\r\nb\r", {"a", "b"}},
        {"LF and CR", "a\n\rb\r\n", {"a\n\rb"}},
        {"a NUL", Text("a\0b\r\n", 5), {Text("a\0b", 3)}},
        {"a comment stays a line", "#a\r\nb\r\n", {"#a", "b"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto lines = splitListText(c.text, lineEnd);
        REQUIRE(lines.has_value());
        CHECK(*lines == c.lines);
    }
}

TEST_CASE("Any delimiter is sought from the second character of a line on")
{
    using Lines = std::vector<Text>;
    CHECK(splitListText("a;b;", ";") == Lines{"a", "b"});
    CHECK(splitListText(";a;", ";") == Lines{";a"});
    CHECK(splitListText("a--b---c--", "--") == Lines{"a", "b", "-c"});
    CHECK(splitListText("a\r\nb", ";") == Lines{"a\r\n"});
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
