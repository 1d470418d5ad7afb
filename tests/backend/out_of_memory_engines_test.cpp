// SPDX-License-Identifier: GPL-3.0-or-later
// Conversions and discs while memory runs out at any one place of the way.
#include "engines/codec/decode_jobs.h"
#include "engines/codec/encode_jobs.h"
#include "tests/support/disc_desk.h"
#include "tests/support/lame_alone.h"
#include "tests/support/scarce_memory.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

namespace
{

// One output, and the engine that makes it.
struct ScarceEngine {
    DiscDesk desk;
    Text target = desk.output + "/made";
    std::function<void()> run; // up to `Done`
    Text after;

    // Ends, too, where the window thread meets what it does not handle.
    Text endWith(long nth, bool& wasRefused)
    {
        const auto toldBefore = desk.shell.told().size();
        auto [end, refused] = tried(nth, run);
        wasRefused = refused;
        return desk.shell.told().size() > toldBefore ? desk.shell.told().back() : end;
    }

    void requireRest() const
    {
        REQUIRE(namesInFolder(desk.output) == std::set<Text>{"made"});
        REQUIRE(desk.parts.open().empty());
        REQUIRE(desk.sleepLock.held == 0);
    }

    // For each piece of memory that the work asks for: it is done, or its end is told, and the old file
    // stands; nothing lies beside it, and with memory it is done at once.
    long tryAll(long all = 200, long longestStep = 16)
    {
        putFile(target, "old");
        REQUIRE(endOf(run) == "");
        after = fileBytes(target);
        return tryEach(
            [this](long nth) {
                CAPTURE(nth);
                putFile(target, "old");
                bool wasRefused = false;
                const Text end = endWith(nth, wasRefused);
                CAPTURE(end);
                REQUIRE((end.empty() || (wasRefused && end.find("Out of memory") != Text::npos)));
                REQUIRE((fileBytes(target) == after || (!end.empty() && fileBytes(target) == "old")));
                requireRest();
                const auto toldBefore = desk.shell.told().size();
                REQUIRE(endOf(run) == "");
                REQUIRE(fileBytes(target) == after);
                REQUIRE(desk.shell.told().size() == toldBefore);
                requireRest();
                return wasRefused;
            },
            all, longestStep);
    }

    void waitFor(const bool& isDone)
    {
        const bool hasCome = desk.window.runUntil([&] { return isDone; });
        REQUIRE(hasCome);
    }
};

void encode(ScarceEngine& work, const Text& wav)
{
    const auto encoder = codec::makeEncodeJobs(work.desk.window, work.desk.shell, work.desk.parts);
    bool isDone = false;
    encoder->Done.calls([&] { isDone = true; });
    encoder->setBitrate(32000);
    encoder->Open(wav, work.target);
    encoder->Start();
    work.waitFor(isDone);
}

void decode(ScarceEngine& work, const Text& mp3)
{
    bool isDone = false;
    codec::DecodeJobs decoder(work.desk.window, work.desk.shell,
                              {[](std::int32_t) {}, [&] { isDone = true; }}, work.desk.parts);
    decoder.open(mp3, work.target);
    decoder.start();
    work.waitFor(isDone);
}

void putImage(const DiscDesk& desk)
{
    putFile(desk.discs + "/a disc of two.bin", noise(2 * bytesOfSecond));
    putFile(desk.discs + "/a disc of two.cue", sheetOf("a disc of two.bin", {"00:00:00", "00:01:00"}));
}

// What the workbench asks when it lists a disc.
void list(ACD& reader)
{
    const auto count = reader.DriveCount();
    const Text name = reader.DriveName(1);
    reader.SelectDrive(1);
    const auto tracks = reader.TrackCount();
    const auto length = reader.TrackLength(2);
    REQUIRE(count == 1);
    REQUIRE(name == "Disc image: a disc of two");
    REQUIRE(tracks == 2);
    REQUIRE(length == 1000);
}

}

TEST_CASE("A file is encoded, or its failure is told")
{
    ScarceEngine work;
    const Text wav = putPcmWav(work.desk.folder / "short.wav", music(2000, 8000, 1));
    work.run = [&] { encode(work, wav); };
    CHECK(work.tryAll() > 50);
}

TEST_CASE("A file is encoded in pieces, or its failure is told")
{
    ScarceEngine work;
    const Text wav = putPcmWav(work.desk.folder / "long.wav", music(8000 * 10, 8000, 1));
    work.run = [&] { encode(work, wav); };
    CHECK(work.tryAll(20, 80) > 100);
}

TEST_CASE("A file is decoded in pieces, or its failure is told")
{
    ScarceEngine work;
    const Text mp3 = work.desk.folder / "song.mp3";
    putFile(mp3, lameAlone(music(44100 * 15), 32, 22050));
    work.run = [&] { decode(work, mp3); };
    CHECK(work.tryAll() > 50);
}

TEST_CASE("A file is decoded from its start, or its failure is told")
{
    ScarceEngine work;
    const Text mp3 = work.desk.folder / "song.mp3";
    putFile(mp3, "x" + lameAlone(music(44100 * 2), 32, 22050));
    work.run = [&] { decode(work, mp3); };
    CHECK(work.tryAll() > 50);
}

TEST_CASE("An image is listed, or the end is told")
{
    ScarceEngine work;
    putImage(work.desk);
    work.run = [&] { list(*work.desk.reader()); };
    CHECK(work.tryAll() > 50);
}

TEST_CASE("An image's track is copied, or its failure is told")
{
    ScarceEngine work;
    putImage(work.desk);
    work.run = [&] {
        const auto reader = work.desk.reader();
        bool isDone = false;
        reader->Done.calls([&] { isDone = true; });
        list(*reader);
        reader->ReadTrack(2, work.target);
        work.waitFor(isDone);
    };
    CHECK(work.tryAll() > 50);
}
