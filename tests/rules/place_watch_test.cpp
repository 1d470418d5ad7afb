// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/place_watch.h"

#include "platform/text.h"

#include <doctest/doctest.h>

using namespace std::chrono_literals;

TEST_CASE("A place that playing does not explain was jumped to")
{
    struct Case {
        Text what;
        PlaceWatch::Seen before;
        PlaceWatch::Seen now;
        bool jumped;
    };
    const PlaceWatch::Time t{};
    const Case cases[] = {
        {"it plays on", {1, 1000, true, t}, {1, 1040, true, t + 40ms}, false},
        {"it plays on, seen late", {1, 1000, true, t}, {1, 4000, true, t + 3s}, false},
        {"it stands in a pause", {1, 1000, false, t}, {1, 1000, false, t + 9s}, false},
        {"it began to play in between", {1, 0, false, t}, {1, 300, true, t + 500ms}, false},
        {"it was paused in between", {1, 1000, true, t}, {1, 1100, false, t + 500ms}, false},
        {"its sound is on its way", {1, 0, true, t}, {1, 0, true, t + 200ms}, false},
        {"forward", {1, 1000, true, t}, {1, 9000, true, t + 40ms}, true},
        {"back", {1, 9000, true, t}, {1, 1000, true, t + 40ms}, true},
        {"in a pause", {1, 1000, false, t}, {1, 9000, false, t + 9s}, true},
        {"its end takes it back", {1, 60000, true, t}, {1, 0, false, t + 40ms}, true},
        {"it hangs", {1, 1000, true, t}, {1, 1000, true, t + 2s}, true},
        {"another track", {1, 60000, true, t}, {2, 0, true, t + 40ms}, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        PlaceWatch watch;
        watch.expect(c.before);
        CHECK(watch.jumped(c.now) == c.jumped);
        CHECK_FALSE(watch.jumped(c.now));
    }
}

TEST_CASE("A jump that was told of is no news")
{
    const PlaceWatch::Time t{};
    PlaceWatch watch;
    watch.expect({1, 1000, true, t});
    watch.expect({1, 9000, true, t});
    CHECK_FALSE(watch.jumped({1, 9040, true, t + 40ms}));
}
