// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/decode_file.h"

#include "engines/codec/piece_decoder.h"
#include "engines/formats/frame_scan.h"
#include "engines/formats/wav_header.h"
#include "tests/support/failures.h"
#include "tests/support/mp3_zoo.h"

#include <doctest/doctest.h>

#include <cstdlib>

using namespace codec;
using namespace formats;

namespace
{

// What mpg123 writes. It searches as far as we do for the next frame in a damaged file.
Text byMpg123(const Mp3Zoo& zoo, const Text& mp3)
{
    std::filesystem::remove(zoo / "witness.wav");
    runTool({"mpg123", "-q", "--resync-limit", "65536", "-w", zoo / "witness.wav", mp3});
    return fileBytes(zoo / "witness.wav");
}

// mpg123 begins its file anew where the format changes, and loses what came before.
bool changesFormat(const Text& mp3)
{
    const Text words = runTool({"mpg123", "-v", "--resync-limit", "65536", "-t", mp3}).words;
    const auto first = words.find("\nMPEG ");
    return words.find("\nMPEG ", first + 1) != Text::npos;
}

Text decoded(const Mp3Zoo& zoo, const Text& mp3, unsigned workers)
{
    decodeFile(mp3, zoo / "made.wav", workers);
    return fileBytes(zoo / "made.wav");
}

bool isInPieces(const Text& mp3) { return scanFrames(files::InputFile::openOrFail(mp3)).has_value(); }

// The frame at which decoding in pieces gives up; -1 when it does not.
std::int64_t brokenFrame(const Text& mp3)
{
    const auto file = files::InputFile::openOrFail(mp3);
    const auto table = scanFrames(file);
    PieceDecoder decoder(file, *table, 0, table->frames());
    std::span<const std::int16_t> samples;
    for (std::int64_t frame = 0; frame < table->frames(); ++frame)
        if (!decoder.next(samples))
            return frame;
    return -1;
}

Text lameFile(Mp3Zoo& zoo, const Text& what, const Pcm& pcm, const Text& option, const Text& value)
{
    return zoo.made(what, pcm, {"lame", "--quiet", option, value, "IN", "OUT"});
}

}

TEST_CASE("Healthy files of every rate and encoder are decoded in pieces, to the bytes of mpg123")
{
    const bool isSweep = std::getenv("VELMORA_SWEEP") != nullptr; // all 72 take a minute
    Mp3Zoo zoo;
    fillHealthy(zoo, 30, isSweep);
    CHECK(zoo.files().size() == (isSweep ? 72 : 18));
    for (const auto& file : zoo.files()) {
        CAPTURE(file.what);
        REQUIRE(isInPieces(file.path));
        CHECK(brokenFrame(file.path) == -1);
        const Text witness = byMpg123(zoo, file.path);
        CHECK(witness.size() > 400000);
        CHECK(decoded(zoo, file.path, 2) == witness);
    }
}

TEST_CASE("Damaged files are decoded to the bytes of mpg123")
{
    Mp3Zoo healthy;
    const std::vector<Text> whole{
        fileBytes(lameFile(healthy, "constant", music(44100 * 30), "-b", "128")),
        fileBytes(lameFile(healthy, "variable", music(44100 * 30), "-V", "2")),
        fileBytes(lameFile(healthy, "mono", music(22050 * 60, 22050, 1), "-b", "32")),
    };
    Mp3Zoo zoo;
    fillDamaged(zoo, whole, 60);
    int compared = 0;
    for (const auto& file : zoo.files()) {
        if (changesFormat(file.path))
            continue;
        CAPTURE(file.what);
        CHECK(decoded(zoo, file.path, 2) == byMpg123(zoo, file.path));
        ++compared;
    }
    CHECK(compared > 30);
}

TEST_CASE("The number of workers changes no byte")
{
    Mp3Zoo zoo;
    const Text mp3 = lameFile(zoo, "long", music(44100 * 130), "-V", "5");
    const Text one = decoded(zoo, mp3, 1);
    CHECK(one.size() == 44 + 44100 * 130 * 4);
    for (const unsigned workers : {2u, 3u, 8u})
        CHECK(decoded(zoo, mp3, workers) == one);
}

