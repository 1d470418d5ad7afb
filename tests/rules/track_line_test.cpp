// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/track_line.h"

#include <doctest/doctest.h>

namespace
{

struct Case {
    Text what;
    std::int32_t minutes, seconds;
    Text line;
};

template <typename Cases>
void check(const Cases& cases, const Text& decimalSign)
{
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(trackLine("Track 01", c.minutes, c.seconds, decimalSign) == "Track 01    " + c.line + "  MB");
    }
}

}

TEST_CASE("A decimal comma makes the seconds a fraction of the time")
{
    const Case cases[] = {
        {"three minutes 25", 3, 25, "03,25    32,8"},
        {"three minutes 50", 3, 50, "03,50    35,3"},
        {"three minutes 5 shows the same", 3, 5, "03,50    35,3"},
        {"one minute 9", 1, 9, "01,90    19,2"},
        {"one minute 10", 1, 10, "01,10    11,1"},
        {"a whole minute", 1, 0, "01,00    10,1"},
        {"35 seconds", 0, 35, "00,35    03,5"},
        {"one second", 0, 1, "00,10    01,0"},
        {"nothing", 0, 0, "00,00    00,0"},
        {"a whole disc", 74, 59, "74,59    752,6"},
        {"a thousand minutes, without grouping", 1000, 0, "1000,00    10090,0"},
        {"the longest length", 35791, 23, "35791,23    361133,5"},
    };
    check(cases, ",");
}

TEST_CASE("With any other decimal sign the comma falls away and the digits join")
{
    const Case cases[] = {
        {"three minutes 25", 3, 25, "325.00    3279.3"},
        {"three minutes 50", 3, 50, "350.00    3531.5"},
        {"three minutes 5 has a digit less", 3, 5, "35.00    353.2"},
        {"35 seconds", 0, 35, "35.00    353.2"},
        {"one minute 9", 1, 9, "19.00    191.7"},
        {"one minute 10", 1, 10, "110.00    1109.9"},
        {"a whole minute", 1, 0, "10.00    100.9"},
        {"one second", 0, 1, "01.00    10.1"},
        {"nothing", 0, 0, "00.00    00.0"},
        {"a whole disc", 74, 59, "7459.00    75261.3"},
        {"the longest length", 35791, 23, "3579123.00    36113351.1"},
    };
    check(cases, ".");
}

TEST_CASE("A final 5 of the size goes upward, where binary arithmetic would lose it")
{
    const Case decimalComma[] = {
        {"50.45", 5, 0, "05,00    50,5"},
        {"151.35", 15, 0, "15,00    151,4"},
        {"252.25", 25, 0, "25,00    252,3"},
        {"353.15", 35, 0, "35,00    353,2"},
    };
    check(decimalComma, ",");
    const Case decimalPoint[] = {
        {"50.45", 0, 5, "05.00    50.5"},
        {"151.35", 1, 5, "15.00    151.4"},
        {"252.25", 2, 5, "25.00    252.3"},
        {"353.15", 3, 5, "35.00    353.2"},
    };
    check(decimalPoint, ".");
}

TEST_CASE("The decimal sign is shown as the system writes it")
{
    CHECK(trackLine("Track 01", 3, 25, "\u066B") == "Track 01    325\u066B00    3279\u066B3  MB");
}

TEST_CASE("A name stands first as it is")
{
    for (const Text name : {"A/C - Who?", "", "  ", "1,5", "caf\xE9 - \xFF", "a    b"}) {
        CAPTURE(name);
        CHECK(trackLine(name, 3, 25, ",") == name + "    03,25    32,8  MB");
    }
}
