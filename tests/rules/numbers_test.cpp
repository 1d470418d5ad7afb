// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"

#include "platform/failure.h"

#include <doctest/doctest.h>
#include <limits>
#include <string>

namespace
{

template <typename Call>
int failureNumber(Call&& call)
{
    int number = 0;
    guarded([&](const Failure& failure) { number = failure.number; }, call);
    return number;
}

}

TEST_CASE("A number's text is the shortest plain decimal that reads back")
{
    CHECK(textOf(128.0) == "128");
    CHECK(textOf(44.1) == "44.1");
    CHECK(textOf(22.05) == "22.05");
    CHECK(textOf(0.0F) == "0");
    CHECK(textOf(-0.0F) == "0");
    CHECK(textOf(-15.0F) == "-15");
    CHECK(textOf(1e10F) == "10000000000");
    CHECK(textOf(0.1F) == "0.1");
    CHECK(textOf(26.122F) == "26.122");
    CHECK(textOf(1e-7F) == "0.0000001");
    for (const float number : {26.122448F, 3.4e38F, 1e-40F, 16777217.0F, -6435.33F})
        CHECK(toSingle(textOf(number)) == number);
}

TEST_CASE("Text becomes a number without regard to the locale")
{
    CHECK(toDouble(" 12.5 ") == 12.5);
    CHECK(toDouble("+3") == 3);
    CHECK(toDouble("-.5") == -0.5);
    CHECK(toDouble("5.") == 5);
    CHECK(toDouble("1e3") == 1000);
    CHECK(toInteger16("11.5") == 12);
    CHECK(toInteger16("2.5") == 2);
    CHECK(toInteger32("-2147483648") == std::numeric_limits<std::int32_t>::min());
}

TEST_CASE("Every place in twips reads back from its text")
{
    for (int step = -60000; step < 60000; ++step) {
        const float place = static_cast<float>(step) / 7;
        if (toSingle(textOf(place)) != place)
            FAIL("it does not: " << place);
    }
}

TEST_CASE("Text of a fraction becomes the nearest integer, halves the even one")
{
    struct Row {
        const char* text;
        std::int32_t integer;
    };
    for (const auto& row : {Row{"0.5", 0}, Row{"1.5", 2}, Row{"-0.5", 0}, Row{"-1.5", -2}, Row{"0.50001", 1},
                            Row{"26122.447", 26122}, Row{"999.5", 1000}, Row{" 7 ", 7}, Row{"1e2", 100}}) {
        CAPTURE(std::string(row.text));
        CHECK(toInteger32(row.text) == row.integer);
        CHECK(toInteger16(row.text) == row.integer);
    }
    CHECK(toInteger16("32767.4") == 32767);
    CHECK(failureNumber([] { toInteger16("32767.5"); }) == 6);
    CHECK(failureNumber([] { toInteger16("-32769"); }) == 6);
}

TEST_CASE("Text that is no number is a type mismatch, a number that does not fit overflows")
{
    for (const char* text : {"", " ", "abc", "1,5", "1 2", "+-1", "--1", "inf", "nan", "0x10", "1e", "yes"}) {
        CAPTURE(text);
        CHECK(failureNumber([&] { toDouble(text); }) == 13);
    }
    CHECK(failureNumber([] { toInteger16("32768"); }) == 6);
    CHECK(failureNumber([] { toInteger16("-32768.5"); }) == 0);
    CHECK(failureNumber([] { toInteger32("2147483648"); }) == 6);
    CHECK(failureNumber([] { toSingle("1e39"); }) == 6);
    CHECK(failureNumber([] { toDouble("1e999"); }) == 6);
}

TEST_CASE("Rounding goes to the nearest integer, halves to the even neighbour")
{
    CHECK(roundToInteger32(2.5) == 2);
    CHECK(roundToInteger32(3.5) == 4);
    CHECK(roundToInteger32(-2.5) == -2);
    CHECK(roundToInteger32(2.51) == 3);
    CHECK(roundToInteger16(-0.5) == 0);
}

TEST_CASE("A number in two digits has more where it needs them")
{
    CHECK(twoDigits(0) == "00");
    CHECK(twoDigits(1) == "01");
    CHECK(twoDigits(9) == "09");
    CHECK(twoDigits(10) == "10");
    CHECK(twoDigits(99) == "99");
    CHECK(twoDigits(100) == "100");
}
