// SPDX-License-Identifier: GPL-3.0-or-later
// One answer to "is this an MP3 file", for playing, for decoding and for tags.
#include "engines/codec/decode_file.h"
#include "engines/formats/mp3_probe.h"
#include "engines/tags/tag_file.h"
#include "tests/support/failures.h"
#include "tests/support/lame_alone.h"
#include "tests/support/mp3_frames.h"
#include "tests/support/simulated_sound.h"
#include "tests/support/sound_parts.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

#include <cmath>
#include <random>

using namespace tags;

namespace
{

const Tag wanted{"Title", "Artist", "Album", "Comment", 1999, 8};

// Which of the three takes the file: "pdt", or fewer of these letters.
Text takersOf(SoundParts& parts, const Text& path)
{
    const Text before = fileBytes(path);
    const Text wav = parts.folder / "taken.wav";
    Text takers;
    if (parts.mp3->Open(path, "") == 0)
        takers += 'p';
    parts.mp3->Close();
    if (failureOf([&] { codec::decodeFile(path, wav, 1); }) == 0)
        takers += 'd';
    std::filesystem::remove(wav);
    if (writeTag(path, wanted).empty())
        takers += 't';
    if (takers.find('t') == Text::npos)
        CHECK(fileBytes(path) == before);
    return takers;
}

Text takersOfBytes(SoundParts& parts, const Text& bytes)
{
    putFile(parts.folder / "a.mp3", bytes);
    return takersOf(parts, parts.folder / "a.mp3");
}

bool isMp3(const Text& path) { return formats::findMp3(files::InputFile::open(path)).has_value(); }

Text noise(std::size_t count, std::minstd_rand& random)
{
    Text bytes(count, '\0');
    for (auto& byte : bytes)
        byte = static_cast<char>(random() >> 9);
    return bytes;
}

// 16-bit samples of a tone with a little noise and an offset, each of the channels with its own.
Text rawTone(int channels, double hertz, int rate, std::minstd_rand& random)
{
    const double loudness = std::exp2(static_cast<double>(random() % 1500) / 100);
    const int dither = random() % 2 ? 0 : static_cast<int>(random() % 300);
    Text bytes;
    for (int i = 0; i < 40000; ++i)
        for (int channel = 0; channel < channels; ++channel) {
            const double swing = std::sin(2 * M_PI * hertz * i / rate + channel) * loudness;
            const int offset = channel == 0 ? -60 : 200;
            const int value =
                std::clamp(static_cast<int>(std::lrint(swing)) + offset +
                               (dither ? static_cast<int>(random() % static_cast<unsigned>(dither)) : 0),
                           -32768, 32767);
            bytes += static_cast<char>(value & 0xFF);
            bytes += static_cast<char>(value >> 8 & 0xFF);
        }
    return bytes;
}

Text littleEndian(std::uint64_t value, int bytes)
{
    Text text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i);
    return text;
}

Text chunk(const Text& name, const Text& content, bool turned, std::int64_t toldSize = -1)
{
    Text size = littleEndian(static_cast<std::uint64_t>(toldSize < 0 ? std::ssize(content) : toldSize), 4);
    if (turned)
        std::reverse(size.begin(), size.end());
    return name + size + content + Text(content.size() % 2, '\0');
}

// Frames as the sound of a WAV file.
Text wrapped(const Text& kind, const Text& frames, std::int64_t toldSize = -1)
{
    const bool turned = kind == "RIFX";
    Text format;
    const std::pair<std::uint64_t, int> fields[] = {{0x55, 2}, {2, 2},   {44100, 4}, {16000, 4},
                                                    {1, 2},    {0, 2},   {12, 2},    {1, 2},
                                                    {2, 4},    {417, 2}, {1, 2},     {1393, 2}};
    for (const auto& [value, bytes] : fields) {
        Text number = littleEndian(value, bytes);
        if (turned)
            std::reverse(number.begin(), number.end());
        format += number;
    }
    Text file = "WAVE";
    const auto size = static_cast<std::uint64_t>(frames.size());
    if (kind == "RF64")
        file += chunk("ds64",
                      littleEndian(size + 100, 8) + littleEndian(size, 8) + littleEndian(0, 8) +
                          littleEndian(0, 4),
                      false);
    file += chunk("fmt ", format, turned) + chunk("LIST", "INFOIGNR", turned);
    file += chunk("data", frames, turned, kind == "RF64" ? 0xFFFFFFFF : toldSize) +
            chunk("LIST", "INFOIGNR", turned);
    return chunk(kind, file, turned, kind == "RF64" ? 0xFFFFFFFF : -1);
}

}

TEST_CASE("A thousand files of noise are no MP3 file for anybody")
{
    SoundParts parts;
    std::minstd_rand random(31);
    for (int i = 0; i < 1000; ++i) {
        CAPTURE(i);
        putFile(parts.folder / "a.mp3", noise(1000 + random() % 150000, random));
        REQUIRE_FALSE(isMp3(parts.folder / "a.mp3"));
        if (i % 20 == 0)
            CHECK(takersOf(parts, parts.folder / "a.mp3") == "");
    }
}