TEST_CASE("Files that only a search can decode are decoded from the start")
{
    Mp3Zoo zoo;
    const Pcm pcm = music(44100 * 20);
    const Text plain = fileBytes(lameFile(zoo, "plain", pcm, "-b", "128"));
    const Text other = fileBytes(lameFile(zoo, "other", music(44100 * 9, 44100, 2, 9), "-b", "192"));
    zoo.made("free format", pcm, {"lame", "--quiet", "--freeformat", "-b", "100", "IN", "OUT"});
    zoo.put("joined files of one format", plain + other);
    zoo.put("joined with tags in between", plain + Text("TAG") + Text(125, ' ') + other);
    zoo.put("junk before", Text(5000, 'x') + plain);
    const auto places = scanFrames(files::InputFile::openOrFail(zoo / "plain.mp3"))->positions;
    const auto hole = static_cast<std::size_t>(places[150] - places[100]);
    zoo.put("a hole of zeros", Text(plain).replace(static_cast<std::size_t>(places[100]), hole, hole, '\0'));
    zoo.put("the last frame cut", plain.substr(0, plain.size() - 100));
    zoo.put("told to be longer", Text(plain).replace(46, 2, "\x7F\xFF"));
    for (const auto& file : zoo.files()) {
        CAPTURE(file.what);
        CHECK(isInPieces(file.path) == (file.what == "plain" || file.what == "other"));
        const Text witness = byMpg123(zoo, file.path);
        CHECK(witness.size() > 1000000);
        CHECK(decoded(zoo, file.path, 2) == witness);
    }
}

TEST_CASE("Tags around the frames are no sound")
{
    Mp3Zoo zoo;
    const Text plain = fileBytes(lameFile(zoo, "plain", music(44100 * 20), "-b", "128"));
    const Text witness = decoded(zoo, zoo / "plain.mp3", 2);
    const Text id3 = Text("ID3\4\0\0\0\0\x10\0", 10) + Text(2048, 'p');
    const Text footed = Text("ID3\4\0\x10\0\0\0\x20", 10) + Text(32, 'p') + Text("3DI\4\0\x10\0\0\0\x20", 10);
    const Text ape = Text("APETAGEX\xD0\7\0\0\x40\0\0\0\1\0\0\0\0\0\0\xA0", 24) + Text(8, '\0') +
                     Text(32, 'a') + Text("APETAGEX\xD0\7\0\0\x40\0\0\0\1\0\0\0\0\0\0\x80", 24) +
                     Text(8, '\0');
    const Text v1 = Text("TAG") + Text(125, ' ');
    zoo.put("ID3v2", id3 + plain);
    zoo.put("two ID3v2", id3 + id3 + plain);
    zoo.put("ID3v2 with a footer", footed + plain);
    zoo.put("ID3v1", plain + v1);
    zoo.put("APE and ID3v1", plain + ape + v1);
    zoo.put("all of them", id3 + plain + ape + v1);
    for (const auto& file : zoo.files()) {
        CAPTURE(file.what);
        CHECK(isInPieces(file.path));
        CHECK(decoded(zoo, file.path, 2) == witness);
        CHECK(byMpg123(zoo, file.path) == witness);
    }
}

TEST_CASE("Silence, and sound too quiet to be heard, is decoded in pieces to the bytes of mpg123")
{
    Mp3Zoo zoo;
    Pcm pcm = music(44100 * 40);
    for (std::size_t i = 44100 * 20; i < 44100 * 40; ++i)
        pcm.samples[i] = 0;
    for (std::size_t i = 44100 * 60; i < pcm.samples.size(); ++i)
        pcm.samples[i] = static_cast<std::int16_t>(i % 97 == 0);
    for (const Text rate : {"32", "128", "320"}) {
        CAPTURE(rate);
        const Text mp3 = lameFile(zoo, "quiet " + rate, pcm, "-b", rate);
        CHECK(brokenFrame(mp3) == -1);
        CHECK(decoded(zoo, mp3, 2) == byMpg123(zoo, mp3));
    }
}

