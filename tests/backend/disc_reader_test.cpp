// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/child.h"
#include "tests/support/disc_desk.h"
#include "tests/support/failing_disk.h"
#include "tests/support/hung_share.h"
#include "tests/support/scripted_reader.h"
#include "tests/support/small_disk.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <sys/stat.h>
#include <thread>

namespace
{

using Clock = std::chrono::steady_clock;

// A desk with one real drive and its reader.
struct Reading {
    DiscDesk desk;
    std::shared_ptr<ScriptedReader> drive = std::make_shared<ScriptedReader>("/dev/sr0");
    std::unique_ptr<ACD> reader;
    std::unique_ptr<Heard<ACD>> heard;
    Text wav = desk.output + "/Track1.wav";

    Reading()
    {
        desk.readers = {drive};
        makeReader();
    }
    ~Reading() { drive->letGo(); }

    void makeReader()
    {
        reader = desk.reader();
        heard = std::make_unique<Heard<ACD>>(desk.window, *reader);
    }

    bool waitUntilHolding()
    {
        const auto end = Clock::now() + std::chrono::seconds(60);
        while (!drive->isHolding && Clock::now() < end)
            std::this_thread::yield();
        return drive->isHolding;
    }

    // What holds whenever nothing is being read.
    void checkIdle()
    {
        desk.window.runPosted();
        CHECK(desk.sleepLock.held == 0);
        CHECK(desk.parts.open().empty());
        for (const Text& name : namesInFolder(desk.output))
            CHECK_FALSE(name.ends_with(".part"));
    }
};

// An image of two tracks in the folder for discs.
struct ImageReading : Reading {
    Text sound = noise(2000 * bytesOfSector);

    ImageReading()
    {
        desk.readers.clear();
        putFile(desk.discs + "/A.bin", sound);
        putFile(desk.discs + "/A.cue", sheetOf("A.bin", {"00:00:00", "00:20:00"}));
        makeReader();
        reader->DriveCount();
    }
};

}

TEST_CASE("Real drives come first, then images, and each has its number")
{
    Reading r;
    r.desk.readers.push_back(std::make_shared<ScriptedReader>("/dev/sr1"));
    putFile(r.desk.discs + "/Mine.cue", "");
    CHECK(r.reader->Init() == 0);
    CHECK(r.reader->DriveCount() == 3);
    CHECK(r.reader->DriveName(1) == "Maker Model (/dev/sr0)");
    CHECK(r.reader->DriveName(2) == "Maker Model (/dev/sr1)");
    CHECK(r.reader->DriveName(3) == "Disc image: Mine");
}

TEST_CASE("There is always a drive, and an empty one answers everything")
{
    Reading r;
    r.desk.readers.clear();
    CHECK(r.reader->Init() == 0);
    CHECK(r.reader->DriveCount() == 1);
    CHECK(r.reader->DriveName(1) == "Disc image: none");
    r.reader->SelectDrive(1);
    CHECK(r.reader->TrackCount() == 0);
    CHECK(r.reader->TrackLength(1) == 0);
    CHECK(r.reader->ReadTrack(1, r.wav) != 0);
    CHECK(r.heard->end());
    r.checkIdle();
}

TEST_CASE("A drive that has come since the count is found behind those that have numbers")
{
    Reading r;
    putFile(r.desk.discs + "/Old.cue", "");
    CHECK(r.reader->DriveCount() == 2);
    r.desk.readers.push_back(std::make_shared<ScriptedReader>("/dev/sr1"));
    CHECK(r.reader->Init() == 0);
    CHECK(r.reader->DriveName(3) == "");
    r.reader->SelectDrive(3);
    CHECK(r.reader->DriveName(1) == "Maker Model (/dev/sr0)");
    CHECK(r.reader->DriveName(2) == "Disc image: Old");
    CHECK(r.reader->DriveName(3) == "Maker Model (/dev/sr1)");
    CHECK(r.reader->TrackCount() == 2);
    CHECK(r.reader->DriveCount() == 3);
}

