// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/file_names.h"

#include <doctest/doctest.h>

TEST_CASE("Nine characters of a ripped file's name become an underline, each for itself")
{
    struct Case {
        Text what, name, clean;
    };
    const Case cases[] = {
        {"backslash", "a\\b", "a_b"},
        {"slash", "a/b", "a_b"},
        {"colon", "a:b", "a_b"},
        {"asterisk", "a*b", "a_b"},
        {"question mark", "a?b", "a_b"},
        {"double quote", "a\"b", "a_b"},
        {"less than", "a<b", "a_b"},
        {"greater than", "a>b", "a_b"},
        {"bar", "a|b", "a_b"},
        {"all of them", "\\/:*?\"<>|", "_________"},
        {"a folder cannot be named", "../../etc/passwd", ".._.._etc_passwd"},
        {"one after the other", "??", "__"},
        {"at both ends", "/a/", "_a_"},
        {"a titled track", "03 - A/C - Who?", "03 - A_C - Who_"},
        {"characters that only look alike", "\u2215\uFF0F\uFF1A\u201C\u00BF",
         "\u2215\uFF0F\uFF1A\u201C\u00BF"},
        {"others that stay", "a'b`c;d,e.f_g-h i%j$k#l&m~", "a'b`c;d,e.f_g-h i%j$k#l&m~"},
        {"bytes that are no text", "caf\xE9\xFF", "caf\xE9\xFF"},
        {"nothing", "", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(cleanFileName(c.name) == c.clean);
    }
}

TEST_CASE("A directory as long as a drive's root takes no separator, any other takes one")
{
    struct Case {
        Text what, directory, path;
    };
    const Case cases[] = {
        {"the root", "/", "/Track1.wav"},
        {"a directory", "/d/x", "/d/x/Track1.wav"},
        {"one that ends in a separator gets a second", "/d/x/", "/d/x//Track1.wav"},
        {"one byte more than the root", "//", "///Track1.wav"},
        {"one character that is no root", "x", "xTrack1.wav"},
        {"one character of two bytes", "\u00E9", "\u00E9Track1.wav"},
        {"one byte that is no text", "\xE9", "\xE9Track1.wav"},
        {"no directory at all", "", "/Track1.wav"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(rippedFilePath(c.directory, "Track1") == c.path);
    }
}

TEST_CASE("Only the name is cleaned, never the directory")
{
    CHECK(rippedFilePath("/a:b?", cleanFileName("a:b?")) == "/a:b?/a_b_.wav");
}
