// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/frame_scan.h"
#include "engines/formats/mp3_probe.h"

#include "engines/codec/piece_decoder.h"
#include "tests/support/lame_alone.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

using namespace codec;
using namespace formats;

namespace
{

std::optional<MpegHeader> header(std::uint32_t bits)
{
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(bits >> 24),
                                  static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 8),
                                  static_cast<std::uint8_t>(bits)};
    return mpegHeader(bytes);
}

// Frames of silence without a note at the front: 128 kbit/s, 44.1 kHz, stereo, 417 bytes.
Text silence(int frames)
{
    Text bytes;
    for (int i = 0; i < frames; ++i)
        bytes += Text("\xFF\xFB\x90\x64", 4) + Text(413, '\0');
    return bytes;
}

struct Disk {
    TemporaryFolder folder;

    std::optional<FrameTable> scan(const Text& bytes)
    {
        putFile(folder / "a", bytes);
        return scanFrames(files::InputFile::openOrFail(folder / "a"));
    }

    bool knows(const Text& bytes)
    {
        putFile(folder / "a", bytes);
        return findMp3(files::InputFile::open(folder / "a")).has_value();
    }
};

}

TEST_CASE("A header tells rate, channels and size of its frame")
{
    struct Case {
        Text what;
        std::uint32_t bits;
        int rate;
        int channels;
        int samples;
        int bytes;
        int sideInfo;
    };
    const Case cases[] = {
        {"128 kbit/s", 0xFFFB9064, 44100, 2, 1152, 417, 36},
        {"padded", 0xFFFB9264, 44100, 2, 1152, 418, 36},
        {"protected", 0xFFFA9064, 44100, 2, 1152, 417, 38},
        {"mono", 0xFFFB90C4, 44100, 1, 1152, 417, 21},
        {"320 kbit/s at 32 kHz", 0xFFFBE864, 32000, 2, 1152, 1440, 36},
        {"48 kHz", 0xFFFB9464, 48000, 2, 1152, 384, 36},
        {"half rate", 0xFFF38064, 22050, 2, 576, 208, 21},
        {"half rate mono", 0xFFF380C4, 22050, 1, 576, 208, 13},
        {"quarter rate", 0xFFE38064, 11025, 2, 576, 417, 21},
        {"lowest of all", 0xFFE318C4, 8000, 1, 576, 72, 13},
        {"free format", 0xFFFB0064, 44100, 2, 1152, 0, 36},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto read = header(c.bits);
        REQUIRE(read);
        CHECK(read->rate == c.rate);
        CHECK(read->channels == c.channels);
        CHECK(read->samples == c.samples);
        CHECK(read->bytes == c.bytes);
        CHECK(read->sideInfo == c.sideInfo);
    }
    for (const std::uint32_t none : {0xFFFBF064u, 0xFFFB9C64u, 0xFFFD9064u, 0xFFFF9064u, 0xFFEB9064u,
                                     0xFF7B9064u, 0x00000000u, 0xFFFFFFFFu, 0x49443304u})
        CHECK_FALSE(header(none));
}

TEST_CASE("A file whose every byte is known gives the places of its frames")
{
    Disk disk;
    const auto plain = disk.scan(silence(5));
    REQUIRE(plain);
    CHECK(plain->positions == std::vector<std::int64_t>{0, 417, 834, 1251, 1668, 2085});
    CHECK(plain->trim.begin == 0);
    CHECK(plain->trim.end == 5 * 1152);

    const Text tag = Text("ID3\3\0\0\0\0\0\x05", 10) + "hello";
    const auto tagged = disk.scan(tag + silence(3) + "TAG" + Text(125, ' '));
    REQUIRE(tagged);
    CHECK(tagged->positions == std::vector<std::int64_t>{15, 432, 849, 1266});

    const auto noted = disk.scan(lameAlone(music(100000), 128, 44100));
    REQUIRE(noted);
    CHECK(noted->positions.front() == 417);
    CHECK(noted->trim.begin == 576 + 529);
    CHECK(noted->trim.end - noted->trim.begin == 100000);
}