TEST_CASE("While the folder of the images does not answer, the drives stay as they were, soon")
{
    Reading r;
    putFile(r.desk.discs + "/Mine.cue", "");
    CHECK(r.reader->DriveCount() == 2);
    {
        const HungShare hung(r.desk.discs.c_str());
        const auto then = Clock::now();
        CHECK(r.reader->DriveCount() == 2);
        r.reader->SelectDrive(1);
        CHECK(r.reader->DriveName(2) == "Disc image: Mine");
        CHECK(r.reader->TrackCount() == 2);
        CHECK(Clock::now() - then < std::chrono::seconds(30)); // what hangs here hangs for a minute
        CHECK(holdsUp(hung, 1));
    }
    putFile(r.desk.discs + "/New.cue", "");
    CHECK(waitUntil([&] { return r.reader->DriveCount() == 3; }));
}

TEST_CASE("An image that was copied into the folder since the count has the next number, however old it is")
{
    ImageReading r;
    CHECK(r.reader->DriveCount() == 1);
    putFile(r.desk.discs + "/Older.bin", noise(375 * bytesOfSector));
    putFile(r.desk.discs + "/Older.cue", sheetOf("Older.bin", {"00:00:00"}));
    std::filesystem::last_write_time(r.desk.discs + "/Older.cue",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(24));
    r.reader->SelectDrive(2);
    CHECK(r.reader->TrackLength(1) == 5000);
    for (int count = 0; count < 2; ++count) {
        CHECK(r.reader->DriveName(1) == "Disc image: A");
        CHECK(r.reader->DriveName(2) == "Disc image: Older");
        CHECK(r.reader->DriveCount() == 2);
    }
}

TEST_CASE("The first image takes the place of the empty drive")
{
    Reading r;
    r.desk.readers.clear();
    CHECK(r.reader->DriveCount() == 1);
    CHECK(r.reader->TrackCount() == 0);
    putFile(r.desk.discs + "/New.bin", noise(375 * bytesOfSector));
    putFile(r.desk.discs + "/New.cue", sheetOf("New.bin", {"00:00:00"}));
    r.reader->SelectDrive(1);
    CHECK(r.reader->TrackLength(1) == 5000);
    CHECK(r.reader->DriveName(1) == "Disc image: New");
    CHECK(r.reader->DriveName(2) == "");
}

TEST_CASE("A disc that cannot be read is told once, until its drive answers without that trouble")
{
    Reading r;
    const disc::DiscContents good = r.drive->disc;
    const auto list = [&] {
        r.reader->SelectDrive(1);
        const auto count = r.reader->TrackCount();
        r.reader->TrackLength(1);
        return count;
    };
    CHECK(list() == 2);
    CHECK(r.desk.shell.told().empty());
    r.drive->disc = {{}, 0, "It is scratched."};
    CHECK(list() == 0);
    CHECK(list() == 0);
    REQUIRE(r.desk.shell.told().size() == 1);
    CHECK(r.desk.shell.told()[0] == "A disc could not be read | Maker Model (/dev/sr0): It is scratched.");
    r.drive->disc.trouble = "The drive does not answer.";
    list();
    CHECK(r.desk.shell.told().size() == 2);
    r.drive->disc = good;
    CHECK(list() == 2);
    r.drive->disc = {{}, 0, "The drive does not answer."};
    list();
    CHECK(r.desk.shell.told().size() == 3);
    r.drive->disc = {};
    list();
    CHECK(r.desk.shell.told().size() == 3);
}

TEST_CASE("A sheet that names a file elsewhere is told in words")
{
    ImageReading r;
    putFile(r.desk.discs + "/A.cue", sheetOf("../../secret", {"00:00:00"}));
    r.reader->SelectDrive(1);
    CHECK(r.reader->TrackCount() == 0);
    REQUIRE(r.desk.shell.told().size() == 1);
    CHECK(r.desk.shell.told()[0] == "A disc could not be read | Disc image: A: Its sheet names ../../secret, "
                                    "which does not lie in the sheet's folder.");
}

