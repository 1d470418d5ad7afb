// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/cddb_answer.h"

#include <doctest/doctest.h>

namespace
{

// An answer to "cddb read" around those lines.
Text entry(const Text& lines)
{
    return "210 rock 920ef00b CD database entry follows (until terminating `.')\r\n# xmcd\r\n" + lines +
           ".\r\n";
}

Text artistIn(const Text& lines)
{
    return disc::titlesIn(entry(lines)).value_or(disc::DiscTitles{"no answer", {}}).artist;
}

Text firstTitleIn(const Text& lines)
{
    const auto titles = disc::titlesIn(entry("DTITLE=A / B\r\n" + lines));
    return titles && !titles->tracks.empty() ? titles->tracks.front() : "none";
}

}

TEST_CASE("The best match of a query comes first")
{
    struct Case {
        const char* answer;
        const char* text;
        std::size_t count;
        const char* category;
        const char* id;
    };
    const Case cases[] = {
        {"exact", "200 rock 920ef00b Some Band / Some Disc\r\n", 1, "rock", "920ef00b"},
        {"exact, without an end of line", "200 rock 920ef00b X", 1, "rock", "920ef00b"},
        {"several exact",
         "210 Found exact matches, list follows\r\nmisc 920ef00b A / B\r\nrock 920ef00b C\r\n.\r\n", 2,
         "misc", "920ef00b"},
        {"several that come near",
         "211 Found inexact matches\nnewage 920ef00c A / B\nfolk 920ef10b C / D\n.\n", 2, "newage",
         "920ef00c"},
        {"a list with a line that is none", "211 list\r\n\r\njazz 920ef00d A / B\r\n.\r\n", 1, "jazz",
         "920ef00d"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.answer);
        const auto matches = disc::matchesIn(c.text);
        REQUIRE(matches);
        REQUIRE(matches->size() == c.count);
        CHECK(matches->front().category == c.category);
        CHECK(matches->front().discId == c.id);
    }
}

TEST_CASE("A disc that the server does not know has no match")
{
    const auto matches = disc::matchesIn("202 No match for disc ID 920ef00b.\r\n");
    REQUIRE(matches);
    CHECK(matches->empty());
}

TEST_CASE("What is no answer to a query is told from a disc without a match")
{
    const char* const texts[] = {
        "",
        "\r\n",
        "<!DOCTYPE html><html>Sign in to this network</html>",
        "200",
        "200 ",
        "200 rock",
        "200 rock ../../etc/passwd X",
        "200 ro%63k 920ef00b X",
        "200x rock 920ef00b X",
        "20 rock 920ef00b X",
        "403 Database entry is corrupt.",
        "409 No handshake.",
        "500 Command syntax error.",
        "211 Found inexact matches, list follows (until terminating `.')\r\nrock 920ef00b A / B\r\n",
        "99999999999999999999 rock 920ef00b X",
    };
    for (const char* text : texts) {
        CAPTURE(text);
        CHECK_FALSE(disc::matchesIn(text));
    }
}

TEST_CASE("A list that never ends is kept short")
{
    Text answer = "211 list\r\n";
    for (int i = 0; i < 5000; ++i)
        answer += "rock 920ef00b A / B\r\n";
    const auto matches = disc::matchesIn(answer + ".\r\n");
    REQUIRE(matches);
    CHECK(matches->size() == 100);
}

TEST_CASE("The disc title splits at its first \" / \"")
{
    struct Case {
        const char* line;
        const char* artist;
    };
    const Case cases[] = {
        {"DTITLE=Some Band / Some Disc\r\n", "Some Band"},
        {"DTITLE=A / B / C\r\n", "A"},
        {"DTITLE=AC/DC / Live\r\n", "AC/DC"},
        {"DTITLE=Various / Best of / Two\n", "Various"},
        {"DTITLE=Same Name\r\n", "Same Name"},
        {"DTITLE=\r\n", ""},
        {"DTITLE= / Nobody's\r\n", "/ Nobody's"},
        {"DTITLE=  Blanks   / Around \r\n", "Blanks"},
        {"DTITLE=Long n\r\nDTITLE=ame / Disc\r\n", "Long name"},
        {"DTITLE=Cut at the \r\nDTITLE=blank / Disc\r\n", "Cut at the blank"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.line);
        CHECK(artistIn(c.line) == c.artist);
    }
}