TEST_CASE("A file with a byte that is not known, or that contradicts itself, is left to a search")
{
    Disk disk;
    const Text noted = lameAlone(music(100000), 128, 44100);
    const Text half = Text("\xFF\xF3\x80\x64", 4) + Text(204, '\0');
    const Text mono = Text("\xFF\xFB\x90\xC4", 4) + Text(413, '\0');
    const Text free = Text("\xFF\xFB\x00\x64", 4) + Text(413, '\0');
    struct Case {
        Text what;
        Text bytes;
    };
    const Case cases[] = {
        {"nothing", ""},
        {"a byte before", "x" + silence(5)},
        {"a byte behind", silence(5) + "x"},
        {"a byte between", silence(2) + "x" + silence(3)},
        {"half a frame at the end", silence(5) + silence(1).substr(0, 200)},
        {"another rate", silence(5) + half},
        {"mono among stereo", silence(5) + mono + silence(5)},
        {"free format", free + free + free + free},
        {"free format among others", silence(3) + free},
        {"a tag in between", silence(3) + "TAG" + Text(125, ' ') + silence(3)},
        {"a tag that is too short", silence(3) + "TAG" + Text(100, ' ')},
        {"a tag longer than the file", Text("ID3\3\0\0\x7F\x7F\x7F\x7F", 10) + silence(3)},
        {"an APE tag longer than the file",
         silence(3) + Text("APETAGEX\xD0\7\0\0\xFF\xFF\xFF\x7F\0\0\0\0\0\0\0\0", 24) + Text(8, '\0')},
        {"fewer frames than noted", noted.substr(0, 417 * 10)},
        {"two noted files", noted + noted},
        {"all padding", lameAlone(music(0), 128, 44100)},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK_FALSE(disk.scan(c.bytes));
    }
}

TEST_CASE("An MP3 file is known by its frames")
{
    Disk disk;
    const Text noted = lameAlone(music(100000), 128, 44100);
    const Text free = Text("\xFF\xFB\x00\x64", 4) + Text(500, '\0');
    const Text layerTwo = Text("\xFF\xFD\x90\x64", 4) + Text(413, '\0');
    struct Case {
        Text what;
        Text bytes;
        bool known;
    };
    const Case cases[] = {
        {"frames", silence(10), true},
        {"one frame alone", silence(1), true},
        {"a note and a frame", lameAlone(music(0), 128, 44100), true},
        {"frames behind a large tag", Text("ID3\3\0\0\0\x10\0\0", 10) + Text(16 << 14, 'p') + silence(5),
         true},
        {"junk of 60 KB before", Text(60000, 'x') + silence(10), true},
        {"junk of 70 KB before", Text(70000, 'x') + silence(10), false},
        {"free format", free + free + free + free + free, true},
        {"the last frame cut", silence(2).substr(0, 700), true},
        {"a header alone", silence(1).substr(0, 4), false},
        {"nothing", "", false},
        {"three bytes", "\xFF\xFB\x90", false},
        {"a text", Text(5000, 'a'), false},
        {"bytes that are all ones", Text(5000, '\xFF'), false},
        {"layer II", layerTwo + layerTwo + layerTwo + layerTwo, false},
        {"RIFF around frames", "RIFF" + silence(10), false},
        {"Ogg", "OggS" + silence(10), false},
        {"FLAC", "fLaC" + silence(10), false},
        {"MP4", Text("\0\0\0\x18", 4) + "ftypM4A " + silence(10), false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(disk.knows(c.bytes) == c.known);
    }
}

TEST_CASE("Frames cut out of a file come with silenced ones that fill the reservoir")
{
    TemporaryFolder folder;
    for (const int kilobits : {32, 128, 320}) {
        CAPTURE(kilobits);
        putFile(folder / "a.mp3", lameAlone(music(44100 * 10), kilobits, 44100));
        const auto file = files::InputFile::openOrFail(folder / "a.mp3");
        const auto table = scanFrames(file);
        REQUIRE(table);
        CHECK(cutFrames(file, *table, 0, 8).leadIn == 0);
        CHECK(cutFrames(file, *table, 8, 16).leadIn == 8);
        const auto cut = cutFrames(file, *table, 160, 168);
        CHECK(cut.leadIn % 8 == 0);
        CHECK(cut.leadIn >= 16);
        CHECK(cut.leadIn <= 40);

        // The first frame points nowhere back; those behind it, as far as there is something, to 511 bytes at
        // most.
        const auto& bytes = cut.input.front;
        std::size_t at = 0;
        int reservoir = 0;
        for (std::int64_t i = 0; i < cut.leadIn - 8; ++i) {
            const auto head = mpegHeader(bytes.data() + at);
            REQUIRE(head);
            CHECK((bytes[at + 4] << 1 | bytes[at + 5] >> 7) == reservoir);
            CHECK(std::all_of(&bytes[at + 6], bytes.data() + at + head->sideInfo,
                              [](auto byte) { return byte == 0; }));
            reservoir = std::min(511, reservoir + head->mainData());
            at += static_cast<std::size_t>(head->bytes);
        }
        CHECK(reservoir == 511);

        // The rest is what the file has.
        const Text original = fileBytes(folder / "a.mp3");
        const Text rest(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end());
        const auto begin = static_cast<std::size_t>(table->positions[152]);
        CHECK(rest == original.substr(begin, static_cast<std::size_t>(table->positions[160]) - begin));
        CHECK(cut.input.begin == table->positions[160]);
        CHECK(cut.input.end == table->positions[168]);
    }
}