TEST_CASE("A track that the disc leaves out has no length and is refused")
{
    Reading r;
    r.drive->disc.tracks.insert(r.drive->disc.tracks.begin(), 3, {false, 0, 0, true});
    CHECK(r.reader->TrackCount() == 5);
    CHECK(r.reader->TrackLength(3) == 0);
    CHECK(r.reader->TrackLength(4) == 4000);
    CHECK(r.reader->ReadTrack(3, r.wav) != 0);
    CHECK(r.heard->end());
    CHECK(r.drive->reads == 0);
    CHECK(namesInFolder(r.desk.output).empty());
}

TEST_CASE("A title that is too long for a name is cut between two characters, in every writing")
{
    const auto repeated = [](const char* part, int times) {
        Text all;
        for (int i = 0; i < times; ++i)
            all += part;
        return all;
    };
    const struct {
        const char* what;
        Text name;
        Text made;
    } cases[] = {
        {"Latin letters", "01 - " + Text(400, 'x') + ".wav", "01 - " + Text(246, 'x') + ".wav"},
        {"as long as a name can be", "01 - " + Text(245, 'x') + " .wav", "01 - " + Text(245, 'x') + " .wav"},
        {"Cyrillic letters", "01 - " + repeated("\u0436", 200) + ".wav",
         "01 - " + repeated("\u0436", 123) + ".wav"},
        {"an odd number of bytes before them", "01 - x" + repeated("\u0436", 200) + ".wav",
         "01 - x" + repeated("\u0436", 122) + ".wav"},
        {"Han characters", "01 - " + repeated("\u97F3", 120) + ".wav",
         "01 - " + repeated("\u97F3", 82) + ".wav"},
        {"characters beyond the first plane", "01 - " + repeated("\U0001F3B5", 90) + ".wav",
         "01 - " + repeated("\U0001F3B5", 61) + ".wav"},
        {"bytes that are no text", "01 - " + repeated("\xFF", 300) + ".wav",
         "01 - " + repeated("\xFF", 246) + ".wav"},
        {"a blank at the cut", "01 - " + Text(245, 'x') + " y and more.wav",
         "01 - " + Text(245, 'x') + ".wav"},
        {"a name that just fits", "01 - " + Text(246, 'x') + ".wav", "01 - " + Text(246, 'x') + ".wav"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Reading r;
        REQUIRE(r.reader->ReadTrack(1, r.desk.output + "/" + c.name) == 0);
        CHECK(r.heard->end());
        CHECK(namesInFolder(r.desk.output) == std::set<Text>{c.made});
        CHECK(soundOfWav(r.desk.output + "/" + c.made) == r.drive->sound(1));
        CHECK(r.desk.shell.told().empty());
    }
}

TEST_CASE("A long name that would lose its number is refused: two tracks would take one file")
{
    Reading r;
    CHECK(r.reader->ReadTrack(1, r.desk.output + "/" + Text(300, 'x') + "1.wav") != 0);
    CHECK(r.heard->end());
    CHECK(namesInFolder(r.desk.output).empty());
    CHECK(r.desk.shell.told().size() == 1);
}

TEST_CASE("Stop puts no fragment in the place of an older file, also one that came meanwhile")
{
    for (const bool isOlder : {true, false}) {
        CAPTURE(isOlder);
        Reading r;
        if (isOlder)
            putFile(r.wav, "an old track");
        r.drive->holdsBehind = 100;
        REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
        REQUIRE(r.waitUntilHolding());
        if (!isOlder)
            putFile(r.wav, "an old track");
        r.reader->Stop();
        CHECK(r.heard->end());
        CHECK(fileBytes(r.wav) == "an old track");
        CHECK(namesInFolder(r.desk.output).size() == 1);
        CHECK(r.desk.shell.told().empty());
        r.drive->letGo();
        r.checkIdle();
    }
}

TEST_CASE("Numbers out of range give nothing, fail never, and keep the drive")
{
    Reading r;
    auto second = std::make_shared<ScriptedReader>("/dev/sr1");
    second->disc = {{{true, 0, 750}}, 750};
    r.desk.readers.push_back(second);
    r.reader->DriveCount();
    r.reader->SelectDrive(2);
    for (const std::int16_t number : {-32768, -1, 0, 3, 100, 32767}) {
        CAPTURE(number);
        r.reader->SelectDrive(number);
        CHECK(r.reader->DriveName(number) == "");
        CHECK(r.reader->TrackCount() == 1);
        CHECK(r.reader->TrackLength(number) == 0);
    }
    CHECK(r.reader->TrackLength(1) == 10000);
}

TEST_CASE("The drive that was selected stays selected when others come and go")
{
    Reading r;
    auto second = std::make_shared<ScriptedReader>("/dev/sr1");
    second->disc = {{{true, 0, 750}}, 750};
    r.desk.readers = {r.drive, second};
    r.reader->DriveCount();
    r.reader->SelectDrive(2);
    r.desk.readers = {second};
    r.reader->DriveCount();
    CHECK(r.reader->TrackLength(1) == 10000);
    r.desk.readers = {r.drive};
    r.reader->DriveCount();
    CHECK(r.reader->TrackLength(1) == 4000);
}

TEST_CASE("Lengths are whole milliseconds, and none for data")
{
    Reading r;
    r.drive->disc = {{{true, 0, 300}, {false, 300, 300}, {true, 600, 1}, {true, 601, 0}}, 601};
    CHECK(r.reader->TrackCount() == 4);
    CHECK(r.reader->TrackLength(1) == 4000);
    CHECK(r.reader->TrackLength(2) == 0);
    CHECK(r.reader->TrackLength(3) == 13);
    CHECK(r.reader->TrackLength(4) == 0);
}

TEST_CASE("A track of a drive is copied to a WAV file bit for bit")
{
    Reading r;
    REQUIRE(r.reader->ReadTrack(2, r.wav) == 0);
    CHECK(r.heard->end());
    CHECK(soundOfWav(r.wav) == r.drive->sound(2));
    CHECK(r.heard->done == 1);
    CHECK(r.heard->rises());
    CHECK(r.heard->progress.back() == 1000);
    CHECK(r.desk.shell.told().empty());
    CHECK(r.desk.sleepLock.begun == 1);
    r.checkIdle();
}

TEST_CASE("A track of an image is copied to a WAV file bit for bit")
{
    ImageReading r;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.heard->end());
    CHECK(soundOfWav(r.wav) == r.sound.substr(0, 1500 * bytesOfSector));
    CHECK(r.heard->rises());
    CHECK(r.heard->progress.back() == 1000);
    r.checkIdle();
}

