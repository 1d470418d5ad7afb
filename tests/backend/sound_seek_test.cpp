// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/files.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::size_t second = 44100;

// The runs of frames that follow each other in a recording of the counting sound, first and last number.
std::vector<std::pair<std::int64_t, std::int64_t>> runsOf(const StereoFrames& recording)
{
    std::vector<std::pair<std::int64_t, std::int64_t>> runs;
    for (const auto& frame : sounding(recording)) {
        const std::int64_t number = numberOf(frame);
        if (runs.empty() || number != runs.back().second + 1)
            runs.emplace_back(number, number);
        runs.back().second = number;
    }
    return runs;
}

std::int64_t stepFrames(const Mp3Play& mp3) { return std::llround(mp3.FrameDuration() * 44.1); }

}

TEST_CASE("A seek while playing goes on exactly from the new place, forwards and backwards")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 10)), "");
    const std::int64_t step = stepFrames(*parts.mp3);
    Recorder recorder(server);
    parts.mp3->Play();
    recorder.waitForSound();
    for (const std::int32_t frame : {300, 20}) {
        const auto then = Recorder::Clock::now();
        parts.mp3->Seek(frame);
        CHECK(parts.mp3WentOn(frame, then));
        CHECK(waitUntil([&] { return parts.mp3->CurrentFrame() > frame + 5; }));
        CHECK(parts.mp3WentOn(frame, then));
    }
    parts.mp3->Stop();
    const auto runs = runsOf(recordedToTheEnd(recorder));
    REQUIRE(runs.size() == 3);
    CHECK(runs[0].first == 0);
    CHECK(runs[1].first == 300 * step);
    CHECK(runs[2].first == 20 * step);
}

TEST_CASE("A seek in a pause is silent, and playing continues exactly from there")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 10)), "");
    const std::int64_t step = stepFrames(*parts.mp3);
    Recorder recorder(server);
    parts.mp3->Play();
    recorder.waitForSound();
    parts.mp3->Pause();
    parts.mp3->Seek(200);
    CHECK(parts.mp3->CurrentFrame() == 200);
    CHECK(parts.mp3->IsPlaying() == 1);
    const auto before = recordedToTheEnd(recorder).size();
    CHECK(parts.mp3->CurrentFrame() == 200);
    parts.mp3->Seek(100);
    CHECK(parts.mp3->CurrentFrame() == 100);
    parts.mp3->Play();
    recorder.waitForSound(before);
    parts.mp3->Stop();
    const auto runs = runsOf(recordedToTheEnd(recorder));
    REQUIRE(runs.size() == 2);
    CHECK(runs[1].first == 100 * step);
}

TEST_CASE("After a seek an MP3 file sounds as it does when played through")
{
    SoundServer server;
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, mp3Bytes(noise(second * 2), {.bitrate = 64, .isVariable = true}));
    Recorder recorder(server);
    parts.mp3->Open(path, "");
    parts.mp3->Seek(50);
    CHECK(parts.mp3->CurrentFrame() == 50);
    parts.mp3->Play();
    CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    auto expected = decoded(path);
    expected.erase(expected.begin(), expected.begin() + 50 * 1152);
    CHECK((sounding(recordedToTheEnd(recorder)) == sounding(expected)));
}

TEST_CASE("From says once where the next Play of a WAV file starts")
{
    SoundServer server;
    SoundParts parts;
    parts.openWav(putWav(parts.folder / "a.wav", counting(second)));
    Recorder recorder(server);
    parts.wav->setFrom(900);
    parts.wav->setCommand("Play");
    CHECK(waitUntil([&] { return parts.wav->Position() == 1000; }));
    parts.wav->setFrom(500);
    parts.wav->setCommand("Open");
    parts.wav->setCommand("Play");
    CHECK(waitUntil([&] { return parts.wav->Position() == 1000; }));
    const auto runs = runsOf(recordedToTheEnd(recorder));
    REQUIRE(runs.size() == 2);
    CHECK(runs[0].first == 39690);
    CHECK(runs[0].second == 44099);
    CHECK(runs[1].first == 0);
    CHECK(runs[1].second == 44099);
}

TEST_CASE("Many seeks in a row end at the last one")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 10)), "");
    Recorder recorder(server);
    parts.mp3->Play();
    for (std::int32_t frame = 0; frame < 200; ++frame) {
        const auto then = Recorder::Clock::now();
        parts.mp3->Seek(frame);
        CHECK(parts.mp3WentOn(frame, then));
    }
    CHECK(waitUntil([&] { return parts.mp3->CurrentFrame() > 205; }));
    parts.mp3->Stop();
    CHECK(runsOf(recordedToTheEnd(recorder)).back().first == 199 * stepFrames(*parts.mp3));
}

TEST_CASE("A seek to the end of a playing file ends it")
{
    SoundServer server;
    SoundParts parts;
    parts.mp3->Open(putWav(parts.folder / "a.wav", counting(second * 10)), "");
    parts.mp3->Play();
    parts.mp3->Seek(1000000);
    CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    CHECK(parts.mp3->CurrentFrame() == 0);
}
