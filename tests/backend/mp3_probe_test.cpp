// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mp3_probe.h"
#include "engines/formats/mpeg_header.h"

#include "tests/support/files.h"
#include "tests/support/mp3_frames.h"
#include "tests/support/sound_files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>
#include <random>

using namespace formats;

namespace
{

std::optional<Mp3Facts> factsOf(const Text& bytes)
{
    TemporaryFolder folder;
    putFile(folder / "a.mp3", bytes);
    return probeMp3(files::InputFile::open(folder / "a.mp3"));
}

Text randomBytes(std::size_t count, unsigned seed = 1)
{
    std::minstd_rand random(seed);
    Text bytes(count, '\0');
    for (auto& byte : bytes)
        byte = static_cast<char>(random() >> 8);
    return bytes;
}

}

TEST_CASE("What is no MPEG Layer III is refused")
{
    const Text frames = silentFrames(10);
    struct Case {
        const char* what;
        Text bytes;
    };
    const Case cases[] = {
        {"nothing", ""},
        {"three bytes", "\xff\xfb\x10"},
        {"text", Text(5000, 'a')},
        {"random bytes", randomBytes(300000)},
        {"zeros", Text(200000, '\0')},
        {"all ones", Text(200000, '\xff')},
        {"a lone frame and a byte", silentFrames(1) + "x"},
        {"rubbish and a lone frame", Text(300, 'x') + silentFrames(1)},
        {"nothing but an Info frame", withInfoFrame(0)},
        {"an Info frame and a piece", infoFrameFor(1, 208) + frames.substr(0, 50)},
        {"a tag alone", id3v2Tag(1000)},
        {"a tag longer than the file", id3v2Tag(1000).substr(0, 500)},
        {"RIFF", "RIFF....WAVE" + frames},
        {"Ogg", "OggS" + frames},
        {"FLAC", "fLaC" + frames},
        {"FLAC behind a tag", id3v2Tag(20) + "fLaC" + frames},
        {"MP4", Text("\0\0\0\x20", 4) + "ftypM4A " + frames},
        {"frames behind too much else", Text(70000, '\0') + frames},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(!factsOf(c.bytes));
    }
}