TEST_CASE("One track after the other is read, each with its own end")
{
    ImageReading r;
    for (std::int16_t track = 1; track <= 2; ++track) {
        REQUIRE(r.reader->ReadTrack(track, r.wav) == 0);
        CHECK(r.desk.window.runUntil([&] { return r.heard->done == track; }));
    }
    CHECK(soundOfWav(r.wav) == r.sound.substr(1500 * bytesOfSector));
    r.checkIdle();
}

TEST_CASE("A file of that name is replaced only when the track is whole, and keeps its rights")
{
    Reading r;
    putFile(r.wav, "an old track");
    chmod(r.wav.c_str(), 0640);
    r.drive->holdsBehind = 100;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    CHECK(r.desk.sleepLock.held == 1);
    CHECK(fileBytes(r.wav) == "an old track");
    CHECK(r.desk.parts.open().size() == 1);
    r.drive->letGo();
    CHECK(r.heard->end());
    CHECK(soundOfWav(r.wav) == r.drive->sound(1));
    struct stat status;
    CHECK(stat(r.wav.c_str(), &status) == 0);
    CHECK((status.st_mode & 07777) == 0640);
    r.checkIdle();
}

TEST_CASE("A link stays a link, and what it leads to is written")
{
    Reading r;
    const Text target = r.desk.output + "/real.wav";
    std::filesystem::create_symlink("real.wav", r.wav);
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.heard->end());
    CHECK(std::filesystem::is_symlink(r.wav));
    CHECK(soundOfWav(target) == r.drive->sound(1));
}

