// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_file.h"

#include "engines/codec/decode_file.h"
#include "engines/codec/lame_encoder.h"
#include "engines/formats/mp3_probe.h"
#include "tests/support/info_reader.h"
#include "tests/support/lame_alone.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <doctest/doctest.h>
#include <numeric>

using namespace codec;
using namespace formats;

namespace
{

struct Workplace {
    TemporaryFolder folder;

    Text encode(const Pcm& pcm, const Mp3Settings& settings, unsigned workers = 2)
    {
        putPcmWav(folder / "source.wav", pcm);
        encodeFile(folder / "source.wav", folder / "made.mp3", settings, workers);
        return fileBytes(folder / "made.mp3");
    }

    Pcm decode(const Text& mp3)
    {
        putFile(folder / "some.mp3", mp3);
        decodeFile(folder / "some.mp3", folder / "some.wav", 2);
        return readWav(folder / "some.wav");
    }

    // The chunks after the first, as the encoder plans them.
    std::vector<EncodeChunk> joins(const Mp3Settings& settings)
    {
        const auto file = files::InputFile::openOrFail(folder / "source.wav");
        WavSource source(file);
        const auto clock = LameEncoder(settings, source.rate(), source.channels()).clock();
        auto chunks = planChunks(clock.outputSamples(source.frames()) / clock.frameSamples, clock);
        chunks.erase(chunks.begin());
        return chunks;
    }
};

std::string_view behindTag(std::string_view mp3) { return mp3.substr(readInfoTag(mp3).frameBytes); }

// Decibels between the sound and what coding added to it, over the frames from `first` to `last`.
double signalToNoise(const Pcm& source, const Pcm& coded, std::int64_t first, std::int64_t last)
{
    double signal = 1;
    double noise = 1;
    for (auto i = static_cast<std::size_t>(first * source.channels);
         i < static_cast<std::size_t>(last * source.channels); ++i) {
        const double difference = source.samples.at(i) - coded.samples.at(i);
        signal += source.samples[i] * source.samples[i];
        noise += difference * difference;
    }
    return 10 * std::log10(signal / noise);
}

}

TEST_CASE("A sound of up to eight seconds becomes what the library alone makes of it")
{
    struct Case {
        Text what;
        std::int64_t frames;
        int rate;
        int channels;
        Mp3Settings settings;
        int kilobits;
    };
    const Case cases[] = {
        {"one sample", 1, 44100, 2, {128000, false}, 128},
        {"one frame", 1152, 44100, 2, {128000, false}, 128},
        {"stereo", 330000, 44100, 2, {128000, false}, 128},
        {"highest rate", 330000, 44100, 2, {320000, false}, 320},
        {"too low for a tag", 330000, 44100, 2, {32000, false}, 32},
        {"mono", 330000, 44100, 1, {64000, false}, 64},
        {"half rate", 170000, 22050, 2, {64000, true}, 64},
        {"half rate, lowest", 170000, 22050, 1, {8000, true}, 8},
        {"resampled", 350000, 48000, 2, {128000, false}, 128},
        {"resampled up", 60000, 8000, 1, {96000, false}, 96},
        {"resampled to half", 330000, 44100, 2, {56000, true}, 56},
    };
    Workplace place;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Pcm pcm = music(c.frames, c.rate, c.channels);
        const Text alone = lameAlone(pcm, c.kilobits, c.settings.halfSampleRate ? 22050 : 44100);
        const Text made = place.encode(pcm, c.settings);
        CHECK(behindTag(made) == behindTag(alone));
        const bool isResampled = c.rate != (c.settings.halfSampleRate ? 22050 : 44100);
        CHECK(
            (isResampled || made == alone)); // the library's tag can be off by a sample in a resampled sound
        CHECK(alone.size() > 100);
    }
}

TEST_CASE("The number of workers changes no byte")
{
    struct Case {
        Text what;
        Pcm pcm;
        Mp3Settings settings;
    };
    const Case cases[] = {
        {"44.1 kHz", music(41 * 44100), {128000, false}},
        {"from 48 to 22.05 kHz", music(20 * 48000, 48000), {64000, true}},
        {"a rate that seldom meets the frames", music(80 * 11024, 11024, 1), {64000, true}},
    };
    Workplace place;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text one = place.encode(c.pcm, c.settings, 1);
        CHECK(place.joins(c.settings).size() >= 1);
        for (const unsigned workers : {2u, 3u, 8u})
            CHECK(place.encode(c.pcm, c.settings, workers) == one);
    }
}

