// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_desk.h"
#include "support/disc_program.h"
#include "support/scripted_reader.h"

#include <doctest/doctest.h>

#include <thread>

namespace
{

// A desk with a drive of two tracks.
struct Drive {
    DiscDesk desk;
    std::shared_ptr<ScriptedReader> drive = std::make_shared<ScriptedReader>("/dev/sr0");

    Drive() { desk.readers = {drive}; }
    ~Drive() { drive->letGo(); }

    void waitUntilHolding() const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!drive->isHolding && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        REQUIRE(drive->isHolding);
    }

    // What one turn of the program's pump does with a reader that works on threads of its own.
    void turn()
    {
        bool hasRun = false;
        REQUIRE(desk.window.runUntil([&] { return std::exchange(hasRun, true); }));
    }
};

// The program with the real reader over that desk, the disc of its first drive listed.
struct RealRipping : Drive, DiscProgram {
    RealRipping() :
        DiscProgram([this](FakePlatform& fakes) { fakes.otherReader = [this] { return desk.reader(); }; })
    {
        workbench.CDtoWAVsavedir.setCaption(desk.output);
        openSettings();
    }

    void openSettings()
    {
        settings.init();
        settings.get_tracks_fsd();
    }

    // The first turn meets the drive while it holds on to the first track.
    void whileHeld(const std::function<void()>& step)
    {
        drive->holdsBehind = 100;
        platform.scriptedPump.steps.push_back([this, step] {
            waitUntilHolding();
            step();
        });
    }

    void thenTurns(const std::function<void()>& before = [] {})
    {
        for (int i = 0; i < 5000; ++i)
            platform.scriptedPump.steps.push_back([this, before] {
                before();
                turn();
            });
    }

    void start() { workbench.EncCDtoWAVStart.Click.raise(); }
    Text file(int track) const { return desk.output + "/Track" + std::to_string(track) + ".wav"; }
};

}

TEST_CASE("STOP ends the track that the drive holds, and the run goes on with the next")
{
    RealRipping r;
    r.check({0, 1});
    r.whileHeld([&] { r.workbench.EncCDtoWAVStop.Click.raise(); });
    r.thenTurns([&] {
        if (r.workbench.tracksStartedCount == 2)
            r.drive->letGo();
    });
    r.start();
    CHECK(soundOfWav(r.file(1)) == r.drive->sound(1).substr(0, 100 * bytesOfSector));
    CHECK(soundOfWav(r.file(2)) == r.drive->sound(2));
    CHECK(r.workbench.ProgressBarCDtoWAVat.Value() == 0);
    CHECK(r.workbench.trackReadFinished);
    CHECK_FALSE(r.message());
}

TEST_CASE("STOP over a track that was ripped before leaves that as it was")
{
    RealRipping r;
    putFile(r.file(1), "ripped last week");
    r.check({0});
    r.whileHeld([&] { r.workbench.EncCDtoWAVStop.Click.raise(); });
    r.thenTurns();
    r.start();
    CHECK(fileBytes(r.file(1)) == "ripped last week");
    CHECK(r.workbench.trackReadFinished);
}

TEST_CASE("A second START while a track is read is told, and both runs end with that track")
{
    RealRipping r;
    r.check({0});
    bool hasStarted = false;
    r.whileHeld([&] {
        CHECK(r.workbench.EncCDtoWAVStart.Enabled());
        hasStarted = true;
        r.start();
        CHECK(r.workbench.trackReadFinished);
    });
    r.thenTurns([&] { r.drive->letGo(); });
    r.start();
    CHECK(hasStarted);
    CHECK(r.message() == "Can't read track!");
    CHECK(r.drive->reads == 1);
    CHECK(soundOfWav(r.file(1)) == r.drive->sound(1));
    CHECK(namesInFolder(r.desk.output).size() == 1);
}

TEST_CASE("REFRESH while a track is read does not touch the drive, and after it sees another disc")
{
    RealRipping r;
    const auto listed = r.tracks();
    REQUIRE(listed.size() == 2);
    r.check({0});
    int asked = 0;
    r.whileHeld([&] {
        asked = r.drive->asked;
        r.drive->disc = {{{true, 0, 750}, {true, 750, 300}, {true, 1050, 300}}, 1350};
        r.workbench.butRefresh.Click.raise();
        CHECK(r.drive->asked == asked);
        CHECK(r.tracks() == listed);
        CHECK(r.workbench.TracksList.Selected(0));
        r.drive->letGo();
    });
    r.thenTurns();
    r.start();
    CHECK(asked > 0);
    r.workbench.butRefresh.Click.raise();
    CHECK(r.tracks().size() == 3);
}

TEST_CASE("REFRESH sees a disc image that was recorded since the window was opened")
{
    RealRipping r;
    r.desk.readers.clear();
    r.openSettings();
    CHECK(r.tracks().empty());
    CHECK(rowsOf(r.settings.CDDrives) == std::vector<Text>{"Disc image: none"});
    const auto writer = r.desk.writer();
    Heard<ACDWRITE> heard{r.desk.window, *writer};
    putFile(r.desk.output + "/a.wav", wavFile(noise(5 * bytesOfSecond)));
    REQUIRE(writer->AddTrack(r.desk.output + "/a.wav", 0) == 0);
    REQUIRE(writer->Write() == 0);
    REQUIRE(heard.end());
    r.workbench.butRefresh.Click.raise();
    CHECK(r.tracks() == std::vector<Text>{"Track 01    05.00    50.5  MB"});
}

TEST_CASE("A drive's number stays its own when REFRESH finds another image")
{
    RealRipping r;
    putFile(r.desk.discs + "/Mine.bin", noise(750 * bytesOfSector));
    putFile(r.desk.discs + "/Mine.cue", sheetOf("Mine.bin", {"00:00:00"}));
    r.store(cdToWav, "Settings Saved", "yes");
    r.store(cdToWav, "CD Drive", "2");
    r.openSettings();
    CHECK(r.tracks() == std::vector<Text>{"Track 01    10.00    100.9  MB"});
    putFile(r.desk.discs + "/Older.bin", noise(375 * bytesOfSector));
    putFile(r.desk.discs + "/Older.cue", sheetOf("Older.bin", {"00:00:00"}));
    std::filesystem::last_write_time(r.desk.discs + "/Older.cue",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(24));
    r.workbench.butRefresh.Click.raise();
    r.openSettings();
    CHECK(r.tracks() == std::vector<Text>{"Track 01    10.00    100.9  MB"});
    CHECK(rowsOf(r.settings.CDDrives) ==
          std::vector<Text>{"Maker Model (/dev/sr0)", "Disc image: Mine", "Disc image: Older"});
}