TEST_CASE("Raw samples are no MP3 file for anybody")
{
    SoundParts parts;
    std::minstd_rand random(32);
    const double tones[] = {100, 220.5, 440, 441, 500, 882, 1000, 1102.5, 3000, 5512.5};
    for (int i = 0; i < 300; ++i) {
        const double hertz = tones[random() % std::size(tones)];
        const int channels = 1 + i % 2;
        CAPTURE(i);
        CAPTURE(hertz);
        putFile(parts.folder / "a.mp3", rawTone(channels, hertz, i % 3 ? 44100 : 48000, random));
        REQUIRE_FALSE(isMp3(parts.folder / "a.mp3"));
        if (i % 20 == 0)
            CHECK(takersOf(parts, parts.folder / "a.mp3") == "");
    }
}

TEST_CASE("Headers at even distances among samples that repeat are no frames")
{
    SoundParts parts;
    // A tone of 882 Hz, 50 samples of 16 bits a turn, of which one pair reads as a header of free format.
    Text turn;
    for (int i = 0; i < 50; ++i)
        turn += i == 20 ? Text("\x07\xff", 2) : i == 21 ? Text("\xfb\0", 2) : Text("\x10\1", 2);
    Text bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += turn;
    CHECK(takersOfBytes(parts, bytes) == "");
}

TEST_CASE("Other containers are no MP3 file for anybody, whatever they hold")
{
    SoundParts parts;
    const Text frames = silentFrames(100);
    const Text starts[] = {
        "FORM....AIFF", "FORM....AIFC",
        "caff",         "\x1A\x45\xDF\xA3",
        "FWS\x06",      "CWS\x06",
        "ZWS\x0D",      "OggS",
        "fLaC",         Text("\0\0\0\x20", 4) + "ftypM4A ",
        "MThd",         "FLV\1",
        ".snd",         "\x30\x26\xB2\x75\x8E\x66\xCF\x11",
        "RIFF....WAVE", "RF64....WAVE",
        "RIFF....AVI ",
    };
    for (const auto& start : starts)
        for (const auto& before : {Text(), id3v2Tag(100)}) {
            CAPTURE(start);
            CAPTURE(before.size());
            CHECK(takersOfBytes(parts, before + start + frames) == "");
        }
}

TEST_CASE("A frame that fills the sound alone is an MP3 file for all")
{
    SoundParts parts;
    CHECK(takersOfBytes(parts, silentFrames(1)) == "pdt");
    CHECK(takersOfBytes(parts, id3v2Tag(3000) + silentFrames(1) + apeTag() + id3v1Tag()) == "pdt");
    CHECK(takersOfBytes(parts, withInfoFrame(1)) == "pdt");
    CHECK(takersOfBytes(parts, silentFrames(3)) == "pdt");
    CHECK(takersOfBytes(parts, silentFrames(1) + "x") == "");
    CHECK(takersOfBytes(parts, withInfoFrame(0)) == "");
}

TEST_CASE("A short file of free format is decoded whole")
{
    SoundParts parts;
    Text frames;
    for (int i = 0; i < 10; ++i)
        frames += Text("\xFF\xFB\x00\x64", 4) + Text(900, '\0');
    CHECK(takersOfBytes(parts, frames) == "pdt");
    codec::decodeFile(parts.folder / "a.mp3", parts.folder / "a.wav", 1);
    CHECK(readWav(parts.folder / "a.wav").frames() == 10 * 1152);
    CHECK(takersOfBytes(parts, frames.substr(0, 3 * 904)) == "pdt");
}

TEST_CASE("Frames in a WAV file play and decode, and take no tag")
{
    SoundParts parts;
    const Text frames = lameAlone(music(44100), 128, 44100);
    putFile(parts.folder / "plain.mp3", frames);
    codec::decodeFile(parts.folder / "plain.mp3", parts.folder / "plain.wav", 1);
    struct Case {
        Text what;
        Text bytes;
    };
    const Case cases[] = {
        {"RIFF", wrapped("RIFF", frames)},
        {"RIFX", wrapped("RIFX", frames)},
        {"RF64", wrapped("RF64", frames)},
        {"RIFF with a tag within", wrapped("RIFF", id3v2Tag(50) + frames)},
        {"RIFF cut off", wrapped("RIFF", frames, 10000000)},
        {"RIFF of unknown size", wrapped("RIFF", frames, 0xFFFFFFFF)},
        {"RIFF of no size", wrapped("RIFF", frames, 0)},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text path = parts.folder / "a.mp3";
        CHECK(takersOfBytes(parts, c.bytes) == "pd");
        REQUIRE(parts.mp3->Open(path, "") == 0);
        CHECK(parts.mp3->Length() == 1000);
        CHECK(parts.mp3->Bitrate() == 128000);
        CHECK(readTag(path) == Tag());
        codec::decodeFile(path, parts.folder / "a.wav", 2);
        CHECK(fileBytes(parts.folder / "a.wav") == fileBytes(parts.folder / "plain.wav"));
    }
}
