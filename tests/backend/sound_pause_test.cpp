// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/files.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>

using namespace std::chrono_literals;

namespace
{

constexpr std::size_t second = 44100;

using Clock = Recorder::Clock;

bool becomesSilent(const Recorder& recorder)
{
    return waitUntil([&] { return recorder.latest().first.isSilent(); });
}

// How long silence takes to come, milliseconds.
template <typename Begin, typename End>
double silencing(const Recorder& recorder, Begin begin, End end)
{
    return atBest(60, [&] {
        const auto before = recorder.size();
        begin();
        recorder.waitForSound(before);
        const auto then = Clock::now();
        end();
        REQUIRE(becomesSilent(recorder));
        return millisecondsSince(then);
    });
}

}

TEST_CASE("Pausing and continuing an MP3 file loses and doubles nothing")
{
    SoundServer server;
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, mp3Bytes(noise(second * 3 / 2)));
    Recorder recorder(server);
    parts.mp3->Open(path, "");
    parts.mp3->Play();
    for (const std::int32_t at : {200, 500, 900}) {
        REQUIRE(waitUntil([&] { return parts.mp3Milliseconds() > at; }));
        parts.mp3->Pause();
        CHECK(parts.mp3->IsPlaying() == 1);
        CHECK(becomesSilent(recorder));
        parts.mp3->Play();
    }
    CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    CHECK((sounding(recordedToTheEnd(recorder)) == sounding(decoded(path))));
}

TEST_CASE("Pausing a WAV file for long, shortly and twice loses and doubles nothing")
{
    SoundServer server;
    SoundParts parts;
    const auto sound = noise(second * 3 / 2);
    parts.openWav(putWav(parts.folder / "a.wav", sound));
    Recorder recorder(server);
    parts.wav->setCommand("Play");
    const std::size_t pauses[] = {0, 400, 4410, 22050}; // frames recorded meanwhile
    for (const std::size_t pause : pauses) {
        const std::int32_t before = parts.wav->Position();
        REQUIRE(waitUntil([&] { return parts.wav->Position() > before + 100; }));
        parts.wav->setCommand("Stop");
        parts.wav->setCommand("Stop");
        const std::size_t from = recorder.size();
        CHECK(waitUntil([&] { return recorder.size() >= from + pause; }));
        parts.wav->setCommand("Play");
    }
    CHECK(waitUntil([&] { return parts.wav->Position() == parts.wav->Length(); }));
    CHECK((sounding(recordedToTheEnd(recorder)) == sound));
}

TEST_CASE("A paused file stands at the frame that was heard last")
{
    SoundServer server;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", counting(second * 2)));
    Recorder recorder(server);
    parts.wav->setCommand("Play");
    REQUIRE(waitUntil([&] { return parts.wav->Position() > 300; }));
    CHECK(parts.activity.running == 1);
    parts.wav->setCommand("Stop");
    CHECK(parts.activity.running == 0);
    const auto heard = trimmed(recordedToTheEnd(recorder));
    const std::int64_t next = numberOf(heard.back()) + 1;
    CHECK(waitUntil([&] { return parts.wav->Position() == next * 1000 / 44100; }));
}

TEST_CASE("Stopping, closing and opening silence what plays in less than 60 ms")
{
    SoundServer server;
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.wav", noise(second * 5));
    Recorder recorder(server);
    const auto playMp3 = [&] {
        parts.mp3->Open(path, "");
        parts.mp3->Play();
    };
    const auto playWav = [&] {
        parts.openWav(path);
        parts.wav->setCommand("Play");
    };
    CHECK(silencing(recorder, playMp3, [&] { parts.mp3->Stop(); }) < 60);
    CHECK(silencing(recorder, playMp3, [&] { parts.mp3->Close(); }) < 60);
    CHECK(silencing(recorder, playMp3, [&] { parts.mp3->Open(path, ""); }) < 60);
    CHECK(silencing(recorder, playMp3, [&] { parts.mp3->Pause(); }) < 60);
    CHECK(silencing(recorder, playWav, [&] { parts.wav->setCommand("Close"); }) < 60);
    CHECK(silencing(recorder, playWav, [&] { parts.wav->setCommand("Stop"); }) < 60);
}

TEST_CASE("Sound begins within 20 ms of Play")
{
    SoundServer server;
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, mp3Bytes(noise(second * 3)));
    Recorder recorder(server);
    const double best = atBest(20, [&] {
        parts.mp3->Open(path, "");
        REQUIRE(becomesSilent(recorder));
        const auto before = recorder.size();
        const auto then = Clock::now();
        parts.mp3->Play();
        const auto when = recorder.waitForSound(before);
        return std::chrono::duration<double, std::milli>(when - then).count();
    });
    CHECK(best < 20);
    MESSAGE("Play to the first sound: " << best << " ms");
}
