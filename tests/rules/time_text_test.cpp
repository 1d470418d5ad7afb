// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/time_text.h"

#include "platform/failure.h"

#include <doctest/doctest.h>
#include <string>

namespace
{

struct Time {
    std::string what;
    std::int32_t milliseconds;
    std::string minutes;
    std::string seconds;
};

struct Share {
    std::string what;
    const char* elapsed;
    const char* total;
    std::int32_t value;
};

}

TEST_CASE("A time shows its whole minutes and two digits of seconds, cut and never rounded")
{
    const Time times[] = {
        {"nothing", 0, "0", "00"},
        {"less than a second", 999, "0", "00"},
        {"nine seconds", 9000, "0", "09"},
        {"the last moment of the ninth second", 9999, "0", "09"},
        {"exactly ten seconds", 10000, "0", "10"},
        {"a millisecond short of a minute", 59999, "0", "59"},
        {"a minute", 60000, "1", "00"},
        {"61 seconds", 61000, "1", "01"},
        {"three minutes and seven seconds", 187000, "3", "07"},
        {"a second short of an hour", 3599000, "59", "59"},
        {"an hour has no field of its own", 3600000, "60", "00"},
        {"the longest time", 2147483647, "35791", "23"},
    };
    for (const auto& c : times) {
        CAPTURE(c.what);
        CHECK(wholeMinutes(c.milliseconds) == c.minutes);
        CHECK(twoDigitSeconds(c.milliseconds) == c.seconds);
    }
}

TEST_CASE("The bar shows the share that has played, and is back at its start in the last half per cent")
{
    const Share shares[] = {
        {"the beginning", "0", "10000", 0},
        {"the middle", "5000", "10000", 50},
        {"2.5 goes to the even neighbour below", "25", "1000", 2},
        {"3.5 goes to the even neighbour above", "35", "1000", 4},
        {"0.5 goes to 0", "5", "1000", 0},
        {"just above a half", "2501", "100000", 3},
        {"98.5 goes to 98", "985", "1000", 98},
        {"99.49 is still the end", "9949", "10000", 99},
        {"a hair below 99.5 rounds to 99 and not to 100", "99499.99", "100000", 99},
        {"9.95 of 10 seconds", "9950", "10000", 0},
        {"the whole", "10000", "10000", 0},
        {"past the whole", "10026.12", "10000", 0},
        {"so far past it that no integer holds the share", "2147483647", "1", 0},
        {"single text against a whole length", "26122.447", "60000", 44},
        {"no length, and no division", "5000", "0", 0},
        {"neither", "0", "0", 0},
        {"a length of nothing but noughts", "5000", "0.0", 0},
    };
    for (const auto& c : shares) {
        CAPTURE(c.what);
        CHECK(barValue(c.elapsed, c.total) == c.value);
    }
}

TEST_CASE("Times that are no numbers have no share")
{
    for (const char* text : {"", "abc", "1:00"}) {
        CAPTURE(text);
        CHECK_FALSE(succeeds([&] { barValue(text, "1000"); }));
        CHECK_FALSE(succeeds([&] { barValue("0", text); }));
    }
}
