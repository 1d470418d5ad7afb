// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/genre.h"

#include "info/genre_rows.h"

#include <doctest/doctest.h>

using namespace tags;

TEST_CASE("A genre number has its usual name")
{
    CHECK(genreName(0) == "Blues");
    CHECK(genreName(14) == "R&B");
    CHECK(genreName(17) == "Rock");
    CHECK(genreName(29) == "Jazz+Funk");
    CHECK(genreName(40) == "AlternRock");
    CHECK(genreName(67) == "Psychadelic");
    CHECK(genreName(79) == "Hard Rock");
    CHECK(genreName(81) == "Folk Rock");
    CHECK(genreName(125) == "Dancehall");
    CHECK(genreName(191) == "Psybient");
}

TEST_CASE("The main window and the tag editor call a genre by the same name")
{
    for (std::size_t row = 0; row < genreRows.size(); ++row)
        CHECK(genreName(static_cast<std::int16_t>(row)) == genreRows[row]);
}

TEST_CASE("80 is the program's own Unknown, and a number without a name gives nothing")
{
    CHECK(genreName(80) == "Unknown");
    for (const std::int16_t genre : {-32768, -2, -1, 192, 255, 256, 32767}) {
        CAPTURE(genre);
        CHECK(genreName(genre) == "");
    }
}

TEST_CASE("Every name that the tag editor has leads back to its number, and no other does")
{
    for (std::int16_t genre = 0; genre < 192; ++genre) {
        CAPTURE(genre);
        const bool isRow = genre < static_cast<std::int16_t>(genreRows.size());
        CHECK(genreNumber(genreName(genre)) == (isRow ? genre : -1));
        CHECK(genreWithoutNumber(genreName(genre)) == (isRow ? Text() : genreName(genre)));
    }
}

TEST_CASE("A name with a digit more is another name")
{
    for (const Text name : {"Rock0", "Rock 9", "Hip-Hop 0"}) {
        CAPTURE(name);
        CHECK(genreNumber(name) == -1);
    }
}

TEST_CASE("A genre without a number is called what the text calls it")
{
    struct Case {
        const char* what;
        Text text;
        Text name;
    };
    const Case cases[] = {
        {"a name", "Chillwave", "Chillwave"},
        {"a name that has a number above the editor's", "Heavy Metal", "Heavy Metal"},
        {"the standard's name of the editor's last row", "Folk", "Folk"},
        {"blanks around", "  Folk Metal ", "Folk Metal"},
        {"a remix", "(RX)", "(RX)"},
        {"none, and a name behind it", "(255)Chillwave", "Chillwave"},
        {"a name of the editor", "Rock", ""},
        {"a number", "137", ""},
        {"a number in brackets", "(137)Heavy Metal", ""},
        {"none", "255", ""},
        {"none in brackets", "(255)", ""},
        {"more than any number", "99999999999999999999", ""},
        {"nothing", "", ""},
        {"blanks", "   ", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(genreWithoutNumber(c.text) == c.name);
    }
}

TEST_CASE("A tag's genre text stands for a number")
{
    struct Case {
        const char* what;
        Text text;
        std::int16_t genre;
    };
    const Case cases[] = {
        {"a number", "17", 17},
        {"a number in brackets", "(17)", 17},
        {"with a name behind it", "(17)Rock", 17},
        {"with a refinement behind it", "(4)Eurodisco", 4},
        {"two numbers", "(17)(6)", 17},
        {"a name", "Rock", 17},
        {"lower case", "rock", 17},
        {"upper case", "HARD ROCK", 79},
        {"without its hyphen", "Hip Hop", 7},
        {"in one word", "hardrock", 79},
        {"a name above the editor's", "Folk Rock", -1},
        {"a common one of these", "Heavy Metal", -1},
        {"a number above the editor's", "137", 137},
        {"the same in brackets", "(137)", 137},
        {"the newer spelling", "Psychedelic", 67},
        {"the newer name", "Alternative Rock", 40},
        {"the standard's name of 80", "Folk", -1},
        {"the program's name of 80", "Unknown", 80},
        {"blanks around", " 17 ", 17},
        {"zero", "0", 0},
        {"leading zeros", "007", 7},
        {"the last that a byte can say", "254", 254},
        {"the standard's none", "255", -1},
        {"the standard's none in brackets", "(255)", -1},
        {"more than a byte", "256", -1},
        {"more than any number", "99999999999999999999", -1},
        {"negative", "-1", -1},
        {"nothing", "", -1},
        {"blanks", "  ", -1},
        {"signs alone", "&", -1},
        {"an unknown name", "Chillwave", -1},
        {"the beginning of a name", "Roc", -1},
        {"a number and more", "17 Rock", -1},
        {"empty brackets", "()", -1},
        {"an open bracket", "(17", -1},
        {"brackets around a remix", "(RX)", -1},
        {"a name in Cyrillic", "\xD0\xA0\xD0\xBE\xD0\xBA", -1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(genreNumber(c.text) == c.genre);
    }
}
