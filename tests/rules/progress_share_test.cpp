// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/paths.h"
#include "workbench/file_names.h"

#include <doctest/doctest.h>

TEST_CASE(
    "A progress bar's share is the position's hundredfold over the length, rounded once to single precision")
{
    struct Row {
        Text what;
        std::int32_t position, length;
        float share;
    };
    const Row rows[] = {
        {"nothing", 0, 1000, 0},
        {"all", 1000, 1000, 100},
        {"a third", 1, 3, 100.0F / 3.0F},
        {"past the end", 3000, 1000, 300},
        {"before the start", -1, 100, -1},
        {"the greatest position", 21474836, 21474836, 100},
        {"the smallest position", -21474836, 21474836, -100},
        {"a length that single precision does not know exactly", 21474836, 2147483647, 1},
        // The quotient alone is rounded, not what is divided: an hour and a half in milliseconds.
        {"a hundredfold that single precision does not know exactly", 3059907, 5231821, 58.4864616F},
        {"neither of the two is known exactly", 3946603, 4061292, 97.1760483F},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        CHECK(percentOf(row.position, row.length) == row.share);
    }
}

TEST_CASE("A hundredfold past 32 bits overflows on either side, whatever the length")
{
    for (const std::int32_t position : {21474837, 2147483647, -21474837, -2147483647 - 1})
        for (const std::int32_t length : {1, 1000, 2147483647}) {
            CAPTURE(position);
            int number = 0;
            guarded([&](const Failure& failure) { number = failure.number; },
                    [&] { percentOf(position, length); });
            CHECK(number == 6);
        }
}

TEST_CASE("A name is joined to its folder by one separator, and by none to a folder that ends in one")
{
    struct Row {
        Text folder, path;
    };
    for (const auto& row : {Row{"/m", "/m/a"}, Row{"/", "/a"}, Row{"/m/", "/m/a"}, Row{"/m//", "/m//a"},
                            Row{"", "/a"}, Row{"m", "m/a"}}) {
        CAPTURE(row.folder);
        CHECK(joined(row.folder, "a") == row.path);
    }
}
