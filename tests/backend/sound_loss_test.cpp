// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/no_sound.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>
#include <sys/resource.h>

using namespace std::chrono_literals;

namespace
{

constexpr std::size_t second = 44100;

using Clock = std::chrono::steady_clock;

double processorSeconds()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6;
}

// The largest difference between how the position advances and how the time does, milliseconds, over a while.
double unsteadiness(const MMControl& wav)
{
    return atBest(60, [&] {
        const auto began = Clock::now();
        const std::int32_t first = wav.Position();
        double worst = 0;
        while (Clock::now() - began < 300ms) {
            worst = std::max(worst, std::abs(wav.Position() - first - millisecondsSince(began)));
            std::this_thread::sleep_for(2ms);
        }
        return worst;
    });
}

// How far the position is from what was recorded last, milliseconds.
double distance(double position, const Recorder& recorder)
{
    return std::abs(position - static_cast<double>(numberOf(recorder.latest().first)) / 44.1);
}

}

TEST_CASE("Without a sound server a file plays silently at the pace of the clock")
{
    NoSound none;
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.wav", noise(second));
    const auto starting = [&] {
        SoundParts others;
        const auto then = Clock::now();
        others.mp3->Open(path, "");
        others.mp3->Play();
        return millisecondsSince(then);
    };
    CHECK(atBest(50, starting) < 50);
    parts.mp3->Open(path, "");
    const auto playing = [&] {
        const auto then = Clock::now();
        parts.mp3->Play();
        CHECK(parts.mp3->IsPlaying() == 1);
        CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
        return millisecondsSince(then);
    };
    CHECK(playing() >= 1000);
    CHECK(waitUntil([&] { return parts.post.count() == 1; })); // a busy machine tells it later
    CHECK(atBest(1200, playing) < 1200);
}

TEST_CASE("Without a sound server a file can be paused, continued, searched and stopped")
{
    NoSound none;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", noise(second * 60)));
    parts.wav->setCommand("Play");
    REQUIRE(waitUntil([&] { return parts.wav->Position() > 200; }));
    CHECK(unsteadiness(*parts.wav) < 60);

    std::int32_t standing = -1;
    const auto runningOn = [&] {
        parts.wav->setCommand("Play");
        const std::int32_t from = parts.wav->Position();
        REQUIRE(waitUntil([&] { return parts.wav->Position() > from + 50; }));
        parts.wav->setCommand("Stop");
        const std::int32_t stopped = parts.wav->Position();
        CHECK(waitUntil([&] {
            const std::int32_t before = std::exchange(standing, parts.wav->Position());
            std::this_thread::sleep_for(200ms);
            return before == standing;
        }));
        return standing - stopped;
    };
    CHECK(atBest(60, runningOn) < 60);

    auto then = Clock::now();
    parts.wav->setCommand("Play");
    REQUIRE(waitUntil([&] { return parts.wav->Position() > standing + 100; }));
    CHECK(wentOn(parts.wav->Position(), standing, then));
    then = Clock::now();
    parts.wav->setFrom(30000);
    parts.wav->setCommand("Play");
    CHECK(wentOn(parts.wav->Position(), 30000, then));
    CHECK(waitUntil([&] { return parts.wav->Position() > 30100; }));
    CHECK(wentOn(parts.wav->Position(), 30000, then));
    parts.wav->setCommand("Close");
    CHECK(parts.wav->Position() == 0);
    CHECK(parts.activity.running == 0);
}

TEST_CASE("An output that takes sound without end counts as none")
{
    NoSound none;
    none.configureAlsa("pcm.!default { type null }\nctl.!default { type null }\n");
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", noise(second * 20)));
    const double before = processorSeconds();
    const auto then = Clock::now();
    parts.wav->setCommand("Play");
    std::int32_t last = 0;
    while (last <= 1200 && millisecondsSince(then) < 20000) {
        const std::int32_t position = parts.wav->Position();
        CHECK(position >= last);
        last = position;
        CHECK(position < millisecondsSince(then) + 20);
        std::this_thread::sleep_for(5ms);
    }
    CHECK(last > 1200);
    CHECK(processorSeconds() - before < 0.3); // nothing spins meanwhile
    CHECK(unsteadiness(*parts.wav) < 60);
}

TEST_CASE("A server that dies while a file plays is replaced by the clock, and sound returns with it")
{
    SoundServer server;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", counting(second * 60)));
    parts.wav->setCommand("Play");
    REQUIRE(waitUntil([&] { return parts.wav->Position() > 300; }));
    const double best = atBest(3000, [&] {
        server.kill();
        CHECK(unsteadiness(*parts.wav) < 60);

        server.start();
        const auto then = Clock::now();
        Recorder recorder(server);
        recorder.waitForSound();
        const double back = millisecondsSince(then);
        CHECK(waitUntil([&] { return distance(parts.wav->Position(), recorder) < 60; }));
        CHECK(unsteadiness(*parts.wav) < 60);
        CHECK(parts.activity.running == 1);
        return back;
    });
    CHECK(best < 3000);
    MESSAGE("Sound was back " << best << " ms after the server");
}

