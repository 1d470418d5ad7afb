// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/opened_sound.h"
#include "tests/support/mp3_frames.h"
#include "tests/support/no_sound.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <algorithm>
#include <ctime>
#include <doctest/doctest.h>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

constexpr std::size_t second = 44100;

bool isAsWithNothingOpen(const Mp3Play& mp3)
{
    return mp3.Length() == 0 && mp3.Bitrate() == 0 && mp3.Frequency() == 0 && mp3.CurrentFrame() == 0 &&
           mp3.FrameDuration() == 26.122F && mp3.LeftVolume() == 0 && mp3.RightVolume() == 0 &&
           mp3.IsPlaying() == 0 && mp3.DecodeLength() == 0;
}

Text oggBytes(const Text& path)
{
    putWav(path, noise(second / 4), 44100, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    return fileBytes(path);
}

// Milliseconds of the processor: other work on the machine takes of the clock's.
double opening(Mp3Play& mp3, const Text& path)
{
    return atBest(0, [&] {
        const std::clock_t then = std::clock();
        REQUIRE(mp3.Open(path, "") == 0);
        return static_cast<double>(std::clock() - then) * 1000 / CLOCKS_PER_SEC;
    });
}

}

TEST_CASE("What cannot be opened leaves nothing open, and a later try may succeed")
{
    SoundParts parts;
    const Text good = parts.folder / "good.mp3";
    const Text bad = parts.folder / "bad.mp3";
    putFile(good, mp3Bytes(noise(second / 2)));
    mkfifo((parts.folder / "pipe.mp3").c_str(), 0600);
    mkdir((parts.folder / "folder.mp3").c_str(), 0700);
    symlink((parts.folder / "loop.mp3").c_str(), (parts.folder / "loop.mp3").c_str());
    putFile(parts.folder / "empty.mp3", "");
    putFile(parts.folder / "text.mp3", Text(100000, 'm'));
    putFile(parts.folder / "ogg.mp3", oggBytes(parts.folder / "ogg.ogg"));

    const Text paths[] = {
        "",
        parts.folder / "missing.mp3",
        parts.folder / "pipe.mp3",
        parts.folder / "folder.mp3",
        "/dev/zero",
        parts.folder / "loop.mp3",
        parts.folder / "empty.mp3",
        parts.folder / "text.mp3",
        parts.folder / "ogg.mp3",
        good + "/under.mp3",
        Text(5000, 'n'),
    };
    for (const auto& path : paths) {
        CAPTURE(path);
        REQUIRE(parts.mp3->Open(good, "") == 0);
        CHECK(parts.mp3->Open(path, "") != 0);
        CHECK(isAsWithNothingOpen(*parts.mp3));
        parts.mp3->Play();
        CHECK(parts.mp3->IsPlaying() == 0);
    }
    CHECK(parts.mp3->Open(bad, "") != 0);
    std::filesystem::copy(good, bad);
    CHECK(parts.mp3->Open(bad, "") == 0);
}

