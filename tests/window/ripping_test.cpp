// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_program.h"
#include "support/failures.h"
#include "support/list_hand.h"
#include "support/list_program.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::int32_t minute = 60000;

// The workbench with so many tracks listed, its files going to "/rips".
struct Ripping : DiscProgram {
    explicit Ripping(std::size_t count)
    {
        list(std::vector<std::int32_t>(count, minute));
        workbench.CDtoWAVsavedir.setCaption("/rips");
    }

    // One turn of the pump for each track that is read: it ends.
    void everyTrackEnds(int tracks)
    {
        for (int track = 0; track < tracks; ++track)
            platform.scriptedPump.steps.push_back([this] { reader().Done.raise(); });
    }

    void start() { workbench.EncCDtoWAVStart.Click.raise(); }

    Text readTracks() { return lines(platform.log.of("CDtoWAV")); }

    float track() { return workbench.ProgressBarCDtoWAVtt.Value(); }
    float all() { return workbench.ProgressBarCDtoWAVat.Value(); }
};

constexpr const char* cannotRead = "Can't read track!";

}

TEST_CASE("Without a checked row START returns at once, whatever is highlighted")
{
    for (const std::size_t count : {0, 1, 3}) {
        CAPTURE(count);
        Ripping r(count);
        if (count > 0)
            r.workbench.TracksList.setListIndex(0);
        r.workbench.tracksSelectedCount = 7;
        r.workbench.tracksStartedCount = 5;
        r.workbench.ProgressBarCDtoWAVtt.setValue(10);
        r.start();
        CHECK(r.calls() == "");
        CHECK(r.workbench.tracksSelectedCount == 7);
        CHECK(r.workbench.tracksStartedCount == 5);
        CHECK(r.track() == 10);
        CHECK_FALSE(r.message());
    }
}

TEST_CASE("The checked rows are read one after the other, each to its end, and no message closes the run")
{
    Ripping r(4);
    r.check({0, 2, 3});
    r.everyTrackEnds(3);
    r.workbench.ProgressBarCDtoWAVtt.setValue(50);
    r.workbench.ProgressBarCDtoWAVat.setValue(50);
    r.start();
    CHECK(r.calls() == "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\nPump.turn\n"
                       "CDtoWAV.ReadTrack(3, /rips/Track3.wav)\nPump.turn\n"
                       "CDtoWAV.ReadTrack(4, /rips/Track4.wav)\nPump.turn\n");
    CHECK(r.workbench.tracksSelectedCount == 3);
    CHECK(r.workbench.tracksStartedCount == 3);
    CHECK(r.workbench.trackReadFinished);
    CHECK(r.track() == 0);
    CHECK(r.all() == 0);
    CHECK_FALSE(r.message());
    CHECK(r.platform.boxes.shown.empty());
}

TEST_CASE("A user's check mark chooses a track, a click on its row does not")
{
    Ripping r(3);
    r.workbench.EncDecCDWAVtab.setTab(2);
    r.workbench.Show();
    QCoreApplication::processEvents();
    ListHand hand(r.workbench, r.workbench.TracksList);
    hand.click(hand.middleOf(0));
    hand.click(hand.checkMarkOf(1));
    r.everyTrackEnds(1);
    r.start();
    CHECK(r.readTracks() == "CDtoWAV.ReadTrack(2, /rips/Track2.wav)\n");
}