TEST_CASE("Layer I, Layer II and reserved values begin no frame")
{
    struct Case {
        const char* what;
        unsigned char bytes[4];
        bool isFrame;
    };
    const Case cases[] = {
        {"Layer III", {0xff, 0xfb, 0x90, 0x64}, true},
        {"MPEG-2", {0xff, 0xf3, 0x90, 0x64}, true},
        {"MPEG-2.5", {0xff, 0xe3, 0x90, 0x64}, true},
        {"free format", {0xff, 0xfb, 0x00, 0x64}, true},
        {"Layer II", {0xff, 0xfd, 0x90, 0x64}, false},
        {"Layer I", {0xff, 0xff, 0x90, 0x64}, false},
        {"AAC", {0xff, 0xf1, 0x90, 0x64}, false},
        {"a reserved version", {0xff, 0xeb, 0x90, 0x64}, false},
        {"a reserved bit rate", {0xff, 0xfb, 0xf0, 0x64}, false},
        {"a reserved sample rate", {0xff, 0xfb, 0x9c, 0x64}, false},
        {"no synchronisation", {0xff, 0x1b, 0x90, 0x64}, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(mpegHeader(c.bytes).has_value() == c.isFrame);
    }
    CHECK(mpegHeader(cases[0].bytes)->bytes == 417);
    CHECK(mpegHeader(cases[1].bytes)->rate == 22050);
    CHECK(mpegHeader(cases[2].bytes)->rate == 11025);
}

TEST_CASE("Tags and rubbish around the frames belong to no sound")
{
    const Text frames = silentFrames(50);
    struct Case {
        const char* what;
        Text before;
        Text behind;
    };
    const Case cases[] = {
        {"nothing", "", ""},
        {"ID3v2", id3v2Tag(5000), ""},
        {"ID3v2 twice", id3v2Tag(100) + id3v2Tag(7), ""},
        {"rubbish", Text(3000, 'x'), ""},
        {"ID3v1", "", id3v1Tag()},
        {"APE", "", apeTag()},
        {"APE without a header, for reading alone", "", apeTag().substr(32).replace(23, 1, "\1")},
        {"APE and ID3v1", "", apeTag() + id3v1Tag()},
        {"Lyrics3 and ID3v1", "", "LYRICSBEGIN000011LYRICS200" + id3v1Tag()},
        {"all", id3v2Tag(200), apeTag() + id3v1Tag()},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto facts = factsOf(c.before + frames + c.behind);
        REQUIRE(facts);
        CHECK(facts->place.begin == static_cast<std::int64_t>(c.before.size()));
        CHECK(facts->place.end == static_cast<std::int64_t>(c.before.size() + frames.size()));
        CHECK(facts->stretches.front().frames == 50);
        CHECK(facts->isWhole);
    }
}

TEST_CASE("Behind rubbish a few frames of free format at the end are sound, unless all of them are the same")
{
    const Text silent = Text("\xFF\xFB\x00\x64", 4) + Text(900, '\0');
    Text sounding = silent;
    sounding[7] = '\x08'; // eight bits of sound
    Text other = sounding;
    other.back() = 'x';
    const auto times = [](int count, const Text& frame) {
        Text frames;
        while (count-- > 0)
            frames += frame;
        return frames;
    };
    const Text rubbish(300, 'x');
    CHECK(factsOf(rubbish + times(4, sounding) + other));
    CHECK(factsOf(rubbish + times(3, sounding) + times(2, other)));
    CHECK(factsOf(rubbish + times(4, silent)));
    CHECK_FALSE(factsOf(rubbish + times(5, sounding)));
    CHECK_FALSE(factsOf(rubbish + times(2, sounding) + other));
    CHECK_FALSE(factsOf(rubbish + times(4, sounding) + other + "x"));
}

TEST_CASE("What looks like a header in a frame of free format, with none behind it, does not cut the frame")
{
    Text frames;
    for (int i = 0; i < 10; ++i)
        frames += Text("\xFF\xFB\x00\x64", 4) + Text(900, '\0');
    frames.replace(500, 4, frames, 0, 4);
    const auto facts = factsOf(frames);
    REQUIRE(facts);
    CHECK(facts->stretches.front().frames == 10);
    CHECK(facts->isWhole);
}

TEST_CASE("The channels are those of the frames, however large the tag before them is")
{
    TemporaryFolder folder;
    Text stereo = silentFrames(20);
    for (std::size_t at = 0; at < stereo.size(); at += silentFrameBytes)
        stereo[at + 3] = '\x04';
    const struct {
        Text frames;
        int channels;
    } cases[] = {{silentFrames(20), 1}, {stereo, 2}, {silentFrames(20) + stereo, 2}};
    for (const auto& c : cases)
        for (const std::uint32_t tag : {10, 1'000'000}) {
            putFile(folder / "a.mp3", id3v2Tag(tag) + c.frames);
            const auto file = files::InputFile::open(folder / "a.mp3");
            const auto place = findMp3(file);
            REQUIRE(place);
            CHECK(channelsAt(*place, file) == c.channels);
        }
}

TEST_CASE("An Info frame is believed only where its byte count agrees with the file")
{
    struct Case {
        const char* what;
        Text bytes;
        std::int64_t frames;
    };
    const auto bytes = static_cast<std::uint32_t>(101 * silentFrameBytes);
    const auto without = static_cast<std::uint32_t>(100 * silentFrameBytes);
    const Case cases[] = {
        {"as it is", infoFrameFor(100, bytes) + silentFrames(100), 100},
        {"itself not counted", infoFrameFor(100, without) + silentFrames(100), 100},
        // The wrong number of frames shows who is believed.
        {"believed", infoFrameFor(77, bytes) + silentFrames(100), 77},
        {"a byte too many", infoFrameFor(77, bytes + 1) + silentFrames(100), 100},
        {"cut off", infoFrameFor(100, bytes) + silentFrames(60), 60},
        {"appended to", infoFrameFor(100, bytes) + silentFrames(160), 160},
        {"a last frame cut off", (infoFrameFor(100, bytes) + silentFrames(100)).substr(0, bytes - 1), 99},
        {"zeros", infoFrameFor(0, 0) + silentFrames(100), 100},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto facts = factsOf(c.bytes);
        REQUIRE(facts);
        CHECK(facts->stretches.front().frames == c.frames);
    }
}

TEST_CASE("The bit rate is the file's own if constant, otherwise the average in thousands")
{
    CHECK(factsOf(silentFrames(30))->bitsPerSecond == 32000);
    CHECK(factsOf(withInfoFrame(30))->bitsPerSecond == 32000);
    CHECK(factsOf(mp3Bytes(noise(44100), {.bitrate = 320}))->bitsPerSecond == 320000);
    for (const bool hasInfo : {true, false}) {
        const Text bytes = mp3Bytes(noise(88200), {.isVariable = true, .hasInfoFrame = hasInfo});
        const auto average = factsOf(bytes)->bitsPerSecond;
        CHECK(average % 1000 == 0);
        CHECK(average == doctest::Approx(static_cast<double>(bytes.size()) * 8 / 2).epsilon(0.05));
    }
    Text mixed = silentFrames(54);
    for (int i = 0; i < 46; ++i)
        mixed += Text("\xff\xfb\x20\xc4", 4) + Text(126, '\0'); // 40 kbit/s
    CHECK(factsOf(mixed)->bitsPerSecond == 36000);              // 35.51
}

TEST_CASE("Joined files of different rates are stretches")
{
    const auto facts = factsOf(mp3Bytes(noise(44100), {.hasInfoFrame = false}) +
                               mp3Bytes(noise(22050), {.rate = 22050, .bitrate = 64, .hasInfoFrame = false}));
    REQUIRE(facts);
    REQUIRE(facts->stretches.size() == 2);
    CHECK(facts->stretches[0].rate == 44100);
    CHECK(facts->stretches[0].samples == 1152);
    CHECK(facts->stretches[1].rate == 22050);
    CHECK(facts->stretches[1].samples == 576);
    CHECK(facts->isWhole);
}

TEST_CASE("Rubbish between the frames is stepped over and told")
{
    const auto facts = factsOf(silentFrames(40) + randomBytes(5000) + silentFrames(30));
    REQUIRE(facts);
    CHECK(facts->stretches.front().frames == 70);
    CHECK(!facts->isWhole);
}

TEST_CASE("Cut at any byte, a file is measured as the decoder plays it")
{
    TemporaryFolder folder;
    const Text bytes = mp3Bytes(noise(11025), {.bitrate = 64});
    for (std::size_t size = bytes.size() - 500; size < bytes.size(); size += 7) {
        CAPTURE(size);
        putFile(folder / "a.mp3", bytes.substr(0, size));
        const auto facts = probeMp3(files::InputFile::open(folder / "a.mp3"));
        REQUIRE(facts);
        CHECK(facts->samples() == static_cast<std::int64_t>(decoded(folder / "a.mp3").size()));
    }
}
