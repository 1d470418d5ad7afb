// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/files.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::size_t second = 44100;

StereoFrames constant(std::size_t frames) { return StereoFrames(frames, {10000, 10000}); }

}

TEST_CASE("A new level is heard within 60 ms, and reached without a step")
{
    SoundServer server;
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.wav", constant(second * 20));
    parts.openWav(path);
    parts.mp3->Open(path, ""); // the levels are set through this engine, whichever plays
    Recorder recorder(server);
    parts.wav->setCommand("Play");
    recorder.waitForSound();

    const auto hearing = [&](std::int16_t level) {
        const auto then = Recorder::Clock::now();
        parts.mp3->SetVolume(level, static_cast<std::int16_t>(level / 2));
        const StereoFrame wanted{static_cast<std::int16_t>(level * 100),
                                 static_cast<std::int16_t>(level / 2 * 100)};
        REQUIRE(waitUntil([&] { return recorder.latest().first == wanted; }));
        const std::chrono::duration<double, std::milli> took = recorder.latest().second - then;
        return took.count();
    };
    const double best = atBest(60, [&] {
        hearing(100);
        return hearing(20);
    });
    CHECK(best < 60);
    MESSAGE("A new level was heard after " << best << " ms");

    int largest = 0;
    const auto heard = sounding(recorder.frames());
    for (std::size_t n = 1; n < heard.size(); ++n)
        largest = std::max(largest, std::abs(heard[n].left - heard[n - 1].left));
    CHECK(largest > 0);
    CHECK(largest <= 10000 * 80 / 100 / 200); // 80 of 100, over 5 ms, in single steps
}

TEST_CASE("A level of 0 is silence, and the other channel is not touched by it")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", constant(second / 4)), "");
    parts.mp3->SetVolume(0, 100);
    Recorder recorder(server);
    parts.mp3->Play();
    REQUIRE(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    const auto heard = sounding(recordedToTheEnd(recorder));
    CHECK((heard == StereoFrames(second / 4, {0, 10000})));
}

TEST_CASE("The levels are 100 at first, held to their range, and kept for the next run")
{
    SoundParts parts;
    const Text file = putWav(parts.folder / "a.wav", constant(100));
    CHECK(parts.output.levels() == audio::Levels::Pair{100, 100});
    REQUIRE(parts.mp3->Open(file, "") == 0);
    CHECK(parts.mp3->LeftVolume() == 100);

    struct Case {
        std::int16_t left;
        std::int16_t right;
        audio::Levels::Pair then;
    };
    const Case cases[] = {{80, 50, {80, 50}}, {20, -30, {20, 0}}, {32767, 101, {100, 100}}, {0, 0, {0, 0}}};
    for (const auto& c : cases) {
        CAPTURE(c.left);
        parts.mp3->SetVolume(c.left, c.right);
        CHECK(parts.mp3->LeftVolume() == c.then.left);
        CHECK(parts.mp3->RightVolume() == c.then.right);
        CHECK(audio::SoundOutput(parts.folder / "state/levels", parts.activity).levels() == c.then);
    }
}

TEST_CASE("With nothing open the levels read 0 and are not set")
{
    SoundParts parts;
    parts.mp3->SetVolume(10, 10);
    CHECK(parts.mp3->LeftVolume() == 0);
    CHECK(parts.mp3->RightVolume() == 0);
    CHECK(parts.output.levels() == audio::Levels::Pair{100, 100});
}

TEST_CASE("A damaged file of levels counts as none, and a folder that cannot be written loses them quietly")
{
    TemporaryFolder folder;
    CountedActivity activity;
    for (const char* content : {"", "loud", "50", "50 fifty", "999999 3"}) {
        CAPTURE(content);
        putFile(folder / "levels", content);
        CHECK(audio::SoundOutput(folder / "levels", activity).levels() == audio::Levels::Pair{100, 100});
    }
    putFile(folder / "levels", "120 -5");
    CHECK(audio::SoundOutput(folder / "levels", activity).levels() == audio::Levels::Pair{100, 0});

    audio::SoundOutput nowhere(folder / "levels/state/levels", activity);
    nowhere.setLevels({30, 40});
    CHECK(nowhere.levels() == audio::Levels::Pair{30, 40});
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"levels"});
}