TEST_CASE("What cannot be started says so, ends once, and leaves no file")
{
    const struct {
        const char* what;
        std::int16_t track;
        const char* file;
    } cases[] = {
        {"track 0", 0, "/a.wav"},
        {"a track behind the last", 4, "/a.wav"},
        {"a negative track", -1, "/a.wav"},
        {"a data track", 3, "/a.wav"},
        {"a missing folder", 1, "/none/a.wav"},
        {"a folder for a file", 1, "/folder"},
        {"a name that ends in a separator", 1, "/a.wav/"},
        {"below a file", 1, "/file/a.wav"},
        {"a pipe", 1, "/pipe"},
        {"a name too long for any disk", 1,
         "/nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"
         "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"
         "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"
         "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Reading r;
        r.drive->disc.tracks.push_back({false, 700, 300});
        std::filesystem::create_directory(r.desk.output + "/folder");
        putFile(r.desk.output + "/file", "");
        mkfifo((r.desk.output + "/pipe").c_str(), 0666);
        const auto before = namesInFolder(r.desk.output);
        CHECK(r.reader->ReadTrack(c.track, r.desk.output + c.file) != 0);
        CHECK(r.heard->done == 0);
        CHECK(r.heard->end());
        r.desk.window.runPosted();
        CHECK(r.heard->done == 1);
        CHECK(r.drive->reads == 0);
        CHECK(r.desk.shell.told().size() == 1);
        CHECK(namesInFolder(r.desk.output) == before);
        r.checkIdle();
    }
}

TEST_CASE("A NUL in a path is refused")
{
    Reading r;
    CHECK(r.reader->ReadTrack(1, r.wav + Text("\0x", 2)) != 0);
    CHECK(r.heard->end());
    CHECK(namesInFolder(r.desk.output).empty());
}

TEST_CASE("A folder and a file that may not be written are refused at once")
{
    Reading r;
    const Text shut = r.desk.folder / "shut";
    std::filesystem::create_directory(shut);
    putFile(shut + "/locked.wav", "old");
    chmod(r.desk.folder.path().c_str(), 0755);
    chmod(shut.c_str(), 0555);
    chmod(r.desk.output.c_str(), 0777);
    putFile(r.desk.output + "/locked.wav", "old");
    chmod((r.desk.output + "/locked.wav").c_str(), 0444);
    Child child([&] {
        becomeNobody();
        endUnless(r.reader->ReadTrack(1, shut + "/new.wav") != 0, 1);
        endUnless(r.reader->ReadTrack(1, shut + "/locked.wav") != 0, 2);
        endUnless(r.reader->ReadTrack(1, r.desk.output + "/locked.wav") != 0, 3);
        endUnless(r.desk.window.runUntil([&] { return r.heard->done == 3; }), 4);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(r.desk.output + "/locked.wav") == "old");
}

TEST_CASE("A second read is refused without an end of its own")
{
    Reading r;
    r.drive->holdsBehind = 100;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.reader->ReadTrack(2, r.desk.output + "/Track2.wav") != 0);
    CHECK(r.reader->ReadTrack(9, "/none/at/all") != 0);
    r.drive->letGo();
    CHECK(r.heard->end());
    r.desk.window.runPosted();
    CHECK(r.heard->done == 1);
    CHECK(soundOfWav(r.wav) == r.drive->sound(1));
    CHECK(namesInFolder(r.desk.output).size() == 1);
    CHECK(r.desk.shell.told().empty());
}

TEST_CASE("A new read can begin in the end of the last")
{
    Reading r;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    int ends = 0;
    r.reader->Done.calls([&] {
        if (++ends == 1)
            CHECK(r.reader->ReadTrack(2, r.desk.output + "/Track2.wav") == 0);
    });
    CHECK(r.desk.window.runUntil([&] { return ends == 2; }));
    CHECK(soundOfWav(r.desk.output + "/Track2.wav") == r.drive->sound(2));
}

TEST_CASE("A read that fails leaves no file, keeps the old one, tells the desktop and ends")
{
    Reading r;
    r.drive->failure = "The laser is off.";
    for (const bool isThere : {false, true}) {
        CAPTURE(isThere);
        if (isThere)
            putFile(r.wav, "an old track");
        r.heard->done = 0;
        REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
        CHECK(r.heard->end());
        CHECK(fileBytes(r.wav) == (isThere ? "an old track" : ""));
        CHECK(namesInFolder(r.desk.output).size() == (isThere ? 1 : 0));
        CHECK(r.desk.shell.told().back() == "A track could not be read | " + r.wav + ": The laser is off.");
        r.checkIdle();
    }
}

TEST_CASE("An image that is cut short, missing or gone fails while it is read")
{
    const struct {
        const char* what;
        void (*harm)(const Text& image);
    } cases[] = {
        {"cut short", [](const Text& image) { std::filesystem::resize_file(image, 100 * bytesOfSector); }},
        {"missing", [](const Text& image) { std::filesystem::remove(image); }},
        {"a folder",
         [](const Text& image) {
             std::filesystem::remove(image);
             std::filesystem::create_directory(image);
         }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ImageReading r;
        c.harm(r.desk.discs + "/A.bin");
        CHECK(r.reader->TrackCount() == 2);
        REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
        CHECK(r.heard->end());
        CHECK(namesInFolder(r.desk.output).empty());
        CHECK(r.desk.shell.told().size() == 1);
        CHECK(r.reader->ReadTrack(2, r.wav) != 0);
        r.checkIdle();
    }
}

TEST_CASE("An image that vanishes after it was listed fails, and its drive is empty")
{
    ImageReading r;
    CHECK(r.reader->TrackCount() == 2);
    std::filesystem::remove(r.desk.discs + "/A.cue");
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.heard->end());
    CHECK(r.desk.shell.told().size() == 1);
    CHECK(r.reader->TrackCount() == 0);
    CHECK(r.reader->DriveCount() == 1);
    CHECK(r.reader->DriveName(1) == "Disc image: none");
}

TEST_CASE("A track is never copied over its own image")
{
    ImageReading r;
    r.reader->TrackCount();
    for (const char* file : {"/A.bin", "/A.cue"}) {
        CAPTURE(file);
        const Text before = fileBytes(r.desk.discs + file);
        r.heard->done = 0;
        r.reader->ReadTrack(1, r.desk.discs + file);
        CHECK(r.heard->end());
        CHECK(fileBytes(r.desk.discs + file) == before);
    }
    CHECK(r.desk.shell.told().size() == 2);
    CHECK(namesInFolder(r.desk.discs).size() == 2);
}

TEST_CASE("Sectors that could not be read are told, and the file stays")
{
    for (const int unreadable : {3, 1}) {
        CAPTURE(unreadable);
        Reading r;
        r.drive->unreadable = unreadable;
        REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
        CHECK(r.heard->end());
        CHECK(soundOfWav(r.wav) == r.drive->sound(1));
        REQUIRE(r.desk.shell.told().size() == 1);
        CHECK(r.desk.shell.told()[0].find("are silent: " + std::to_string(unreadable) + '.') != Text::npos);
    }
}

TEST_CASE("Stop answers at once and keeps what was read, however long the drive holds on")
{
    const auto stopping = [] {
        Reading r;
        r.drive->holdsBehind = 100;
        REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
        REQUIRE(r.waitUntilHolding());
        const auto begun = Clock::now();
        r.reader->Stop();
        CHECK(r.heard->end());
        const double took = millisecondsSince(begun);
        r.drive->letGo();
        r.checkIdle();
        return took;
    };
    CHECK(atBest(100, stopping) < 100);

    Reading r;
    r.drive->holdsBehind = 100;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    r.reader->Stop();
    CHECK(r.heard->end());
    CHECK(soundOfWav(r.wav) == r.drive->sound(1).substr(0, 100 * bytesOfSector));
    CHECK(r.drive->isHolding);
    CHECK(r.desk.sleepLock.held == 0);
    r.drive->letGo();
    r.checkIdle();
    CHECK(r.heard->done == 1);
    CHECK(r.desk.shell.told().empty());
}

TEST_CASE("Stop before the first sample keeps an empty track")
{
    Reading r;
    r.drive->holdsBehind = 0;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    r.reader->Stop();
    r.reader->Stop();
    CHECK(r.heard->end());
    CHECK(fileBytes(r.wav) == wavFile(""));
    r.desk.window.runPosted();
    CHECK(r.heard->done == 1);
}

TEST_CASE("Stop in the middle of an image keeps its beginning")
{
    ImageReading r;
    Text begin;
    r.reader->Progress.calls([&](std::int32_t) { r.reader->Stop(); });
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.heard->end());
    const Text kept = soundOfWav(r.wav);
    CHECK(kept.size() > 0);
    CHECK(kept == r.sound.substr(0, kept.size()));
    r.checkIdle();
}

