// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/place_watch.h"

#include <utility>

namespace
{

// Milliseconds: sound that is on its way, and a machine that is busy between the two looks.
constexpr std::int64_t slack = 250;

}

// Playing may have begun or ended anywhere between the two looks.
bool PlaceWatch::jumped(const Seen& now)
{
    const Seen before = std::exchange(last_, now);
    if (now.track != before.track)
        return false;
    const std::int64_t went =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.at - before.at).count();
    const std::int64_t least = before.plays && now.plays ? went : 0;
    const std::int64_t most = before.plays || now.plays ? went : 0;
    const std::int64_t moved = std::int64_t{now.place} - before.place;
    return moved < least - slack || moved > most + slack;
}
