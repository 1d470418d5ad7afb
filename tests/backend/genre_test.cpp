#include "engines/tags/genre.h"

#include "info/genre_rows.h"

#include <doctest/doctest.h>

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

TEST_CASE("Every name leads back to its number")
{
    for (std::int16_t genre = 0; genre < 192; ++genre) {
        CAPTURE(genre);
        CHECK(genreNumber(genreName(genre)) == genre);
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
        {"in one word", "folkrock", 81},
        {"the newer spelling", "Psychedelic", 67},
        {"the newer name", "Alternative Rock", 40},
        {"the standard's name of 80", "Folk", 80},
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