TEST_CASE("A file that may not be read is not opened")
{
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, mp3Bytes(noise(second / 4)));
    chmod(path.c_str(), 0);
    chmod(parts.folder.path().c_str(), 0755);
    // Root may read anything: a child asks as somebody else.
    const pid_t child = fork();
    if (child == 0) {
        const bool changed = geteuid() != 0 || (setegid(65534) == 0 && seteuid(65534) == 0);
        _exit(changed && parts.mp3->Open(path, "") != 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    CHECK(status == 0);
}

TEST_CASE("The name of a file says nothing about its kind, and any bytes may be its name")
{
    SoundParts parts;
    for (const char* name : {"a.wav", "no ending", "b\xff\xfe.mp3", "two\nlines.mp3", "\xc3\xa4.ogg"}) {
        CAPTURE(name);
        putFile(parts.folder / name, mp3Bytes(noise(second / 2)));
        CHECK(parts.mp3->Open(parts.folder / name, "") == 0);
        CHECK(parts.mp3->Length() == 500);
    }
}

TEST_CASE("A WAV file opens, too, without tags")
{
    SoundParts parts;
    const Text path = putWav(parts.folder / "a.mp3", noise(second * 2));
    REQUIRE(parts.mp3->Open(path, "") == 0);
    CHECK(parts.mp3->Length() == 2000);
    CHECK(parts.mp3->Bitrate() == 1411200);
    CHECK(parts.mp3->Frequency() == 44100);
    CHECK(parts.mp3->Title().empty());
    CHECK(parts.mp3->GenreIndex() == -1);
    parts.mp3->setTitle("Title");
    const Text bytes = fileBytes(path);
    parts.mp3->WriteTag();
    CHECK(parts.shell.notes == std::vector<Text>{"The tag was not saved|No MP3 file is open."});
    CHECK(fileBytes(path) == bytes);
    CHECK(parts.mp3->Open(path, "") == 0);
    CHECK(parts.mp3->Title().empty());
}

namespace
{

// With rubbish somewhere in it, in which a decoder may see frames where a look at the headers sees none, or
// the other way round.
Text damaged(Text bytes, unsigned seed)
{
    std::minstd_rand random(seed);
    const std::size_t at = 2000 + random() % 2000;
    const std::size_t end = std::min<std::size_t>(bytes.size(), at + 1 + random() % 3000);
    std::generate(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                  bytes.begin() + static_cast<std::ptrdiff_t>(end),
                  [&] { return static_cast<char>(random() >> 8); });
    return bytes;
}

}

TEST_CASE("The length is that of what the decoder gives, the rate and the bit rate are the file's")
{
    const auto half = noise(second / 2);
    const auto slow = noise(second / 2);
    struct Case {
        const char* what;
        Text bytes;
        std::int32_t frequency;
        std::int32_t bitrate; // 0: not constant
    };
    const Case cases[] = {
        {"constant rate", mp3Bytes(half), 44100, 128000},
        {"320 kilobits", mp3Bytes(half, {.bitrate = 320}), 44100, 320000},
        {"no Info frame", mp3Bytes(half, {.hasInfoFrame = false}), 44100, 128000},
        {"variable rate", mp3Bytes(half, {.isVariable = true}), 44100, 0},
        {"variable rate without a header", mp3Bytes(half, {.isVariable = true, .hasInfoFrame = false}), 44100,
         0},
        {"one channel", mp3Bytes(half, {.bitrate = 64, .isMono = true}), 44100, 64000},
        {"free format", mp3Bytes(half, {.bitrate = 400, .isFreeFormat = true}), 44100, 0},
        {"MPEG-2", mp3Bytes(slow, {.rate = 22050, .bitrate = 64}), 22050, 64000},
        {"MPEG-2.5", mp3Bytes(slow, {.rate = 8000, .bitrate = 16}), 8000, 16000},
        {"48000 Hz", mp3Bytes(half, {.rate = 48000}), 48000, 128000},
        {"tagged", id3v2Tag(3000) + mp3Bytes(half) + apeTag() + id3v1Tag(), 44100, 128000},
        {"cut off", mp3Bytes(half).substr(0, 5000), 44100, 128000},
        {"joined", mp3Bytes(half) + mp3Bytes(half), 44100, 128000},
        {"a wrong byte count", infoFrameFor(5000, 12345) + silentFrames(100), 44100, 32000},
        {"damaged", mp3Bytes(half, {.hasInfoFrame = false}).replace(3000, 1500, Text(1500, 'x')), 44100,
         128000},
        {"more frames than the headers promise", damaged(mp3Bytes(half, {.hasInfoFrame = false}), 18), 44100,
         0},
    };
    SoundParts parts;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text path = parts.folder / "a.mp3";
        putFile(path, c.bytes);
        REQUIRE(parts.mp3->Open(path, "") == 0);
        CHECK(parts.mp3->Length() == static_cast<std::int64_t>(decoded(path).size()) * 1000 / c.frequency);
        CHECK(parts.mp3->Frequency() == c.frequency);
        if (c.bitrate != 0)
            CHECK(parts.mp3->Bitrate() == c.bitrate);
        CHECK(parts.mp3->Bitrate() % 1000 == 0);
        CHECK(parts.mp3->Bitrate() > 0);
        CHECK(parts.mp3->CurrentFrame() == 0);
    }
}