TEST_CASE("Stop when nothing is read does nothing")
{
    Reading r;
    r.reader->Stop();
    r.reader->DriveCount();
    r.reader->Stop();
    r.desk.window.runPosted();
    CHECK(r.heard->done == 0);
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.heard->end());
    r.reader->Stop();
    r.desk.window.runPosted();
    CHECK(r.heard->done == 1);
    CHECK(soundOfWav(r.wav) == r.drive->sound(1));
}

TEST_CASE("The next read waits for a drive that a stopped one still holds")
{
    Reading r;
    r.drive->holdsBehind = 100;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    r.reader->Stop();
    CHECK(r.heard->end());
    CHECK(r.reader->TrackCount() == 2);
    REQUIRE(r.reader->ReadTrack(2, r.desk.output + "/Track2.wav") == 0);
    r.desk.window.runPosted();
    CHECK(r.drive->reads == 1);
    r.drive->letGo();
    CHECK(r.desk.window.runUntil([&] { return r.heard->done == 2; }));
    CHECK(soundOfWav(r.desk.output + "/Track2.wav") == r.drive->sound(2));
    r.checkIdle();
}

TEST_CASE("A read that waits for its drive can be stopped")
{
    Reading r;
    r.drive->holdsBehind = 0;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    r.reader->Stop();
    CHECK(r.heard->end());
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    r.reader->Stop();
    CHECK(r.desk.window.runUntil([&] { return r.heard->done == 2; }));
    CHECK(r.desk.sleepLock.held == 0);
    CHECK(r.drive->reads == 1);
    r.drive->letGo();
}