TEST_CASE("A file is named and placed by these rules")
{
    struct Case {
        Text what, accessCddb, beginning, directory;
        std::int32_t row;
        Text path;
    };
    const Case cases[] = {
        {"the default beginning", "0", "Track", "/rips", 0, "/rips/Track1.wav"},
        {"no padding, unlike the list", "0", "Track", "/rips", 11, "/rips/Track12.wav"},
        {"a beginning of the user's own", "0", "My disc ", "/rips", 6, "/rips/My disc 7.wav"},
        {"a beginning to be cleaned", "0", "A/C: \"Live\" ", "/rips", 6, "/rips/A_C_ _Live_ 7.wav"},
        {"no beginning", "0", "", "/rips", 6, "/rips/7.wav"},
        {"titles to be cleaned", "1", "Track", "/rips", 2, "/rips/03 - A_C - Who_.wav"},
        {"titles, two digits", "1", "Track", "/rips", 0, "/rips/01 - A_C - First.wav"},
        {"a row behind the last title", "1", "Track", "/rips", 6, "/rips/07 - .wav"},
        {"a number that equals 1", "1.0", "Track", "/rips", 6, "/rips/07 - .wav"},
        {"a number that does not", "2", "Track", "/rips", 6, "/rips/Track7.wav"},
        {"a drive's root", "0", "Track", "/", 0, "/Track1.wav"},
        {"a directory that ends in a separator", "0", "Track", "/rips/", 0, "/rips//Track1.wav"},
        {"a directory with forbidden characters", "0", "Track", "/a:b?", 0, "/a:b?/Track1.wav"},
        {"no directory", "0", "Track", "", 0, "/Track1.wav"},
        {"bytes that are no text", "0", "caf\xE9", "/\xFF", 0,
         "/\xFF/caf\xE9"
         "1.wav"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Ripping r(12);
        for (const Text title : {"A/C - First", "A/C - Second", "A/C - Who?"})
            r.workbench.TLCDDB.AddItem(title);
        r.workbench.AccessCDDB_OK.setCaption(c.accessCddb);
        r.workbench.CDtoWAVTB.setCaption(c.beginning);
        r.workbench.CDtoWAVsavedir.setCaption(c.directory);
        r.check({c.row});
        r.everyTrackEnds(1);
        r.start();
        CHECK(r.readTracks() == "CDtoWAV.ReadTrack(" + textOf(c.row + 1) + ", " + c.path + ")\n");
    }
}

TEST_CASE("With titles wanted and none known the files have numbers alone")
{
    Ripping r(0);
    r.settings.chkCDDB.setValue(1);
    r.reader().tracks = {minute, minute};
    r.settings.SetCDtoWAVApp.Click.raise();
    CHECK(r.workbench.AccessCDDB_OK.Caption() == "1");
    CHECK(r.workbench.TLCDDB.ListCount() == 0);
    CHECK(r.workbench.TracksList.List(1).starts_with("Track 02 "));
    r.check({0, 1});
    r.everyTrackEnds(2);
    r.platform.log.clear();
    r.start();
    CHECK(r.readTracks() == "CDtoWAV.ReadTrack(1, /rips/01 - .wav)\nCDtoWAV.ReadTrack(2, /rips/02 - .wav)\n");
}

TEST_CASE("Behind a track without a title the titles no longer belong to their rows")
{
    Ripping r(0);
    r.settings.chkCDDB.setValue(1);
    r.titles().artist = "Band";
    r.titles().titles = {{1, "One"}, {3, "Three"}};
    r.reader().tracks = {minute, minute, minute};
    r.settings.SetCDtoWAVApp.Click.raise();
    r.check({0, 1, 2});
    r.everyTrackEnds(3);
    r.platform.log.clear();
    r.start();
    CHECK(r.readTracks() == "CDtoWAV.ReadTrack(1, /rips/01 - Band - One.wav)\n"
                            "CDtoWAV.ReadTrack(2, /rips/02 - Band - Three.wav)\n"
                            "CDtoWAV.ReadTrack(3, /rips/03 - .wav)\n");
}

TEST_CASE("START asks for no titles: it takes those that the listing found")
{
    Ripping r(1);
    r.settings.chkCDDB.setValue(1);
    r.settings.SetCDtoWAVApp.Click.raise();
    r.check({0});
    r.everyTrackEnds(1);
    r.platform.log.clear();
    r.start();
    CHECK(r.platform.log.of("CdBase1").empty());
}

TEST_CASE("A choice of titles that is no number is a failure that nobody handles")
{
    Ripping r(1);
    r.check({0});
    r.workbench.AccessCDDB_OK.setCaption("");
    CHECK(failureOf([&] { r.start(); }) == 13);
    CHECK(r.calls() == "");
}

TEST_CASE("What is set meanwhile counts from the next track on")
{
    Ripping r(4);
    r.check({0, 1});
    r.platform.scriptedPump.steps = {
        [&] {
            r.workbench.CDtoWAVsavedir.setCaption("/elsewhere");
            r.workbench.CDtoWAVTB.setCaption("Song");
            r.workbench.TracksList.setSelected(1, false);
            r.workbench.TracksList.setSelected(3, true);
            r.reader().Done.raise();
        },
        [&] { r.reader().Done.raise(); },
    };
    r.start();
    CHECK(r.readTracks() ==
          "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\nCDtoWAV.ReadTrack(4, /elsewhere/Song4.wav)\n");
}

TEST_CASE("A track is waited for as long as it takes")
{
    Ripping r(2);
    r.check({0, 1});
    r.platform.scriptedPump.steps.assign(50, [] {});
    CHECK(waitsForEver([&] { r.start(); }));
    CHECK(r.readTracks() == "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\n");
    CHECK(r.platform.log.count("Pump.turn") == 51);
    CHECK_FALSE(r.workbench.trackReadFinished);
}

TEST_CASE("A track that cannot be started is told, waited for all the same, and the next one follows")
{
    for (const std::int16_t result : {1, -1, 57}) {
        CAPTURE(result);
        Ripping r(2);
        r.check({0, 1});
        r.reader().readResult = result;
        Text told;
        r.platform.scriptedPump.steps = {
            [&] {
                told = *r.message();
                r.program.error().okbutton_Click();
            },
            [&] { r.reader().readResult = 0, r.reader().Done.raise(); },
            [&] { r.reader().Done.raise(); },
        };
        r.start();
        CHECK(told == cannotRead);
        CHECK_FALSE(r.message());
        CHECK(r.calls() == "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\nPump.turn\nPump.turn\n"
                           "CDtoWAV.ReadTrack(2, /rips/Track2.wav)\nPump.turn\n");
    }
}

TEST_CASE("STOP is the way out of a wait for a track that never began")
{
    Ripping r(1);
    r.check({0});
    r.reader().readResult = 1;
    r.platform.scriptedPump.steps = {
        [&] { r.workbench.EncCDtoWAVStop.Click.raise(); },
        [&] { r.reader().Done.raise(); },
    };
    r.start();
    CHECK(r.workbench.trackReadFinished);
    CHECK(r.readTracks() == "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\nCDtoWAV.Stop\n");
}

TEST_CASE("STOP asks the reader to stop and does nothing else")
{
    Ripping r(2);
    r.check({0});
    r.workbench.trackReadFinished = false;
    r.workbench.EncCDtoWAVStop.Click.raise();
    CHECK(r.calls() == "CDtoWAV.Stop\n");
    CHECK_FALSE(r.workbench.trackReadFinished);
    CHECK(r.workbench.TracksList.Selected(0));
}

TEST_CASE("STOP during track 2 of 3 still reads track 3, and the stopped one counts as started")
{
    Ripping r(3);
    r.check({0, 1, 2});
    float whole = -1;
    r.platform.scriptedPump.steps = {
        [&] { r.reader().Done.raise(); },
        [&] {
            r.workbench.EncCDtoWAVStop.Click.raise();
            r.reader().Done.raise();
        },
        [&] {
            r.reader().Progress.raise(0);
            whole = r.all();
            r.reader().Done.raise();
        },
    };
    r.start();
    CHECK(r.readTracks() == "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\nCDtoWAV.ReadTrack(2, /rips/Track2.wav)\n"
                            "CDtoWAV.Stop\nCDtoWAV.ReadTrack(3, /rips/Track3.wav)\n");
    CHECK(whole == doctest::Approx(66.6667));
}

TEST_CASE("One STOP for each track that is left stops the whole run")
{
    Ripping r(3);
    r.check({0, 1, 2});
    r.platform.scriptedPump.steps.assign(3, [&] {
        r.workbench.EncCDtoWAVStop.Click.raise();
        r.reader().Done.raise();
    });
    r.start();
    CHECK(r.platform.log.count("CDtoWAV.Stop") == 3);
    CHECK(r.workbench.tracksStartedCount == 3);
}

TEST_CASE("Two runs in a row both begin at nothing")
{
    Ripping r(3);
    r.check({0, 1});
    r.everyTrackEnds(2);
    r.start();
    CHECK(r.workbench.tracksStartedCount == 2);
    std::vector<float> bars;
    r.check({2});
    r.platform.scriptedPump.steps.assign(3, [&] {
        r.reader().Progress.raise(500);
        bars.push_back(r.track());
        bars.push_back(r.all());
        r.reader().Done.raise();
    });
    r.start();
    CHECK(r.workbench.tracksSelectedCount == 3);
    CHECK(r.workbench.tracksStartedCount == 3);
    REQUIRE(bars.size() == 6);
    const double wanted[] = {50, 16.6667, 50, 50, 50, 83.3333};
    for (std::size_t i = 0; i < bars.size(); ++i)
        CHECK(bars[i] == doctest::Approx(wanted[i]));
    CHECK(r.track() == 0);
    CHECK(r.all() == 0);
}

TEST_CASE("The bars stand where the position and the counts say")
{
    struct Case {
        Text what, fullScale;
        std::int32_t selected, started, position;
        double track, all;
    };
    const Case cases[] = {
        {"the first track of four begins", "100", 4, 1, 0, 0, 0},
        {"the first of four is half done", "100", 4, 1, 500, 50, 12.5},
        {"the first of four ends", "100", 4, 1, 1000, 100, 25},
        {"the second of four begins", "100", 4, 2, 0, 0, 25},
        {"the second of four ends", "100", 4, 2, 1000, 100, 50},
        {"the last of four ends", "100", 4, 4, 1000, 100, 100},
        {"one track alone", "100", 1, 1, 333, 33.3, 33.3},
        {"one of three", "100", 3, 2, 1, 0.1, 33.36667},
        {"half the scale", "50", 2, 2, 1000, 50, 50},
        {"past the end the bar is full, and so is its share", "100", 2, 1, 1500, 100, 50},
        {"below nothing it is empty", "100", 2, 2, -10, 0, 50},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Ripping r(1);
        r.workbench.pc_len.setCaption(c.fullScale);
        r.workbench.tracksSelectedCount = c.selected;
        r.workbench.tracksStartedCount = c.started;
        r.reader().Progress.raise(c.position);
        CHECK(r.track() == doctest::Approx(c.track));
        CHECK(r.all() == doctest::Approx(c.all));
    }
}

TEST_CASE("The end of a track is a flag alone: the bars stay")
{
    Ripping r(1);
    r.workbench.ProgressBarCDtoWAVtt.setValue(70);
    r.workbench.ProgressBarCDtoWAVat.setValue(35);
    r.workbench.trackReadFinished = false;
    r.reader().Done.raise();
    CHECK(r.workbench.trackReadFinished);
    CHECK(r.track() == 70);
    CHECK(r.all() == 35);
}

TEST_CASE("The flag is cleared before a track starts, so that an end within the start is not missed")
{
    Ripping r(1);
    r.check({0});
    int reads = 0;
    r.reader().onRead = [&] {
        ++reads;
        CHECK_FALSE(r.workbench.trackReadFinished);
        CHECK(r.workbench.tracksStartedCount == 1);
    };
    r.everyTrackEnds(1);
    r.start();
    CHECK(reads == 1);
    CHECK(r.platform.log.count("Pump.turn") == 1);

    r.platform.log.clear();
    r.reader().onRead = [&] { r.reader().Done.raise(); };
    r.start();
    CHECK(r.platform.log.count("Pump.turn") == 0);
}

TEST_CASE("Apply and OK rebuild the list under a run, which then finds no checked row")
{
    for (const auto button : {&Settings::SetCDtoWAVApp, &Settings::SetCDtoWAVOK}) {
        Ripping r(3);
        r.check({0, 1, 2});
        r.platform.scriptedPump.steps = {[&] {
            (r.settings.*button).Click.raise();
            r.reader().Done.raise();
        }};
        r.start();
        CHECK(r.platform.log.count("CDtoWAV.ReadTrack(1, /rips/Track1.wav)") == 1);
        CHECK(r.platform.log.count("Pump.turn") == 1);
        CHECK(r.tracks().size() == 3);
    }
}

TEST_CASE("Opening the settings under a run rebuilds the list as well, and puts the bars back")
{
    Ripping r(3);
    r.check({0, 1, 2});
    r.platform.scriptedPump.steps = {[&] {
        r.reader().Progress.raise(500);
        r.workbench.EncCDtoWAVSet.Click.raise();
        CHECK(r.track() == 0);
        CHECK(r.all() == 0);
        r.reader().Done.raise();
    }};
    r.start();
    CHECK(r.platform.log.count("Pump.turn") == 1);
    CHECK(r.tracks().size() == 3);
}

TEST_CASE("A list that becomes shorter under a run ends it without a failure, a longer one adds nothing")
{
    for (const std::size_t count : {0, 1, 9}) {
        CAPTURE(count);
        Ripping r(4);
        r.check({0, 1, 2, 3});
        r.platform.scriptedPump.steps = {[&] {
            r.reader().tracks.assign(count, minute);
            r.settings.get_tracks_fsd();
            for (std::int32_t row = 4; row < r.workbench.TracksList.ListCount(); ++row)
                r.workbench.TracksList.setSelected(row, true);
            r.reader().Done.raise();
        }};
        CHECK(failureOf([&] { r.start(); }) == 0);
        CHECK(r.platform.log.count("Pump.turn") == 1);
    }
}

TEST_CASE("A second START nests a run that shares all counts: START stays enabled during a run")
{
    Ripping r(3);
    bool isEnabledMeanwhile = false;
    r.check({0, 1});
    r.platform.scriptedPump.steps = {
        [&] {
            isEnabledMeanwhile = r.workbench.EncCDtoWAVStart.Enabled();
            r.workbench.TracksList.setSelected(1, false);
            r.workbench.TracksList.setSelected(2, true);
            r.start();
        },
        [&] { r.reader().Done.raise(); },
        [&] { r.reader().Done.raise(); },
        [&] { r.reader().Done.raise(); },
    };
    r.start();
    CHECK(isEnabledMeanwhile);
    // The nested run reads rows 0 and 2; its last end serves the outer wait too, which goes on with row 2.
    CHECK(r.readTracks() ==
          "CDtoWAV.ReadTrack(1, /rips/Track1.wav)\nCDtoWAV.ReadTrack(1, /rips/Track1.wav)\n"
          "CDtoWAV.ReadTrack(3, /rips/Track3.wav)\nCDtoWAV.ReadTrack(3, /rips/Track3.wav)\n");
    CHECK(r.workbench.tracksStartedCount == 3);
}

TEST_CASE("A run goes on behind the hidden window")
{
    Ripping r(2);
    r.workbench.Show();
    r.check({0, 1});
    r.platform.scriptedPump.steps = {
        [&] {
            r.workbench.EncCDtoWAVExit.Click.raise();
            r.reader().Done.raise();
        },
        [&] { r.reader().Done.raise(); },
    };
    r.start();
    CHECK_FALSE(r.workbench.Visible());
    CHECK(r.platform.log.count("CDtoWAV.ReadTrack(2, /rips/Track2.wav)") == 1);
}

TEST_CASE("The ripping tab's controls begin like this")
{
    DiscProgram p;
    CHECK(p.workbench.Caption() == "Encoder / Decoder / CD => WAV / WAV => CD");
    CHECK(p.workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(p.workbench.CDtoWAVTB.Caption() == "Track");
    CHECK(p.workbench.pc_len.Caption() == "100");
    CHECK(p.workbench.TLCDDB.ListCount() == 0);
    CHECK(p.workbench.firstTrackLine == "");
    CHECK(p.workbench.tracksSelectedCount == 0);
    CHECK(p.workbench.tracksStartedCount == 0);
    CHECK(p.workbench.trackReadFinished);
}
