// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/feed.h"
#include "engines/audio/gain.h"
#include "engines/audio/hearing_log.h"
#include "engines/audio/timeline.h"

#include <doctest/doctest.h>
#include <numeric>
#include <vector>

TEST_CASE("A feed gives what was put into it, in order, however it is cut up")
{
    audio::Feed feed(8000, 500, 7);
    std::int16_t next = 0;
    std::int16_t expected = 0;
    std::vector<std::int16_t> read(2 * 300);
    for (int time = 0; time < 100; ++time) {
        const auto space = feed.space();
        const std::size_t frames = std::min<std::size_t>(space.size() / 2, 170);
        for (std::size_t n = 0; n < frames; ++n, ++next)
            space[n * 2] = space[n * 2 + 1] = next;
        feed.commit(frames);
        CHECK(feed.end() == 500 + next);
        const std::size_t got = feed.read(read.data(), 150);
        for (std::size_t n = 0; n < got; ++n, ++expected)
            REQUIRE((read[n * 2] == expected && read[n * 2 + 1] == expected));
        CHECK(feed.position() == 500 + expected);
        CHECK(feed.available() == static_cast<std::size_t>(next - expected));
    }
    while (!feed.space().empty())
        feed.commit(feed.space().size() / 2);
    CHECK(feed.available() == feed.capacity());
}

TEST_CASE("A place in a stream tells what is heard there")
{
    audio::HearingLog log;
    CHECK(log.runAt(10).kind == audio::Heard::nothing);
    log.note({audio::Heard::sound, 0, 1000, 1});
    log.note({audio::Heard::sound, 441, 1441, 1}); // goes on
    log.note({audio::Heard::silence, 882, 1882, 1});
    log.note({audio::Heard::sound, 1323, 1882, 1});
    log.note({audio::Heard::sound, 2000, 90, 2}); // a seek
    log.runAt(0);
    CHECK(!log.end());
    log.note({audio::Heard::end, 2100, 190, 2});
    log.runAt(0);
    CHECK(log.end().value_or(0) == 2100);

    struct Case {
        std::int64_t at;
        audio::Heard kind;
        std::int64_t source;
        std::uint64_t serial;
        std::int64_t nextAt; // 0: none
    };
    const Case cases[] = {
        {0, audio::Heard::sound, 1000, 1, 882},      {881, audio::Heard::sound, 1000, 1, 882},
        {882, audio::Heard::silence, 1882, 1, 1323}, {1999, audio::Heard::sound, 1882, 1, 2000},
        {2000, audio::Heard::sound, 90, 2, 2100},    {2100, audio::Heard::end, 190, 2, 0},
        {999999, audio::Heard::end, 190, 2, 0},
    };
    for (const auto& c : cases) {
        CAPTURE(c.at);
        const audio::NotedRun& run = log.runAt(c.at);
        CHECK(run.kind == c.kind);
        CHECK(run.source == c.source);
        CHECK(run.serial == c.serial);
        CHECK((log.nextRun() == nullptr ? 0 : log.nextRun()->at) == c.nextAt);
    }
}

TEST_CASE("A log that nobody reads loses the newest runs, and never waits")
{
    audio::HearingLog log;
    for (std::int64_t n = 0; n < 1000; ++n)
        log.note({n % 2 == 0 ? audio::Heard::sound : audio::Heard::silence, n * 10, n, 1});
    CHECK(log.runAt(105).at == 100);
    log.note({audio::Heard::sound, 10000, 5000, 1});
    CHECK(log.runAt(10001).source == 5000);
}

TEST_CASE("A timeline of several rates counts evenly in the first")
{
    const audio::Timeline timeline({{44100, 44100}, {22050, 22050}, {96000, 48000}});
    CHECK(timeline.rate() == 44100);
    CHECK(timeline.frames() == 162150);
    struct Case {
        std::int64_t frame;
        std::int64_t even;
        std::int32_t milliseconds;
    };
    const Case cases[] = {
        {0, 0, 0},
        {44099, 44099, 999},
        {44100, 44100, 1000},
        {55125, 66150, 1500},
        {66150, 88200, 2000},
        {162150, 176400, 4000},
    };
    for (const auto& c : cases) {
        CAPTURE(c.frame);
        CHECK(timeline.even(c.frame) == c.even);
        CHECK(timeline.frameAtEven(c.even) == c.frame);
        CHECK(timeline.milliseconds(c.frame) == c.milliseconds);
    }
    CHECK(timeline.frameAtEven(1000000) == 162150);
}

TEST_CASE("A place in milliseconds reads back as it was set")
{
    for (const int rate : {8000, 11025, 44100, 48000, 192000}) {
        const audio::Timeline timeline({{rate * 10, rate}});
        for (std::int32_t milliseconds = 0; milliseconds <= 10000; milliseconds += 7)
            CHECK(timeline.milliseconds(timeline.frameAtMilliseconds(milliseconds)) == milliseconds);
        CHECK(timeline.frameAtMilliseconds(-5) == 0);
    }
    CHECK(audio::Timeline().milliseconds(5) == 0);
    CHECK(audio::Timeline().frameAtMilliseconds(5) == 0);
}

TEST_CASE("Levels scale each side by itself, and 100 changes no sample")
{
    const auto levels = std::make_shared<audio::Levels>();
    std::vector<std::int16_t> all(65536);
    std::iota(all.begin(), all.end(), std::int16_t{-32768});
    auto played = all;
    audio::Gain(levels, 44100).apply(played.data(), played.size() / 2);
    CHECK((played == all));

    levels->set({50, 0});
    std::vector<std::int16_t> loud(400, -32768);
    audio::Gain(levels, 44100)
        .apply(loud.data(), loud.size() / 2); // a stream begins at the levels as they are
    for (std::size_t n = 0; n < loud.size(); n += 2)
        REQUIRE((loud[n] == -16384 && loud[n + 1] == 0));
}

TEST_CASE("A new level is reached in even steps within a two-hundredth of a second, and stays")
{
    const auto levels = std::make_shared<audio::Levels>();
    audio::Gain gain(levels, 44100);
    const auto heard = [&](audio::Levels::Pair set) {
        levels->set(set);
        std::vector<std::int16_t> samples(600, 10000);
        gain.apply(samples.data(), samples.size() / 2);
        return samples;
    };
    const auto down = heard({50, 100});
    const auto up = heard({100, 20});
    const auto after = heard({100, 20});
    for (int frame = 0; frame < 300; ++frame) {
        CAPTURE(frame);
        const double share = std::min((frame + 1) / 221.0, 1.0);
        const auto left = static_cast<std::size_t>(2 * frame);
        CHECK(std::abs(down[left] - (10000 - 5000 * share)) < 2);
        CHECK(down[left + 1] == 10000);
        CHECK(std::abs(up[left] - (5000 + 5000 * share)) < 2);
        CHECK(std::abs(up[left + 1] - (10000 - 8000 * share)) < 2);
        CHECK(after[left] == 10000);
        CHECK(after[left + 1] == 2000);
    }
}
