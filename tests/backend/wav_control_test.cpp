// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/thinned_source.h"
#include "tests/support/no_sound.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

namespace
{

constexpr std::size_t second = 44100;

// The frames that a source gives, read in odd pieces.
StereoFrames readAll(audio::PcmSource& source)
{
    StereoFrames all;
    StereoFrames piece(777);
    for (;;) {
        const auto frames = source.read(std::span(&piece.data()->left, piece.size() * 2));
        if (frames == 0)
            return all;
        all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(frames));
    }
}

void putFloats(const Text& path, const std::vector<float>& samples, int channels, int format)
{
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    sf_write_float(file, samples.data(), static_cast<sf_count_t>(samples.size()));
    sf_close(file);
}

}

TEST_CASE("A WAV file of any coding opens with its length and gives its sound from any place")
{
    struct Case {
        const char* what;
        int format;
        int off; // the largest difference that the coding makes
    };
    const Case cases[] = {
        {"16 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0},
        {"8 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 256},
        {"24 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 0},
        {"32 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 0},
        {"floating point", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 0},
        {"double precision", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 0},
        {"Microsoft ADPCM", SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, 4000},
        {"IMA ADPCM", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 4000},
        {"u-law", SF_FORMAT_WAV | SF_FORMAT_ULAW, 1000},
        {"extensible", SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, 0},
        {"RF64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 0},
        {"big endian", SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, 0},
    };
    TemporaryFolder folder;
    const auto sound = tone(second / 2);
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto opened = audio::openWavSound(putWav(folder / "a.wav", sound, 44100, c.format));
        REQUIRE(opened);
        CHECK(opened->timeline.milliseconds(opened->timeline.frames()) / 30 ==
              500 / 30); // a last block may be filled up
        const auto all = readAll(*opened->source);
        CHECK(all.size() == static_cast<std::size_t>(opened->timeline.frames()));
        CHECK(all.size() >= sound.size());
        CHECK(largestDifference(all, sound) <= c.off);
        for (const std::size_t place : {std::size_t{10000}, std::size_t{1}, all.size()}) {
            opened->source->seek(static_cast<std::int64_t>(place));
            CHECK((readAll(*opened->source) ==
                   StereoFrames(all.begin() + static_cast<std::ptrdiff_t>(place), all.end())));
        }
    }
}

TEST_CASE("One channel is heard on both sides, many are mixed down without clipping")
{
    TemporaryFolder folder;
    struct Case {
        const char* what;
        int channels;
        std::vector<float> frame;
        StereoFrame expected;
    };
    const Case cases[] = {
        {"one", 1, {0.25F}, {8192, 8192}},
        {"left of 5.1", 6, {1, 0, 0, 0, 0, 0}, {13573, 0}},
        {"centre of 5.1", 6, {0, 0, 1, 0, 0, 0}, {9598, 9598}},
        {"low frequency of 5.1", 6, {0, 0, 0, 1, 0, 0}, {0, 0}},
        {"all of 5.1", 6, {1, 1, 1, 1, 1, 1}, {32767, 32767}},
        {"four", 4, {0, 0.5F, 0, 0}, {0, 9598}},
        {"ten", 10, {1, 0, 1, 0, 1, 0, 1, 0, 1, 0}, {32767, 0}},
        {"too loud", 2, {2, -3}, {32767, -32768}},
        {"not a number", 2, {std::nanf(""), 0.5F}, {0, 16384}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        putFloats(folder / "a.wav", c.frame, c.channels, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
        const auto opened = audio::openWavSound(folder / "a.wav");
        REQUIRE(opened);
        const auto heard = readAll(*opened->source);
        REQUIRE(heard.size() == 1);
        CHECK(largestDifference(heard, {c.expected}) <= 1);
    }
}

TEST_CASE("A rate that no output takes is brought down, and the length stays")
{
    TemporaryFolder folder;
    struct Case {
        int rate;
        int playedAt;
    };
    const Case cases[] = {
        {8000, 8000}, {192000, 192000}, {352800, 176400}, {384000, 192000}, {768000, 192000}};
    for (const auto& c : cases) {
        CAPTURE(c.rate);
        const StereoFrames sound(static_cast<std::size_t>(c.rate), {1000, -500});
        const auto opened = audio::playable(*audio::openWavSound(putWav(folder / "a.wav", sound, c.rate)));
        CHECK(opened.source->rate() == c.playedAt);
        CHECK(opened.timeline.rate() == c.playedAt);
        CHECK(opened.timeline.milliseconds(opened.timeline.frames()) == 1000);
        opened.source->seek(c.playedAt / 2);
        CHECK((readAll(*opened.source) ==
               StereoFrames(static_cast<std::size_t>(c.playedAt / 2), {1000, -500})));
    }
}

TEST_CASE("What is no WAV file leaves the engine closed")
{
    SoundParts parts;
    const Text good = putWav(parts.folder / "good.wav", noise(second));
    putFile(parts.folder / "mp3.wav", mp3Bytes(noise(second)));
    putFile(parts.folder / "empty.wav", "");
    putFile(parts.folder / "text.wav", Text(5000, 't'));
    putFile(parts.folder / "head.wav", fileBytes(good).substr(0, 20));
    putFile(parts.folder / "riff.wav", "RIFF\x10\0\0\0AVI " + Text(100, '\0'));
    putWav(parts.folder / "ogg.wav", noise(second), 44100, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    putWav(parts.folder / "flac.wav", noise(second), 44100, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    putWav(parts.folder / "aiff.wav", noise(second), 44100, SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
    mkfifo((parts.folder / "pipe.wav").c_str(), 0600);
    mkdir((parts.folder / "folder.wav").c_str(), 0700);
    for (const char* name : {"mp3.wav", "empty.wav", "text.wav", "head.wav", "riff.wav", "ogg.wav",
                             "flac.wav", "aiff.wav", "pipe.wav", "folder.wav", "missing.wav"}) {
        CAPTURE(name);
        parts.openWav(good);
        CHECK(parts.wav->Length() == 1000);
        parts.openWav(parts.folder / name);
        parts.wav->setCommand("Play");
        CHECK(parts.wav->Length() == 0);
        CHECK(parts.wav->Position() == 0);
        CHECK(parts.activity.running == 0);
    }
}

TEST_CASE("A WAV file that was cut off plays what is there")
{
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.wav", noise(second));
    std::filesystem::resize_file(path, 44 + 4 * second / 2);
    parts.openWav(path);
    CHECK(parts.wav->Length() == 500);
}

TEST_CASE("Command words do what they say, and others nothing")
{
    const NoSound none;
    SoundParts parts;
    for (const char* word : {"Play", "Stop", "Close", "Open", "", "Pause", "play"})
        parts.wav->setCommand(word);
    parts.wav->setFrom(10);
    CHECK(parts.wav->Length() == 0);
    CHECK(parts.wav->Position() == 0);

    parts.wav->setDeviceType("WaveAudio");
    parts.wav->setFileName(putWav(parts.folder / "a.wav", noise(second * 5)));
    CHECK(parts.wav->Length() == 0);
    parts.wav->setCommand("Open");
    CHECK(parts.wav->Length() == 5000);
    parts.wav->setCommand("play");
    CHECK(parts.activity.running == 0);
    parts.wav->setCommand("Play");
    parts.wav->setCommand("Play");
    CHECK(parts.activity.running == 1);
    REQUIRE(waitUntil([&] { return parts.wav->Position() > 50; }));
    parts.wav->setFileName(parts.folder / "b.wav"); // the next Open's
    CHECK(parts.wav->Length() == 5000);
    parts.wav->setCommand("Stop");
    CHECK(parts.activity.running == 0);
    CHECK(parts.wav->Position() > 0);
    parts.wav->setCommand("Close");
    CHECK(parts.wav->Position() == 0);
    CHECK(parts.wav->Length() == 0);
}

TEST_CASE("From is held to the file's ends, used once, and forgotten by Open and Close")
{
    const NoSound none;
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.wav", noise(second * 5));
    struct Case {
        std::int32_t from;
        std::int32_t position;
    };
    const Case cases[] = {{-100, 0}, {333, 333}, {4999, 4999}, {9999, 5000}, {2147483647, 5000}};
    for (const auto& c : cases) {
        CAPTURE(c.from);
        parts.openWav(path);
        parts.wav->setFrom(c.from);
        CHECK(parts.wav->Position() == c.position);
        CHECK(parts.wav->state() == Hearing::State::halted);
        const auto then = std::chrono::steady_clock::now();
        parts.wav->setCommand("Play");
        CHECK(wentOn(parts.wav->Position(), c.position, then));
    }
    parts.openWav(path);
    parts.wav->setFrom(3000);
    parts.wav->setCommand("Open");
    parts.wav->setCommand("Play");
    CHECK(parts.wav->Position() < 1000);
    parts.wav->setFrom(3000);
    parts.wav->setCommand("Close");
    parts.wav->setCommand("Open");
    parts.wav->setCommand("Play");
    CHECK(parts.wav->Position() < 1000);
}
