// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/first_place.h"

#include <doctest/doctest.h>

TEST_CASE("The first place is the middle of the screen, wherever that begins")
{
    struct Row {
        const char* what;
        Twips start, screen, window, stands;
    };
    const Row rows[] = {
        {"a screen at the origin", 0, 28800, 6435, 11182.5F},
        {"a primary screen right of another one", 19200, 28800, 6435, 30382.5F},
        {"a primary screen left of the origin", -28800, 28800, 6435, -17617.5F},
        {"a window that is wider than the screen", 0, 6000, 6435, -217.5F},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        CHECK(centred(c.start, c.screen, c.window) == c.stands);
    }
}