TEST_CASE("A frame that breaks off in the decoder spoils no other byte")
{
    Mp3Zoo zoo;
    const Text plain = fileBytes(lameFile(zoo, "plain", music(44100 * 60), "-b", "128"));
    const auto table = scanFrames(files::InputFile::openOrFail(zoo / "plain.mp3"));
    REQUIRE(table);
    for (const std::int64_t frame : {200, 1030, 2000}) {
        CAPTURE(frame);
        Text broken = plain;
        const auto at = static_cast<std::size_t>(table->positions[static_cast<std::size_t>(frame)]);
        for (std::size_t i = 4 + 2; i < 36; ++i)
            broken[at + i] = '\xFF'; // lengths and tables that no main data can meet
        const Text mp3 = zoo.put("broken", broken);
        CHECK(brokenFrame(mp3) == frame);
        CHECK(decoded(zoo, mp3, 2) == byMpg123(zoo, mp3));
        CHECK(decoded(zoo, mp3, 2) != decoded(zoo, zoo / "plain.mp3", 2));
    }
}

TEST_CASE("A frame that asks for more of the reservoir than is kept is decoded to the bytes of mpg123")
{
    Mp3Zoo zoo;
    const Text plain =
        fileBytes(zoo.made("plain", music(22050 * 60, 22050, 1),
                           {"lame", "--quiet", "--resample", "22.05", "-b", "8", "IN", "OUT"}));
    const auto table = scanFrames(files::InputFile::openOrFail(zoo / "plain.mp3"));
    REQUIRE(table);
    for (const std::int64_t frame : {200, 1030, 2000}) {
        CAPTURE(frame);
        Text greedy = plain;
        greedy[static_cast<std::size_t>(table->positions[static_cast<std::size_t>(frame)]) + 4] = '\xFF';
        const Text mp3 = zoo.put("greedy", greedy);
        CHECK_FALSE(isInPieces(mp3));
        CHECK(decoded(zoo, mp3, 2) == byMpg123(zoo, mp3));
    }
}

TEST_CASE("A file that begins in the middle of a longer one is decoded to the bytes of mpg123")
{
    struct Case {
        Text what;
        int rate;
        int channels;
        Text kilobits;
        bool breaks; // some first frame does, in the decoder
    };
    const Case cases[] = {
        {"44.1 kHz", 44100, 2, "128", false},
        {"22.05 kHz", 22050, 2, "32", true},
        {"22.05 kHz, mono", 22050, 1, "8", true},
    };
    Mp3Zoo zoo;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text plain =
            fileBytes(lameFile(zoo, "plain", music(c.rate * 60, c.rate, c.channels), "-b", c.kilobits));
        const auto table = scanFrames(files::InputFile::openOrFail(zoo / "plain.mp3"));
        REQUIRE(table);
        bool breaks = false;
        for (std::size_t first = 100; first < 116; ++first) {
            CAPTURE(first);
            const Text mp3 = zoo.put("cut", plain.substr(static_cast<std::size_t>(table->positions[first])));
            breaks = breaks || brokenFrame(mp3) == 0;
            CHECK(decoded(zoo, mp3, 2) == byMpg123(zoo, mp3));
        }
        CHECK(breaks == c.breaks);
    }
}

TEST_CASE("Files of different formats joined become one sound at the rate of the first")
{
    Mp3Zoo zoo;
    const Text stereo = fileBytes(lameFile(zoo, "stereo", music(44100 * 4), "-b", "128"));
    const Text mono = fileBytes(lameFile(zoo, "mono", music(22050 * 6, 22050, 1), "-b", "64"));
    const Text high = fileBytes(lameFile(zoo, "high", music(48000 * 5, 48000), "-b", "128"));
    struct Case {
        Text what;
        Text bytes;
        int rate;
        int channels;
        double seconds;
    };
    const Case cases[] = {
        {"half rate mono behind", stereo + mono, 44100, 2, 10},
        {"full rate stereo behind", mono + stereo, 22050, 2, 10},
        {"more mono behind", mono + mono, 22050, 1, 12},
        {"48 kHz behind", stereo + high, 44100, 2, 9},
        {"three", high + mono + stereo, 48000, 2, 15},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        decodeFile(zoo.put(c.what, c.bytes), zoo / "made.wav", 2);
        const Pcm pcm = readWav(zoo / "made.wav");
        CHECK(pcm.rate == c.rate);
        CHECK(pcm.channels == c.channels);
        CHECK(static_cast<double>(pcm.frames()) / pcm.rate == doctest::Approx(c.seconds).epsilon(0.03));
    }
}