TEST_CASE("While a drive is read, it answers from what was seen, and is not disturbed")
{
    Reading r;
    r.reader->DriveCount();
    CHECK(r.reader->TrackCount() == 2);
    const int asked = r.drive->asked;
    r.drive->holdsBehind = 100;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    CHECK(r.reader->Init() == 0);
    CHECK(r.reader->DriveCount() == 1);
    r.reader->SelectDrive(1);
    CHECK(r.reader->TrackCount() == 2);
    CHECK(r.reader->TrackLength(2) == 5333);
    CHECK(r.drive->asked == asked);
    r.drive->letGo();
    CHECK(r.heard->end());
    CHECK(soundOfWav(r.wav) == r.drive->sound(1));
    CHECK(r.reader->TrackCount() == 2);
    CHECK(r.drive->asked == asked + 1);
}

TEST_CASE("Another drive may be selected and listed while one is read")
{
    Reading r;
    auto second = std::make_shared<ScriptedReader>("/dev/sr1");
    second->disc = {{{true, 0, 750}}, 750};
    r.desk.readers.push_back(second);
    r.reader->DriveCount();
    r.drive->holdsBehind = 100;
    REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
    REQUIRE(r.waitUntilHolding());
    r.reader->SelectDrive(2);
    CHECK(r.reader->TrackCount() == 1);
    CHECK(r.reader->TrackLength(1) == 10000);
    r.drive->letGo();
    CHECK(r.heard->end());
    CHECK(soundOfWav(r.wav) == r.drive->sound(1));
}