TEST_CASE("A track title stays whole and in one line")
{
    struct Case {
        const char* what;
        const char* lines;
        const char* title;
    };
    const Case cases[] = {
        {"plain", "TTITLE0=Song\r\n", "Song"},
        {"of another artist", "TTITLE0=X / Y\r\n", "X / Y"},
        {"over three lines", "TTITLE0=One \r\nTTITLE0=Two\r\nTTITLE0= Three\r\n", "One Two Three"},
        {"with an equals sign", "TTITLE0=a=b=c\r\n", "a=b=c"},
        {"escaped line break", "TTITLE0=a\\nb\r\n", "a b"},
        {"escaped tab", "TTITLE0=a\\tb\r\n", "a b"},
        {"escaped backslash", "TTITLE0=a\\\\nb\r\n", "a\\nb"},
        {"escape cut by a line's end", "TTITLE0=a\\\r\nTTITLE0=nb\r\n", "a b"},
        {"backslash at the end", "TTITLE0=ab\\\r\n", "ab\\"},
        {"control characters", "TTITLE0=a\x01\x1B\x7Fz\r\n", "a   z"},
        {"control characters beyond ASCII", "TTITLE0=a\u0085\u009Bz\r\n", "a  z"},
        {"control characters of Latin-1", "TTITLE0=a\x85\xE9z\r\n", "a \u00E9z"},
        {"the first character of Latin-1 beyond ASCII", "TTITLE0=a\x80z\r\n", "a z"},
        {"separators of lines", "TTITLE0=a\u2028\u2029z\r\n", "a  z"},
        {"the direction of writing turned", "TTITLE0=a\u202Egpj.wav\u202C\u2066z\u2069\r\n", "a gpj.wav  z"},
        {"letters of other writings", "TTITLE0=\u05D0\u200F\u2026\u00A0z\r\n", "\u05D0\u200F\u2026\u00A0z"},
        {"UTF-8", "TTITLE0=Caf\xC3\xA9 \xE3\x81\x82\r\n", "Caf\xC3\xA9 \xE3\x81\x82"},
        {"UTF-8 cut by a line's end", "TTITLE0=Caf\xC3\r\nTTITLE0=\xA9\r\n", "Caf\xC3\xA9"},
        {"Latin-1", "TTITLE0=Caf\xE9 \xFC\r\n", "Caf\xC3\xA9 \xC3\xBC"},
        {"missing", "TTITLE1=Second\r\n", ""},
        {"a comment", "#TTITLE0=No\r\nTTITLE0=Yes\r\n", "Yes"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(firstTitleIn(c.lines) == c.title);
    }
}

TEST_CASE("A line that gives no key a value is passed over")
{
    for (const Text line : {"", "rubbish", "TTITLE0"}) {
        CAPTURE(line);
        CHECK(firstTitleIn(line + "\r\nTTITLE0=Song\r\n") == "Song");
    }
}

TEST_CASE("Titles stand at their tracks' places")
{
    const auto titles =
        disc::titlesIn(entry("DTITLE=A / B\r\nTTITLE0=One\r\nTTITLE2=Three\r\nTTITLE98=Last\r\n"
                             "TTITLE99=Past\r\nTTITLE-1=Before\r\nTTITLE01=Odd\r\nEXTT0=No\r\n"));
    REQUIRE(titles);
    REQUIRE(titles->tracks.size() == 99);
    CHECK(titles->tracks[0] == "One");
    CHECK(titles->tracks[1] == "");
    CHECK(titles->tracks[2] == "Three");
    CHECK(titles->tracks[98] == "Last");
}

TEST_CASE("What is not a whole entry gives no titles")
{
    const char* const texts[] = {
        "",
        "210 rock 920ef00b\r\nDTITLE=A / B\r\nTTITLE0=One\r\n",
        "210 rock 920ef00b\r\nDTITLE=A / B\r\nTTITLE0=One\r\n..\r\n",
        "210 rock 920ef00b\r\nTTITLE0=One\r\n.\r\n",
        "401 Specified CDDB entry not found.\r\n",
        "402 Server error.\r\nDTITLE=A / B\r\n.\r\n",
        "<html>DTITLE=A / B</html>",
    };
    for (const char* text : texts) {
        CAPTURE(text);
        CHECK_FALSE(disc::titlesIn(text));
    }
}