TEST_CASE("A file of several chunks is as long as one of a single encoder, and sounds as well")
{
    struct Case {
        Text what;
        Pcm pcm;
        Mp3Settings settings;
        int kilobits;
    };
    // `VELMORA_SWEEP=1` asks for songs of a usual length, too.
    std::vector<Case> cases{
        {"128 kbit/s", music(45 * 44100), {128000, false}, 128},
        {"320 kbit/s", music(45 * 44100), {320000, false}, 320},
        {"22.05 kHz, 64 kbit/s", music(45 * 22050, 22050), {64000, true}, 64},
        {"mono", music(45 * 44100, 44100, 1), {96000, false}, 96},
        {"22.05 kHz, mono", music(45 * 22050, 22050, 1), {56000, true}, 56},
    };
    if (std::getenv("VELMORA_SWEEP")) {
        cases.push_back({"128 kbit/s, long", music(600 * 44100), {128000, false}, 128});
        cases.push_back({"320 kbit/s, long", music(600 * 44100), {320000, false}, 320});
        cases.push_back({"22.05 kHz, long", music(600 * 22050, 22050), {64000, true}, 64});
    }
    Workplace place;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text alone = lameAlone(c.pcm, c.kilobits, c.pcm.rate);
        const Text joined = place.encode(c.pcm, c.settings);
        CHECK(joined.size() == alone.size());
        CHECK(joined != alone);

        const auto tag = readInfoTag(joined);
        const auto tagAlone = readInfoTag(alone);
        CHECK(tag.frames == tagAlone.frames);
        CHECK(tag.places == tagAlone.places);
        CHECK(tag.padding == tagAlone.padding);

        const Pcm sound = place.decode(joined);
        const Pcm soundAlone = place.decode(alone);
        REQUIRE(sound.frames() == c.pcm.frames());
        const auto loss = [&](std::int64_t first, std::int64_t last) {
            return signalToNoise(c.pcm, soundAlone, first, last) - signalToNoise(c.pcm, sound, first, last);
        };
        CHECK(loss(0, c.pcm.frames()) < 0.01);
        const auto joins = place.joins(c.settings);
        CHECK(joins.size() >= 3);
        for (const auto& chunk : joins) {
            for (auto frame = chunk.first; frame <= chunk.bodyFirst(); frame += 4) {
                CAPTURE(frame);
                const auto join = frame * (c.settings.halfSampleRate ? 576 : 1152);
                CHECK(loss(join - c.pcm.rate / 2, join + c.pcm.rate / 2) < 0.2);
            }
        }
    }
}

TEST_CASE("The tag at the front tells the truth")
{
    struct Case {
        Text what;
        Pcm pcm;
        Mp3Settings settings;
        std::int64_t sounding; // samples at the rate of the MP3
    };
    const Case cases[] = {
        {"one chunk", music(5 * 44100 + 17), {128000, false}, 5 * 44100 + 17},
        {"several chunks", music(30 * 44100 + 1001), {192000, false}, 30 * 44100 + 1001},
        {"mono, several chunks", music(20 * 22050 + 3, 22050, 1), {56000, true}, 20 * 22050 + 3},
        {"resampled, several chunks", music(30 * 32000 + 7, 32000), {112000, false}, 1323010},
        {"resampled by an odd ratio", music(20 * 11024 + 5, 11024), {64000, true}, 441010},
    };
    Workplace place;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text mp3 = place.encode(c.pcm, c.settings);
        const auto tag = readInfoTag(mp3);
        REQUIRE(tag.present);
        CHECK(tag.flags == 15);
        CHECK(tag.encoder.substr(0, 4) == "LAME");
        CHECK(tag.bytes == mp3.size());
        CHECK(tag.musicLength == mp3.size());
        CHECK(tag.musicChecksum == slowChecksum(std::string_view(mp3).substr(tag.frameBytes)));
        CHECK(tag.tagChecksum == slowChecksum(std::string_view(mp3).substr(0, tag.checkedBytes)));
        CHECK(std::is_sorted(tag.places.begin(), tag.places.end()));
        CHECK(tag.places[50] >= 127);
        CHECK(tag.places[50] <= 129);

        const int frameSamples = c.settings.halfSampleRate ? 576 : 1152;
        CHECK(std::int64_t{tag.frames} * frameSamples - tag.delay - tag.padding == c.sounding);
        CHECK(place.decode(mp3).frames() == c.sounding);
    }
}

TEST_CASE("Mono stays mono, and more channels than two become two")
{
    Workplace place;
    for (const int channels : {1, 2, 3, 6}) {
        CAPTURE(channels);
        CHECK(place.decode(place.encode(music(20000, 44100, channels), {})).channels ==
              std::min(channels, 2));
    }
}

TEST_CASE("Progress goes from nothing to a thousand and never back")
{
    Workplace place;
    putPcmWav(place.folder / "source.wav", music(30 * 44100));
    std::vector<std::int32_t> told;
    encodeFile(place.folder / "source.wav", place.folder / "made.mp3", {}, 2,
               [&](std::int32_t thousandths) { told.push_back(thousandths); });
    REQUIRE(told.size() > 100);
    CHECK(std::adjacent_find(told.begin(), told.end(), std::greater_equal<>()) == told.end());
    CHECK(told.back() == 1000);
    std::vector<std::int32_t> steps(told.size());
    std::adjacent_difference(told.begin(), told.end(), steps.begin());
    CHECK(*std::max_element(steps.begin(), steps.end()) < 50); // nobody thinks that it hangs
}

TEST_CASE("A file without sound becomes one of two frames, which every player knows as an MP3 file")
{
    Workplace place;
    putPcmWav(place.folder / "source.wav", Pcm{44100, 2, {}});
    encodeFile(place.folder / "source.wav", place.folder / "made.mp3", {}, 2);
    const auto facts = formats::probeMp3(files::InputFile::open(place.folder / "made.mp3"));
    REQUIRE(facts);
    CHECK(facts->stretches.front().frames == 2);
    CHECK(facts->samples() == 0);
}

TEST_CASE("An encoding that is stopped leaves nothing")
{
    Workplace place;
    putPcmWav(place.folder / "source.wav", music(30 * 44100));
    std::stop_source stop;
    const auto stopSoon = [&](std::int32_t thousandths) {
        if (thousandths >= 100)
            stop.request_stop();
    };
    CHECK_THROWS_AS(
        encodeFile(place.folder / "source.wav", place.folder / "made.mp3", {}, 2, stopSoon, stop.get_token()),
        Stopped);
    CHECK(namesInFolder(place.folder.path()) == std::set<Text>{"source.wav"});
}
