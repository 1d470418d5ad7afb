// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_source.h"

#include "engines/codec/decode_file.h"
#include "engines/codec/encode_file.h"
#include "engines/formats/stereo_mix.h"
#include "engines/formats/wav_layout.h"
#include "tests/support/failures.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

#include <bit>
#include <cmath>
#include <random>

using namespace codec;
using namespace formats;

namespace
{

struct Sound {
    int rate = 0;
    int channels = 0;
    std::int64_t frames = 0;
    std::vector<float> left;
    std::vector<float> right;
};

Sound readAll(const Text& path)
{
    const auto file = files::InputFile::openOrFail(path);
    WavSource source(file);
    Sound sound{source.rate(), source.channels(), source.frames(), {}, {}};
    SoundBlock block;
    for (source.read(block, 1000); block.frames() > 0; source.read(block, 1000)) {
        sound.left.insert(sound.left.end(), block.left.begin(), block.left.end());
        sound.right.insert(sound.right.end(), block.right.begin(), block.right.end());
    }
    return sound;
}

// The root of the mean square of the difference to the 16-bit samples of one channel.
double distance(const std::vector<float>& read, const Pcm& pcm, std::size_t channel)
{
    double sum = 0;
    for (std::size_t i = 0; i < read.size(); ++i) {
        const double difference = read[i] - pcm.samples[i * static_cast<std::size_t>(pcm.channels) + channel];
        sum += difference * difference;
    }
    return std::sqrt(sum / static_cast<double>(read.size()));
}

Text floatWav(const Text& path, const std::vector<float>& samples)
{
    const auto bytes = static_cast<std::uint32_t>(samples.size() * 4);
    Text file = "RIFF....WAVEfmt \x10";
    file.append(3, '\0').append("\x03\0\x01\0\x44\xAC\0\0\x10\xB1\x02\0\x04\0\x20\0data", 20);
    for (int i = 0; i < 4; ++i)
        file += static_cast<char>(bytes >> 8 * i);
    file.append(reinterpret_cast<const char*>(samples.data()), bytes);
    putFile(path, file);
    return path;
}

}

