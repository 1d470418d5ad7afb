// SPDX-License-Identifier: GPL-3.0-or-later
// Where the channels of a WAV file are heard, played and encoded alike; and that what plays is encoded.
#include "engines/audio/opened_sound.h"
#include "engines/codec/encode_file.h"
#include "engines/disc/cd_sound.h"
#include "engines/formats/wav_source.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

#include <cmath>

using namespace formats;

namespace
{

constexpr std::size_t segment = 2400; // frames for which one channel sounds

struct Sides {
    double left = 0;
    double right = 0;
};

// Of each channel's turn.
struct Turns {
    std::vector<Sides> sides;
    std::size_t frame = 0;

    void add(double left, double right)
    {
        sides.resize(frame / segment + 1);
        sides.back().left += left * left;
        sides.back().right += right * right;
        ++frame;
    }
};

std::vector<Sides> played(const Text& path)
{
    Turns turns;
    const auto sound = audio::openWavSound(path);
    REQUIRE(sound);
    std::vector<std::int16_t> samples(2000);
    for (auto got = sound->source->read(samples); got > 0; got = sound->source->read(samples))
        for (std::size_t i = 0; i < got; ++i)
            turns.add(samples[2 * i], samples[2 * i + 1]);
    return turns.sides;
}

std::vector<Sides> encoderInput(const Text& path)
{
    Turns turns;
    const auto file = files::InputFile::openOrFail(path);
    WavSource source(file);
    SoundBlock block;
    for (source.read(block, 1000); block.frames() > 0; source.read(block, 1000))
        for (std::size_t i = 0; i < block.frames(); ++i)
            turns.add(block.left[i], block.right[i]);
    return turns.sides;
}

std::vector<Sides> mixedByFfmpeg(const TemporaryFolder& folder, const Text& path)
{
    const Text mixed = folder / "mixed.wav";
    const auto result = runTool({"ffmpeg", "-v", "error", "-y", "-i", path, "-ac", "2", mixed});
    REQUIRE(result.status == 0);
    Turns turns;
    const Pcm pcm = readWav(mixed);
    for (std::size_t i = 0; i + 1 < pcm.samples.size(); i += 2)
        turns.add(pcm.samples[i], pcm.samples[i + 1]);
    return turns.sides;
}

// Of left to right, in decibels, within what can be told.
double balanceOf(const Sides& sides)
{
    return std::clamp(10 * std::log10((sides.left + 1) / (sides.right + 1)), -60.0, 60.0);
}

double loudnessOf(const Sides& sides) { return sides.left + sides.right; }

Text little(std::uint64_t value, int bytes)
{
    Text text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i);
    return text;
}

// An extensible WAV of 16 bits with a tone on each channel in turn.
Text tonesOn(std::size_t channels, std::uint32_t places)
{
    Text sound;
    for (std::size_t i = 0; i < segment * channels; ++i)
        for (std::size_t each = 0; each < channels; ++each) {
            const auto value =
                each == i / segment ? std::lrint(12000 * std::sin(static_cast<double>(i) * 0.13)) : 0;
            sound += little(static_cast<std::uint64_t>(value), 2);
        }
    const Text format = little(0xFFFE, 2) + little(channels, 2) + little(48000, 4) +
                        little(48000 * 2 * channels, 4) + little(2 * channels, 2) + little(16, 2) +
                        little(22, 2) + little(16, 2) + little(places, 4) +
                        Text("\1\0\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 16);
    const Text chunks =
        "WAVEfmt " + little(format.size(), 4) + format + "data" + little(sound.size(), 4) + sound;
    return "RIFF" + little(chunks.size(), 4) + chunks;
}

Text samplesOf(const Text& path)
{
    Text samples;
    const auto sound = audio::openWavSound(path);
    REQUIRE(sound);
    std::vector<std::int16_t> piece(2000);
    for (auto got = sound->source->read(piece); got > 0; got = sound->source->read(piece))
        samples.append(reinterpret_cast<const char*>(piece.data()), got * 4);
    return samples;
}

}