TEST_CASE("Joined files of different rates last as long as all of them")
{
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, silentFrames(100) +
                      mp3Bytes(noise(second), {.rate = 22050, .bitrate = 64, .hasInfoFrame = false}));
    REQUIRE(parts.mp3->Open(path, "") == 0);
    const double first = 100 * 1152 * 1000.0 / 44100;
    CHECK(parts.mp3->Length() > first + 2000);
    CHECK(parts.mp3->Length() < first + 2150);
    // A position in the second file is one of time, as everywhere.
    parts.mp3->Seek(150);
    CHECK(parts.mp3->CurrentFrame() == 150);
}

TEST_CASE("Joined files of different rates can be entered anywhere, at the rate of the place")
{
    TemporaryFolder folder;
    const Text path = folder / "a.mp3";
    putFile(path, mp3Bytes(noise(second), {.hasInfoFrame = false}) +
                      mp3Bytes(noise(second, 2), {.rate = 22050, .bitrate = 64, .hasInfoFrame = false}) +
                      mp3Bytes(noise(second, 3), {.rate = 48000, .hasInfoFrame = false}));
    const auto sound = audio::openMp3Sound(path);
    REQUIRE(sound);
    auto& source = *sound->source;
    std::vector<int> rates;
    const auto readAll = [&source, &rates] {
        rates = {source.rate()};
        StereoFrames all;
        StereoFrames piece(1000);
        for (int rate = source.rate();;) {
            const auto frames = source.read(std::span(&piece.data()->left, piece.size() * 2));
            all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(frames));
            if (frames == 0 && source.rate() == rate)
                return all;
            if (source.rate() != rate)
                rates.push_back(source.rate());
            rate = source.rate();
        }
    };
    const auto all = readAll();
    CHECK(rates == std::vector<int>{44100, 22050, 48000});
    CHECK(static_cast<std::int64_t>(all.size()) == sound->timeline.frames());
    struct Case {
        double second;
        int rate;
    };
    const Case cases[] = {{2.5, 22050}, {0.5, 44100},  {3.5, 48000}, {1.5, 22050},
                          {0, 44100},   {1.06, 22050}, {4, 48000}};
    for (const auto& c : cases) {
        CAPTURE(c.second);
        const auto frame = sound->timeline.frameAtMilliseconds(static_cast<std::int32_t>(c.second * 1000));
        source.seek(frame);
        CHECK(source.rate() == c.rate);
        const auto rest = readAll();
        CHECK(rest.size() == all.size() - static_cast<std::size_t>(frame));
        // The decoder's rounding may differ in a last bit.
        CHECK(largestDifference(rest, StereoFrames(all.begin() + frame, all.end())) <= 1);
    }
    source.seek(static_cast<std::int64_t>(all.size()) + 100);
    CHECK(readAll().empty());
}