TEST_CASE("A drive that is written is not read")
{
    Reading r;
    r.reader->DriveCount();
    CHECK(r.reader->TrackCount() == 2);
    {
        const auto claim = r.desk.devices->claim("/dev/sr0", disc::BusyDevices::DeviceUse::writing);
        REQUIRE(claim.has_value());
        CHECK(r.reader->ReadTrack(1, r.wav) != 0);
        CHECK(r.heard->end());
        CHECK(r.reader->TrackCount() == 2);
        CHECK(r.drive->reads == 0);
        CHECK(namesInFolder(r.desk.output).empty());
    }
    CHECK(r.reader->ReadTrack(1, r.wav) == 0);
    CHECK(r.desk.window.runUntil([&] { return r.heard->done == 2; }));
}

TEST_CASE("A reader that goes while it reads leaves no file and tells nobody")
{
    for (const bool isHeld : {false, true}) {
        CAPTURE(isHeld);
        Reading r;
        putFile(r.wav, "an old track");
        r.drive->holdsBehind = 100;
        REQUIRE(r.reader->ReadTrack(1, r.wav) == 0);
        if (isHeld)
            REQUIRE(r.waitUntilHolding());
        r.reader.reset();
        CHECK(fileBytes(r.wav) == "an old track");
        r.checkIdle();
        r.drive->letGo();
        r.desk.window.runPosted();
        CHECK(r.heard->done == 0);
        CHECK(r.desk.shell.told().empty());
    }
}

TEST_CASE("A reader that goes when its end is already told tells it no more")
{
    Reading r;
    CHECK(r.reader->ReadTrack(9, r.wav) != 0);
    r.reader.reset();
    r.desk.window.runPosted();
    CHECK(r.heard->done == 0);
}

TEST_CASE("A full disk fails, leaves no file and keeps the old one")
{
    ImageReading r;
    const Text disk = r.desk.folder / "disk";
    const SmallDisk small(disk, 1024);
    putFile(disk + "/Track1.wav", "an old track");
    for (const char* name : {"/Track1.wav", "/new.wav"}) {
        CAPTURE(name);
        r.heard->done = 0;
        REQUIRE(r.reader->ReadTrack(1, disk + name) == 0);
        CHECK(r.heard->end());
    }
    CHECK(fileBytes(disk + "/Track1.wav") == "an old track");
    CHECK(namesInFolder(disk).size() == 1);
    REQUIRE(r.desk.shell.told().size() == 2);
    CHECK(r.desk.shell.told()[0].find("Disk full") != Text::npos);
    r.checkIdle();
}

TEST_CASE("A track that the disk does not take for good leaves the old file")
{
    ImageReading r;
    putFile(r.desk.output + "/Track1.wav", "an old track");
    const FailingDisk broken(r.desk.output, "fdatasync", EIO);
    REQUIRE(r.reader->ReadTrack(1, r.desk.output + "/Track1.wav") == 0);
    CHECK(r.heard->end());
    CHECK(fileBytes(r.desk.output + "/Track1.wav") == "an old track");
    CHECK(namesInFolder(r.desk.output).size() == 1);
    CHECK(r.desk.shell.told().size() == 1);
}

TEST_CASE("A share that refuses a track's bytes when its file is closed gets none, and keeps the old one")
{
    ImageReading r;
    const Text share = r.desk.folder / "share";
    std::filesystem::create_directory(share);
    putFile(share + "/Track1.wav", "an old track");
    const FailingDisk refusing(share, "close", EDQUOT);
    REQUIRE(r.reader->ReadTrack(1, share + "/Track1.wav") == 0);
    CHECK(r.heard->end());
    CHECK(fileBytes(share + "/Track1.wav") == "an old track");
    CHECK(namesInFolder(share).size() == 1);
    REQUIRE(r.desk.shell.told().size() == 1);
    CHECK(r.desk.shell.told()[0].find("Disk full") != Text::npos);
}

TEST_CASE("Bytes that are no text name a file like any other")
{
    Reading r;
    const Text odd = r.desk.output + "/\xFF\xC3 \xE4.wav";
    REQUIRE(r.reader->ReadTrack(1, odd) == 0);
    CHECK(r.heard->end());
    CHECK(soundOfWav(odd) == r.drive->sound(1));
}