TEST_CASE("Each channel is heard where ffmpeg puts it, played and encoded")
{
    TemporaryFolder folder;
    struct Case {
        const char* what;
        std::size_t channels;
        std::uint32_t places;
    };
    const Case cases[] = {
        {"mono", 1, 0x4},        {"stereo", 2, 0x3},     {"2.1", 3, 0xB},           {"three before", 3, 0x7},
        {"3.1", 4, 0xF},         {"4.0", 4, 0x107},      {"quadraphonic", 4, 0x33}, {"5.0", 5, 0x37},
        {"5.0 side", 5, 0x607},  {"5.1", 6, 0x3F},       {"5.1 side", 6, 0x60F},    {"6.0", 6, 0x707},
        {"hexagonal", 6, 0x137}, {"6.1", 7, 0x70F},      {"6.1 back", 7, 0x13F},    {"7.0", 7, 0x637},
        {"7.1", 8, 0x63F},       {"7.1 wide", 8, 0xFF},  {"octagonal", 8, 0x737},   {"unplaced 5.0", 5, 0},
        {"unplaced 5.1", 6, 0},  {"unplaced 6.1", 7, 0}, {"unplaced 7.1", 8, 0},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text path = folder / "a.wav";
        putFile(path, tonesOn(c.channels, c.places));
        const auto witness = mixedByFfmpeg(folder, path);
        REQUIRE(witness.size() == c.channels);
        for (const auto& ours : {played(path), encoderInput(path)}) {
            REQUIRE(ours.size() == c.channels);
            for (std::size_t channel = 0; channel < c.channels; ++channel) {
                CAPTURE(channel);
                CHECK(std::abs(balanceOf(ours[channel]) - balanceOf(witness[channel])) < 0.5);
                CHECK((loudnessOf(ours[channel]) > 0) == (loudnessOf(witness[channel]) > 0));
            }
        }
    }
}

TEST_CASE("Channels that are all on the left leave the right silent, and places that nobody knows are none")
{
    TemporaryFolder folder;
    const Text path = folder / "a.wav";
    putFile(path, tonesOn(3, 0x211));
    for (const auto& ours : {played(path), encoderInput(path)}) {
        REQUIRE(ours.size() == 3);
        for (const Sides& each : ours) {
            CHECK(each.left > 0);
            CHECK(each.right == 0);
        }
    }
    putFile(folder / "unknown.wav", tonesOn(3, 0x40000003));
    putFile(folder / "more.wav", tonesOn(3, 0x40000007));
    putFile(folder / "none.wav", tonesOn(3, 0));
    const auto usual = encoderInput(folder / "none.wav");
    for (const char* name : {"unknown.wav", "more.wav"}) {
        const auto ours = encoderInput(folder / name);
        REQUIRE(ours.size() == usual.size());
        for (std::size_t i = 0; i < ours.size(); ++i)
            CHECK(ours[i].left == doctest::Approx(usual[i].left));
    }
}

TEST_CASE("A coding that cannot be entered in the middle is encoded like any other")
{
    TemporaryFolder folder;
    const Pcm pcm = music(8000 * 20, 8000, 1);
    const Text gsm = putWavAs(folder / "gsm.wav", pcm, SF_FORMAT_WAV | SF_FORMAT_GSM610);
    const Text plain = folder / "plain.wav";
    REQUIRE(runTool({"sox", "-D", gsm, "-e", "signed", "-b", "16", plain}).status == 0);
    for (const unsigned workers : {1u, 3u}) {
        codec::encodeFile(gsm, folder / "gsm.mp3", {}, workers);
        codec::encodeFile(plain, folder / "plain.mp3", {}, workers);
        CHECK(fileBytes(folder / "gsm.mp3") == fileBytes(folder / "plain.mp3"));
    }
    const auto gsmFile = files::InputFile::openOrFail(gsm);
    const auto plainFile = files::InputFile::openOrFail(plain);
    WavSource source(gsmFile);
    WavSource witness(plainFile);
    SoundBlock one;
    SoundBlock other;
    for (const std::int64_t frame : {100'000, 100, 100'100, 0}) {
        CAPTURE(frame);
        source.seek(frame);
        witness.seek(frame);
        source.read(one, 100);
        witness.read(other, 100);
        CHECK(one.left == other.left);
    }
}

TEST_CASE("A size that was never filled in plays, encodes and is burnt to the file's end")
{
    TemporaryFolder folder;
    const Pcm pcm = music(30000);
    for (const bool turned : {false, true}) {
        const Text whole =
            putWavAs(folder / "whole.wav", pcm,
                     SF_FORMAT_WAV | SF_FORMAT_PCM_16 | (turned ? SF_ENDIAN_BIG : SF_ENDIAN_FILE));
        const Text bytes = fileBytes(whole);
        for (const char* size : {"\0\0\0\0", "\xFF\xFF\xFF\xFF"}) {
            CAPTURE(turned);
            const Text path = folder / "a.wav";
            Text unfilled = bytes;
            unfilled.replace(bytes.find("data") + 4, 4, size, 4);
            putFile(path, unfilled);
            CHECK(samplesOf(path) == samplesOf(whole));
            CHECK(WavSource(files::InputFile::openOrFail(path)).frames() == 30000);
            const auto cd = disc::CdSound::open(path);
            REQUIRE(cd);
            CHECK(cd->frames() == 30000);
        }
    }
}
