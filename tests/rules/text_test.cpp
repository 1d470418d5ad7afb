// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/text.h"

#include <doctest/doctest.h>

TEST_CASE("A character is one UTF-8 sequence or one byte that belongs to none")
{
    struct Case {
        const char* what;
        Text text;
        std::size_t characters;
    };
    const Case cases[] = {
        {"nothing", "", 0},
        {"ASCII", "abc", 3},
        {"two bytes", "\xC3\xA9", 1},
        {"three bytes", "\xE2\x82\xAC", 1},
        {"four bytes", "\xF0\x9F\x8E\xB5", 1},
        {"a lone continuation byte", "\x80", 1},
        {"a Latin-1 letter", "caf\xE9", 4},
        {"a cut sequence", "a\xE2\x82", 3},
        {"an overlong form", "\xC0\xAF", 2},
        {"a surrogate", "\xED\xA0\x80", 3},
        {"past the last code point", "\xF4\x90\x80\x80", 4},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(characterCount(c.text) == c.characters);
    }
}

TEST_CASE("The last character goes whole")
{
    CHECK(withoutLastCharacter("") == "");
    CHECK(withoutLastCharacter("a") == "");
    CHECK(withoutLastCharacter("ab") == "a");
    CHECK(withoutLastCharacter("a\xC3\xA9") == "a");
    CHECK(withoutLastCharacter("a\xF0\x9F\x8E\xB5") == "a");
    CHECK(withoutLastCharacter("a\xE9") == "a");
    CHECK(withoutLastCharacter("\xC3\xA9\xA9") == "\xC3\xA9");
}

TEST_CASE("The last three characters decide a kind")
{
    CHECK(lastThreeCharacters("/a/b.mp3") == "mp3");
    CHECK(lastThreeCharacters("p3") == "p3");
    CHECK(lastThreeCharacters("") == "");
    CHECK(lastThreeCharacters("\xC3\xA9\x61\x62\x63") == "abc");
    CHECK(lastThreeCharacters("ab\xC3\xA9") == "ab\xC3\xA9");
}

TEST_CASE("Lower case touches ASCII letters alone")
{
    CHECK(lowerCase("MP3") == "mp3");
    CHECK(lowerCase("\xC3\x89\xC9") == "\xC3\x89\xC9");
    CHECK(equalWithoutCase("Conf.MP3", "conf.mp3"));
    CHECK_FALSE(equalWithoutCase("conf.mp3", "conf.mp"));
}
