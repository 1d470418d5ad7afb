// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/stream.h"

#include <algorithm>
#include <doctest/doctest.h>
#include <vector>

using namespace std::chrono_literals;

namespace
{

constexpr std::uint64_t serial = 7;

std::shared_ptr<audio::Feed> finishedFeed(std::size_t frames)
{
    const auto feed = std::make_shared<audio::Feed>(44100, 0, serial);
    std::ranges::fill(feed->space().first(frames * 2), std::int16_t{1000});
    feed->commit(frames);
    feed->finish();
    return feed;
}

// A feed of 1000 frames, all of them given to the output.
struct Given {
    Given()
    {
        stream.attach(finishedFeed(1000));
        stream.setFlowing(true);
        stream.write(std::vector<std::int16_t>(4000).data(), 2000);
    }

    std::int64_t positionAt(audio::Stream::Clock::time_point time) const
    {
        return stream.position(serial, time).value_or(-1);
    }

    audio::Stream::Clock::time_point now = audio::Stream::Clock::now();
    audio::Stream stream{std::make_shared<const audio::Levels>(), std::make_shared<audio::Bell>(), 44100};
};

}

TEST_CASE("Between two reports of what was heard the clock tells the position")
{
    Given given;
    given.stream.heard(100, given.now);
    CHECK(given.positionAt(given.now) == 100);
    CHECK(given.positionAt(given.now + 10ms) == 541);
}

TEST_CASE("That the last frame was heard is never guessed: an output that is late keeps the end back")
{
    Given given;
    given.stream.heard(100, given.now);
    CHECK(given.positionAt(given.now + 1s) == 999);
    CHECK_FALSE(given.stream.hasEnded(serial));
    given.stream.heard(1000, given.now + 1s);
    CHECK(given.positionAt(given.now + 1s) == 1000);
    CHECK(given.stream.hasEnded(serial));
}