TEST_CASE("A frame lasts what its samples last, and frames are counted from the start of the sound")
{
    SoundParts parts;
    struct Case {
        const char* what;
        Text bytes;
        float duration;
    };
    const Case cases[] = {
        {"44100 Hz", mp3Bytes(noise(second)), 26.122449F},
        {"48000 Hz", mp3Bytes(noise(second), {.rate = 48000}), 24},
        {"22050 Hz", mp3Bytes(noise(second), {.rate = 22050, .bitrate = 64}), 26.122449F},
        {"8000 Hz", mp3Bytes(noise(second), {.rate = 8000, .bitrate = 16}), 72},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        putFile(parts.folder / "a.mp3", c.bytes);
        REQUIRE(parts.mp3->Open(parts.folder / "a.mp3", "") == 0);
        CHECK(parts.mp3->FrameDuration() == c.duration);
        for (const std::int32_t frame : {0, 1, 10}) {
            parts.mp3->Seek(frame);
            CHECK(parts.mp3->CurrentFrame() == frame);
        }
        parts.mp3->Seek(-5);
        CHECK(parts.mp3->CurrentFrame() == 0);
        parts.mp3->Seek(2000000000);
        CHECK(parts.mp3Milliseconds() <= parts.mp3->Length() + 0.5);
        CHECK(parts.mp3Milliseconds() > parts.mp3->Length() - c.duration);
    }
}

TEST_CASE("A file of more frames than a 16-bit number holds counts in groups")
{
    SoundParts parts;
    struct Case {
        std::uint32_t frames;
        int group;
    };
    const Case cases[] = {{32767, 1}, {32768, 2}, {65534, 2}, {65535, 3}, {140000, 5}};
    for (const auto& c : cases) {
        CAPTURE(c.frames);
        putFile(parts.folder / "a.mp3", silentFrames(c.frames));
        REQUIRE(parts.mp3->Open(parts.folder / "a.mp3", "") == 0);
        CHECK(parts.mp3->FrameDuration() == doctest::Approx(26.1224490 * c.group));
        const double last = parts.mp3->Length() / static_cast<double>(parts.mp3->FrameDuration());
        for (const double share : {0.1, 0.5, 0.99}) {
            const auto frame = static_cast<std::int32_t>(last * share);
            parts.mp3->Seek(frame);
            CHECK(parts.mp3->CurrentFrame() == frame);
        }
        parts.mp3->Seek(1000000);
        CHECK(parts.mp3->CurrentFrame() >= static_cast<std::int16_t>(last));
    }
}

TEST_CASE(
    "Opening a file is quick where its header can be trusted, however long it is and whatever tag it has")
{
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    putFile(path, silentFrames(137000)); // an hour, its frames to be counted
    const double counting = opening(*parts.mp3, path);
    putFile(path, withInfoFrame(137000));
    const double trusting = opening(*parts.mp3, path);
    putFile(path, id3v2Tag(20000000) + withInfoFrame(2000));
    const double skipping = opening(*parts.mp3, path);
    CHECK(trusting < counting / 4);
    CHECK(skipping < counting / 4);
    MESSAGE("Counting " << counting << " ms, trusting " << trusting << " ms, behind a tag " << skipping
                        << " ms");
}

TEST_CASE("A file that vanishes while it plays is played to its end, one that is cut ends early")
{
    const NoSound none;
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    const Text bytes = mp3Bytes(noise(second * 10), {.bitrate = 320});
    putFile(path, bytes.substr(0, 40000)); // one second
    REQUIRE(parts.mp3->Open(path, "") == 0);
    const std::int32_t length = parts.mp3->Length();
    auto then = std::chrono::steady_clock::now();
    parts.mp3->Play();
    REQUIRE(waitUntil([&] { return parts.mp3Milliseconds() > 50; }));
    std::filesystem::remove(path);
    CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    CHECK(std::chrono::steady_clock::now() - then >= std::chrono::milliseconds(length));

    putFile(path, bytes);
    REQUIRE(parts.mp3->Open(path, "") == 0);
    CHECK(parts.mp3->Length() == 10000);
    then = std::chrono::steady_clock::now();
    parts.mp3->Play();
    REQUIRE(waitUntil([&] { return parts.mp3Milliseconds() > 50; }));
    std::filesystem::resize_file(path, 30000);
    CHECK(waitUntil([&] { return parts.mp3->IsPlaying() == 0; }));
    CHECK(std::chrono::steady_clock::now() - then < 8s);
    CHECK(parts.mp3->CurrentFrame() == 0);
}
