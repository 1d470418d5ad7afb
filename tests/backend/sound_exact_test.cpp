// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/files.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::size_t second = 44100;

StereoFrames playedByMp3Play(SoundServer& server, SoundParts& parts, const Text& path)
{
    Recorder recorder(server);
    REQUIRE(parts.mp3->Open(path, "") == 0);
    parts.mp3->Play();
    REQUIRE(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    return recordedToTheEnd(recorder);
}

StereoFrames playedByControl(SoundServer& server, SoundParts& parts, const Text& path)
{
    Recorder recorder(server);
    parts.openWav(path);
    parts.wav->setCommand("Play");
    REQUIRE(waitUntil([&] { return parts.wav->Position() == parts.wav->Length(); }));
    return recordedToTheEnd(recorder);
}

}

TEST_CASE("An MP3 file is heard sample for sample as the decoder gives it")
{
    struct Case {
        const char* what;
        Mp3Settings settings;
    };
    const Case cases[] = {
        {"constant rate", {}},
        {"192 kilobits", {.bitrate = 192}},
        {"variable rate", {.isVariable = true}},
        {"one channel", {.isMono = true}},
        {"free format", {.bitrate = 400, .isFreeFormat = true}},
        {"no Info frame", {.hasInfoFrame = false}},
    };
    SoundServer server;
    SoundParts parts;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text path = parts.folder / "a.mp3";
        putFile(path, mp3Bytes(noise(second / 3), c.settings));
        const auto heard = sounding(playedByMp3Play(server, parts, path));
        const auto expected = sounding(decoded(path));
        CHECK(heard.size() == expected.size());
        CHECK((heard == expected));
    }
}

TEST_CASE("An MP3 file at half the rate is heard sample for sample")
{
    SoundServer server(22050);
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, mp3Bytes(noise(second / 4), {.rate = 22050, .bitrate = 64}));
    CHECK((sounding(playedByMp3Play(server, parts, path)) == sounding(decoded(path))));
}

TEST_CASE("A WAV file is heard sample for sample on both engines")
{
    SoundServer server;
    SoundParts parts;
    const auto sound = noise(second);
    const Text path = putWav(parts.folder / "a.wav", sound);
    CHECK((sounding(playedByControl(server, parts, path)) == sound));
    CHECK((sounding(playedByMp3Play(server, parts, path)) == sound));
}

TEST_CASE("A file plays without a gap")
{
    SoundServer server;
    SoundParts parts;
    const auto sound = noise(second / 2);
    const Text path = putWav(parts.folder / "a.wav", sound);
    // A busy machine may leave one now and then, but not every time.
    bool isWhole = false;
    for (int time = 0; time < 10 && !isWhole; ++time)
        isWhole = trimmed(playedByControl(server, parts, path)) == sound;
    CHECK(isWhole);
}

TEST_CASE("A clip shorter than any buffer is heard whole")
{
    SoundServer server;
    SoundParts parts;
    for (const std::size_t frames : {1U, 10U, 441U, 900U}) {
        CAPTURE(frames);
        const auto sound = noise(frames);
        const Text path = putWav(parts.folder / "a.wav", sound);
        Recorder recorder(server);
        parts.mp3->Open(path, "");
        parts.mp3->Play();
        CHECK(parts.mp3->IsPlaying() == 1);
        CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
        recorder.waitForSound();
        CHECK((sounding(recordedToTheEnd(recorder)) == sound));
    }
}

TEST_CASE("Two engines sound together, and neither disturbs the other")
{
    SoundServer server;
    SoundParts parts;
    auto left = noise(second, 1);
    auto right = noise(second / 2, 2);
    for (auto& frame : left)
        frame.right = 0;
    for (auto& frame : right)
        frame.left = 0;
    const Text rightPath = putWav(parts.folder / "right.wav", right);
    parts.openWav(putWav(parts.folder / "left.wav", left));

    Recorder recorder(server);
    parts.wav->setCommand("Play");
    recorder.waitForSound();
    parts.mp3->Open(rightPath, "");
    parts.mp3->Play();
    CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    parts.mp3->Open(rightPath, "");
    parts.mp3->Close();
    CHECK(waitUntil([&] { return parts.wav->Position() == parts.wav->Length(); }));

    StereoFrames heardLeft = recordedToTheEnd(recorder);
    StereoFrames heardRight = heardLeft;
    for (auto& frame : heardLeft)
        frame.right = 0;
    for (auto& frame : heardRight)
        frame.left = 0;
    CHECK((sounding(heardLeft) == left));
    CHECK((sounding(heardRight) == right));
}

TEST_CASE("Files joined at different rates are heard one after the other, each at its own rate")
{
    SoundServer server;
    SoundParts parts;
    const Text path = parts.folder / "joined.mp3";
    const Text first = mp3Bytes(noise(second / 4, 1), {.hasInfoFrame = false});
    const Text second48 = mp3Bytes(tone(12000, 48000), {.rate = 48000, .hasInfoFrame = false});
    putFile(path, first);
    const auto expected = sounding(decoded(path));
    putFile(path, first + second48);

    const auto heard = sounding(playedByMp3Play(server, parts, path));
    REQUIRE(heard.size() > expected.size());
    CHECK(std::equal(expected.begin(), expected.end(), heard.begin()));
    // The tone behind it lasts a quarter of a second, and what the encoder puts around it.
    const double tail = static_cast<double>(heard.size() - expected.size()) / second;
    CHECK(tail > 0.24);
    CHECK(tail < 0.33);
}