TEST_CASE("A server that comes after Play sounds from the place that was reached")
{
    SoundServer server;
    server.kill();
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 60)), "");
    parts.mp3->Play();
    REQUIRE(waitUntil([&] { return parts.mp3Milliseconds() > 300; }));
    server.start();
    Recorder recorder(server);
    recorder.waitForSound();
    CHECK(waitUntil([&] { return distance(parts.mp3Milliseconds(), recorder) < 90; }));
}

TEST_CASE("While the server hangs every call returns at once, the file plays on, and sound returns")
{
    SoundServer server;
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.wav", counting(second * 60));
    parts.openWav(path);
    parts.wav->setCommand("Play");
    REQUIRE(waitUntil([&] { return parts.wav->Position() > 300; }));

    const auto longestCall = [&] {
        double worst = 0;
        const auto timed = [&](auto call) {
            const auto then = Clock::now();
            call();
            worst = std::max(worst, millisecondsSince(then));
        };
        timed([&] { parts.mp3->Open(path, ""); });
        timed([&] { parts.mp3->Play(); });
        timed([&] { parts.mp3->SetVolume(100, 100); }); // the counting sound stays legible
        timed([&] { parts.mp3->Seek(100); });
        timed([&] { parts.mp3->Pause(); });
        timed([&] { parts.mp3->Play(); });
        timed([&] { parts.mp3->Stop(); });
        timed([&] { parts.mp3->Close(); });
        return worst;
    };
    const auto hanging = [&] {
        server.hang();
        const double first = longestCall(); // one that waited for the server would wait for two seconds
        CHECK(atBest(50, longestCall) < 50);

        // Two seconds without a sign, and the clock takes over where the sound broke off.
        const std::int32_t brokeOff = parts.wav->Position();
        CHECK(waitUntil([&] { return parts.wav->Position() > brokeOff + 500; }));
        CHECK(unsteadiness(*parts.wav) < 60);

        server.wakeUp();
        const auto then = Clock::now();
        Recorder recorder(server);
        recorder.waitForSound();
        CHECK(waitUntil([&] { return distance(parts.wav->Position(), recorder) < 60; }));
        return std::max(3 * first, millisecondsSince(then));
    };
    CHECK(atBest(3000, hanging) < 3000);
}

TEST_CASE("A program can end while the server hangs")
{
    const double best = atBest(100, [] {
        SoundServer server;
        const auto then = [&] {
            SoundParts parts;
            parts.openWav(putWav(parts.folder / "a.wav", noise(second * 60)));
            parts.wav->setCommand("Play");
            REQUIRE(waitUntil([&] { return parts.wav->Position() > 100; }));
            server.hang();
            return Clock::now();
        }();
        const double milliseconds = millisecondsSince(then);
        server.wakeUp();
        return milliseconds;
    });
    CHECK(best < 100);
}

TEST_CASE("Pausing, while the server hangs or dies, loses nothing of the place")
{
    const auto loss = [] {
        SoundServer server;
        SoundParts parts;
        parts.openWav(putWav(parts.folder / "a.wav", counting(second * 20)));
        parts.wav->setCommand("Play");
        REQUIRE(waitUntil([&] { return parts.wav->Position() > 300; }));
        parts.wav->setCommand("Stop");
        server.kill();
        const std::int32_t paused = parts.wav->Position();
        server.start();
        Recorder recorder(server);
        parts.wav->setCommand("Play");
        recorder.waitForSound();
        parts.wav->setCommand("Stop");
        return std::abs(static_cast<double>(numberOf(trimmed(recorder.frames()).front())) / 44.1 - paused);
    };
    CHECK(atBest(60, loss) < 60);
}

TEST_CASE("A server that hangs before anything has played holds up nothing")
{
    SoundServer server;
    server.hang();
    const TemporaryFolder folder;
    const Text path = putWav(folder / "a.wav", counting(second * 60));
    const auto starting = [&](SoundParts& parts) {
        const auto began = Clock::now();
        parts.openWav(path);
        parts.wav->setCommand("Play");
        return millisecondsSince(began);
    };
    SoundParts parts;
    CHECK(starting(parts) < 1000); // one that waited for the server would wait for two seconds
    CHECK(atBest(100, [&] {
              SoundParts others;
              return starting(others);
          }) < 100);
    CHECK(waitUntil([&] { return parts.wav->Position() > 200; }));
    server.wakeUp();
    Recorder recorder(server);
    recorder.waitForSound();
    CHECK(!trimmed(recorder.frames()).empty());
}

TEST_CASE("A server that dies while a file is being started does not take the program with it")
{
    SoundServer server;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", noise(second * 60)));
    std::minstd_rand random(1);
    for (int time = 0; time < 40; ++time) {
        parts.wav->setCommand("Open");
        parts.wav->setCommand("Play");
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        if (time % 2 == 0)
            server.hang();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        server.kill();
        server.start();
    }
    CHECK(parts.activity.running == 1);
    Recorder recorder(server);
    parts.wav->setCommand("Open");
    parts.wav->setCommand("Play");
    recorder.waitForSound();
    CHECK(!trimmed(recorder.frames()).empty());
}