TEST_CASE("Mono and stereo in one file are one stereo sound, to the bytes of mpg123")
{
    Mp3Zoo zoo;
    const Text stereo = fileBytes(lameFile(zoo, "stereo", music(44100 * 20), "-b", "128"));
    const Text mono = fileBytes(lameFile(zoo, "mono", music(44100 * 20, 44100, 1), "-b", "64"));
    struct Case {
        Text what;
        Text bytes;
    };
    const Case cases[] = {
        {"stereo behind", mono + stereo},
        {"mono behind", stereo + mono},
        {"mono between", stereo + mono + stereo},
        {"stereo between", mono + stereo + mono},
        {"damage where they meet", mono.substr(0, mono.size() - 100) + Text(3000, 'x') + stereo.substr(50)},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text mp3 = zoo.put(c.what, c.bytes);
        std::filesystem::remove(zoo / "witness.wav");
        runTool({"mpg123", "-q", "--stereo", "--resync-limit", "65536", "-w", zoo / "witness.wav", mp3});
        const Text witness = fileBytes(zoo / "witness.wav");
        CHECK(witness.size() > 44100 * 39 * 4);
        for (const unsigned workers : {1u, 2u, 3u, 8u})
            CHECK(decoded(zoo, mp3, workers) == witness);
    }
}

TEST_CASE("What is no MP3 is refused, and leaves nothing")
{
    Mp3Zoo zoo;
    TemporaryFolder folder;
    const Pcm pcm = music(20000);
    putWavAs(folder / "wav.mp3", pcm, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    putWavAs(folder / "flac.mp3", pcm, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    putWavAs(folder / "ogg.mp3", pcm, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    putFile(folder / "text.mp3", Text(70000, 'x'));
    putFile(folder / "empty.mp3", "");
    putFile(folder / "id3 alone.mp3", Text("ID3\4\0\0\0\0\x10\0", 10) + Text(2048, 'p'));
    const auto before = namesInFolder(folder.path());
    for (const auto& name : before) {
        CAPTURE(name);
        CHECK(failureOf([&] { decodeFile(folder / name, folder / "made.wav", 2); }) == 57);
    }
    CHECK(failureOf([&] { decodeFile(folder / "missing.mp3", folder / "made.wav", 2); }) == 53);
    CHECK(failureOf([&] { decodeFile(folder.path(), folder / "made.wav", 2); }) == 75);
    CHECK(namesInFolder(folder.path()) == before);
}

TEST_CASE("A file of a few frames is decoded")
{
    Mp3Zoo zoo;
    for (const std::int64_t frames : {0, 1, 500, 1152, 3000}) {
        CAPTURE(frames);
        const Text mp3 = lameFile(zoo, "short " + std::to_string(frames), music(frames), "-b", "128");
        CHECK(decoded(zoo, mp3, 2) == byMpg123(zoo, mp3));
        CHECK(readWav(zoo / "made.wav").frames() == frames);
    }
}

TEST_CASE("A WAV header tells its sound, and one past 32 bits that it goes to the end")
{
    const auto header = wavHeader(44100, 2, 1000);
    const Text expected(
        "RIFF\x0C\4\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x44\xAC\0\0\x10\xB1\2\0\4\0\x10\0data\xE8\3\0\0", 44);
    CHECK(Text(header.begin(), header.end()) == expected);
    const auto large = wavHeader(48000, 1, 5'000'000'000);
    CHECK(Text(large.begin() + 4, large.begin() + 8) == "\xFF\xFF\xFF\xFF");
    CHECK(Text(large.begin() + 40, large.end()) == "\xFF\xFF\xFF\xFF");
}

TEST_CASE("A decoding that is stopped leaves nothing")
{
    Mp3Zoo zoo;
    TemporaryFolder folder;
    const Text mp3 = lameFile(zoo, "long", music(44100 * 120), "-b", "128");
    for (const Text before : {"", "x"}) {
        putFile(folder / "a.mp3", before + fileBytes(mp3));
        std::stop_source stop;
        const auto stopAtOnce = [&](std::int32_t) { stop.request_stop(); };
        CHECK_THROWS_AS(decodeFile(folder / "a.mp3", folder / "a.wav", 2, stopAtOnce, stop.get_token()),
                        Stopped);
        CHECK(namesInFolder(folder.path()) == std::set<Text>{"a.mp3"});
    }
}