TEST_CASE("Every kind of WAV gives the sound that was put into it")
{
    struct Case {
        Text what;
        int format;
        double allowed; // of a 16-bit step, root mean square
    };
    const Case cases[] = {
        {"8 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 150},
        {"16 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0},
        {"24 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 0},
        {"32 bits", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 0},
        {"float", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 0},
        {"double", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 0},
        {"Microsoft ADPCM", SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, 600},
        {"IMA ADPCM", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 600},
        {"mu-law", SF_FORMAT_WAV | SF_FORMAT_ULAW, 150},
        {"A-law", SF_FORMAT_WAV | SF_FORMAT_ALAW, 150},
        {"extensible, 16 bits", SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, 0},
        {"extensible, 24 bits", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 0},
        {"RF64", SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 0},
        {"big endian", SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, 0},
    };
    TemporaryFolder folder;
    const Pcm pcm = music(30000);
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto sound = readAll(putWavAs(folder / "a.wav", pcm, c.format));
        CHECK(sound.rate == 44100);
        CHECK(sound.channels == 2);
        CHECK(sound.frames >= 30000);
        REQUIRE(sound.left.size() == static_cast<std::size_t>(sound.frames));
        CHECK(sound.frames <= 30000 + 2048); // ADPCM comes in whole blocks
        const std::vector<float> left(sound.left.begin(), sound.left.begin() + 30000);
        const std::vector<float> right(sound.right.begin(), sound.right.begin() + 30000);
        CHECK(distance(left, pcm, 0) <= c.allowed);
        CHECK(distance(right, pcm, 1) <= c.allowed);
    }
}

TEST_CASE("A sound can be taken up at any place")
{
    TemporaryFolder folder;
    const Pcm pcm = music(30000);
    for (const int format : {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_FLOAT, SF_FORMAT_MS_ADPCM,
                             SF_FORMAT_IMA_ADPCM, SF_FORMAT_ULAW}) {
        CAPTURE(format);
        const auto whole = readAll(putWavAs(folder / "a.wav", pcm, SF_FORMAT_WAV | format));
        const auto file = files::InputFile::openOrFail(folder / "a.wav");
        WavSource source(file);
        SoundBlock block;
        for (const std::size_t at : {20011u, 3u, 29990u, 0u, 12288u}) {
            CAPTURE(at);
            source.seek(static_cast<std::int64_t>(at));
            source.read(block, 10);
            CHECK(
                std::equal(block.left.begin(), block.left.end(), whole.left.begin() + static_cast<long>(at)));
        }
    }
}

TEST_CASE("Rates from 8 to 96 kHz are encoded to their own length")
{
    TemporaryFolder folder;
    for (const int rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000, 88200, 96000})
        for (const bool half : {false, true}) {
            CAPTURE(rate);
            CAPTURE(half);
            const std::int64_t frames = rate * 3 / 2;
            putPcmWav(folder / "a.wav", music(frames, rate));
            encodeFile(folder / "a.wav", folder / "a.mp3", {128000, half}, 2);
            decodeFile(folder / "a.mp3", folder / "b.wav", 2);
            const Pcm back = readWav(folder / "b.wav");
            CHECK(back.rate == (half ? 22050 : 44100));
            CHECK(back.frames() == (frames * back.rate + rate / 2) / rate);
        }
}

TEST_CASE("What a truncated file still holds is encoded")
{
    TemporaryFolder folder;
    const Pcm pcm = music(30000);
    const Text whole = fileBytes(putPcmWav(folder / "whole.wav", pcm));
    const Text adpcm = fileBytes(putWavAs(folder / "adpcm.wav", pcm, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM));
    struct Case {
        Text what;
        Text bytes;
        std::int64_t least;
        std::int64_t most;
    };
    Text endless = whole;
    endless.replace(4, 4, "\xFF\xFF\xFF\xFF").replace(40, 4, "\xFF\xFF\xFF\xFF");
    Text unfinished = whole;
    unfinished.replace(4, 4, 4, '\0').replace(40, 4, 4, '\0');
    const Case cases[] = {
        {"cut in the middle", whole.substr(0, 44 + 4 * 10000), 10000, 10000},
        {"cut within a frame", whole.substr(0, 44 + 4 * 10000 + 3), 10000, 10000},
        {"no sound at all", whole.substr(0, 44), 0, 0},
        {"sizes that a stream leaves unknown", endless, 30000, 30000},
        {"sizes that were never filled in", unfinished, 30000, 30000},
        {"sizes never filled in, and yet no sound", unfinished.substr(0, 44), 0, 0},
        {"sizes never filled in, a list behind", unfinished.substr(0, 44) + "LIST\4" + Text(3, '\0') + "INFO",
         0, 0},
        {"ADPCM cut in a block", adpcm.substr(0, adpcm.size() / 2 + 11), 14000, 17000},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        putFile(folder / "cut.wav", c.bytes);
        const auto sound = readAll(folder / "cut.wav");
        CHECK(sound.frames >= c.least);
        CHECK(sound.frames <= c.most);
        encodeFile(folder / "cut.wav", folder / "cut.mp3", {}, 2);
        decodeFile(folder / "cut.mp3", folder / "back.wav", 2);
        CHECK(readWav(folder / "back.wav").frames() == sound.frames);
    }
}

TEST_CASE("A thousand chunks are looked through for the sound, and no more")
{
    TemporaryFolder folder;
    const Text whole = fileBytes(putPcmWav(folder / "a.wav", music(100)));
    for (const int others : {998, 999}) { // beside the one of the format
        CAPTURE(others);
        Text chunks;
        for (int i = 0; i < others; ++i)
            chunks += Text("junk\2\0\0\0..", 10);
        putFile(folder / "a.wav", whole.substr(0, 36) + chunks + whole.substr(36));
        CHECK(formats::wavLayout(files::InputFile::open(folder / "a.wav")).has_value() == (others == 998));
    }
}

TEST_CASE("The sound of an RF64 file is as long as the file's table of long sizes says")
{
    TemporaryFolder folder;
    const Text whole = fileBytes(putWavAs(folder / "a.wav", music(30000), SF_FORMAT_RF64 | SF_FORMAT_PCM_16));
    putFile(folder / "a.wav", whole + "LIST\4" + Text(3, '\0') + "INFO");
    const auto layout = formats::wavLayout(files::InputFile::open(folder / "a.wav"));
    REQUIRE(layout);
    CHECK(layout->end - layout->begin == 30000 * 4);
    CHECK(layout->sizeBytes == 8);
}

TEST_CASE("A sound of no length in front of a list takes nothing of it")
{
    TemporaryFolder folder;
    const Text head = fileBytes(putPcmWav(folder / "a.wav", {})).substr(0, 40);
    putFile(folder / "a.wav", head + Text(4, '\0') + "LIST\4" + Text(3, '\0') + "INFO");
    const auto layout = formats::wavLayout(files::InputFile::open(folder / "a.wav"));
    REQUIRE(layout);
    CHECK(layout->end == layout->begin);
    CHECK_FALSE(layout->isUnfilled);
}

TEST_CASE("What is no WAV is refused with a reason")
{
    TemporaryFolder folder;
    const Pcm pcm = music(3000);
    putPcmWav(folder / "a.wav", pcm);
    putWavAs(folder / "a.flac", pcm, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    putWavAs(folder / "a.aiff", pcm, SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
    putWavAs(folder / "a.ogg", pcm, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    encodeFile(folder / "a.wav", folder / "a.mp3", {}, 1);
    putFile(folder / "text.wav", "This is a text that somebody named a sound.");
    putFile(folder / "empty.wav", "");
    putFile(folder / "header.wav", fileBytes(folder / "a.wav").substr(0, 20));
    for (const Text name : {"a.flac", "a.aiff", "a.ogg", "a.mp3", "text.wav", "empty.wav", "header.wav"}) {
        CAPTURE(name);
        Text reason;
        guarded([&](const Failure& failure) { reason = failure.description; },
                [&] { WavSource(files::InputFile::openOrFail(folder / name)); });
        CHECK(reason.size() > 5);
    }
    CHECK(failureOf([&] { files::InputFile::openOrFail(folder / "missing.wav"); }) == 53);
    CHECK(failureOf([&] { files::InputFile::openOrFail(folder.path()); }) == 75);
}

TEST_CASE("Numbers that are none, and sounds past full scale, stay within it")
{
    TemporaryFolder folder;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const auto sound =
        readAll(floatWav(folder / "odd.wav", {0.5f, nan, inf, -inf, 3.0f, -1e30f, 1e-40f, -0.25f}));
    CHECK(sound.left == std::vector<float>{16384, 0, 32768, -32768, 32768, -32768, 32768 * 1e-40f, -8192});

    std::vector<float> wild(50000);
    std::minstd_rand random(7);
    for (auto& sample : wild)
        sample = std::bit_cast<float>(static_cast<std::uint32_t>(random()) << 1);
    encodeFile(floatWav(folder / "wild.wav", wild), folder / "wild.mp3", {}, 2);
    decodeFile(folder / "wild.mp3", folder / "back.wav", 2);
    CHECK(readWav(folder / "back.wav").frames() == 50000);
}

TEST_CASE("More channels are mixed down to two at no more than full scale")
{
    for (const int channels : {1, 2, 3, 4, 5, 6, 7, 8, 11, 64}) {
        CAPTURE(channels);
        const auto all = StereoMix(channels)(std::vector<float>(static_cast<std::size_t>(channels), 1));
        CHECK(all.left == doctest::Approx(1));
        CHECK(all.right == doctest::Approx(1));
    }
    const auto one = [](int channels, std::size_t channel) {
        std::vector<float> frame(static_cast<std::size_t>(channels));
        frame[channel] = 1;
        return StereoMix(channels)(frame);
    };
    CHECK(one(4, 2).right == 0);              // quadraphonic: rear left
    CHECK(one(6, 2).left == one(6, 2).right); // centre
    CHECK(one(6, 3).left == 0);               // bass
    CHECK(one(6, 5).left == 0);               // rear right
    CHECK(one(7, 5).right == 0);              // side left

    TemporaryFolder folder;
    Pcm six{44100, 6, std::vector<std::int16_t>(6 * 100)};
    for (std::size_t i = 0; i < 100; ++i) {
        six.samples[i * 6] = 1000;
        six.samples[i * 6 + 3] = 30000;
    }
    const auto sound = readAll(putWavAs(folder / "six.wav", six, SF_FORMAT_WAVEX | SF_FORMAT_PCM_16));
    CHECK(sound.channels == 2);
    CHECK(sound.left[50] == doctest::Approx(1000 * one(6, 0).left).epsilon(0.001));
    CHECK(sound.right[50] == 0);
}
