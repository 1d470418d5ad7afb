// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_program.h"
#include "support/failures.h"
#include "support/temporary_folder.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::int32_t minute = 60000;

// The tab with three tracks in the reader, as an opening through the workbench leaves it.
struct Tab : DiscProgram {
    Tab()
    {
        reader().tracks = {minute, minute, minute};
        platform.scriptedDrives.drives.push_back({"/usr", ""});
        workbench.EncCDtoWAVSet.Click.raise();
        platform.log.clear();
    }

    ctl::CommandButton& apply() { return settings.SetCDtoWAVApp; }
};

struct Push {
    const char* name;
    ctl::CommandButton Settings::*button;
};
const Push pushes[] = {{"Apply", &Settings::SetCDtoWAVApp}, {"OK", &Settings::SetCDtoWAVOK}};

}

TEST_CASE("The ripping tab's controls begin with these words")
{
    Player p;
    Settings& s = p.program.settings();
    CHECK(s.SetCDtoWavTB.Text() == "Track");
    CHECK(s.chkCDDB.ToolTipText() ==
          "Access CDDB to get the song titles.  This requires an active internet connection and only works "
          "with your default CD-Drive!");
    CHECK_FALSE(s.SetCDtoWAVApp.Enabled());
}

TEST_CASE("The workbench's Settings opens the ripping tab clean, although the load touched its controls")
{
    Tab t;
    CHECK(t.settings.Visible());
    CHECK(t.settings.SettingsTab.Tab() == 2);
    CHECK_FALSE(t.apply().Enabled());
    t.settings.SetCDtoWavTB.setText("Song");
    CHECK(t.apply().Enabled());
    t.workbench.EncCDtoWAVSet.Click.raise();
    CHECK_FALSE(t.apply().Enabled());
}

TEST_CASE("Apply and OK write the same keys in the same order, then list the disc")
{
    for (const auto& push : pushes) {
        CAPTURE(push.name);
        Tab t;
        t.settings.Dir3.setPath("/tmp");
        t.settings.CDDrives.setListIndex(1);
        t.settings.SetCDtoWavTB.setText("Song");
        (t.settings.*push.button).Click.raise();
        const Text calls = t.calls();
        CHECK(calls.starts_with("Store.CD => WAV Settings/SaveDirectory = /tmp\n"
                                "Store.CD => WAV Settings/SaveDrive = /\n"
                                "Store.CD => WAV Settings/CD Drive = 2\n"
                                "Store.CD => WAV Settings/FileNames = Song\n"
                                "Store.CD => WAV Settings/Access CDDB = 0\n"
                                "Store.CD => WAV Settings/Settings Saved = yes\n"
                                "CDtoWAV.Init\nCDtoWAV.SelectDrive(2)\nCdBase1.ContactIdentity"));
        CHECK(calls.find("CDtoWAV.TrackCount\n") != Text::npos);
        CHECK(calls.find("Store.", calls.find("CDtoWAV.Init")) == Text::npos);
        CHECK(calls.find("DriveCount") == Text::npos);
    }
}

TEST_CASE("The choice of titles reaches the workbench between its key and the mark that the tab was saved")
{
    for (const auto& push : pushes) {
        CAPTURE(push.name);
        Tab t;
        t.settings.chkCDDB.setValue(1);
        Text atTheKey, atTheMark;
        t.platform.log.onCall = [&](const Text& call) {
            if (call == "Store.CD => WAV Settings/Access CDDB = 1")
                atTheKey = t.workbench.AccessCDDB_OK.Caption();
            if (call == "Store.CD => WAV Settings/Settings Saved = yes")
                atTheMark = t.workbench.AccessCDDB_OK.Caption();
        };
        (t.settings.*push.button).Click.raise();
        CHECK(atTheKey == "0");
        CHECK(atTheMark == "1");
        CHECK(t.platform.log.count("CdBase1.Lookup") == 1);
    }
}

TEST_CASE(
    "Apply cleans the tab and leaves the window, OK hides the window and leaves the button as it stands")
{
    for (const bool changed : {false, true}) {
        CAPTURE(changed);
        Tab applied;
        applied.apply().setEnabled(changed);
        applied.settings.SetCDtoWAVApp_Click();
        CHECK_FALSE(applied.apply().Enabled());
        CHECK(applied.settings.Visible());

        Tab closed;
        closed.apply().setEnabled(changed);
        closed.settings.SetCDtoWAVOK.Click.raise();
        CHECK(closed.apply().Enabled() == changed);
        CHECK_FALSE(closed.settings.Visible());
    }
}

TEST_CASE("Cancel hides the window: nothing is written, read or put back")
{
    Tab t;
    t.settings.SetCDtoWavTB.setText("Song");
    t.settings.chkCDDB.setValue(1);
    t.settings.SetCDtoWAVCan.Click.raise();
    CHECK(t.calls() == "");
    CHECK_FALSE(t.settings.Visible());
    CHECK(t.settings.chkCDDB.Value() == 1);
    CHECK(t.workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(t.apply().Enabled());
}

TEST_CASE("The directory and the beginning of the names reach the workbench with the next load alone")
{
    for (const auto& push : pushes) {
        CAPTURE(push.name);
        Tab t;
        t.settings.Dir3.setPath("/tmp");
        t.settings.SetCDtoWavTB.setText("Song");
        (t.settings.*push.button).Click.raise();
        CHECK(t.workbench.CDtoWAVsavedir.Caption() == "/");
        CHECK(t.workbench.CDtoWAVTB.Caption() == "Track");
        t.workbench.EncSettings.Click.raise();
        CHECK(t.workbench.CDtoWAVsavedir.Caption() == "/tmp");
        CHECK(t.workbench.CDtoWAVTB.Caption() == "Song");
    }
}

TEST_CASE("A run straight after Apply still uses the old directory and the old beginning")
{
    Tab t;
    t.settings.Dir3.setPath("/tmp");
    t.settings.SetCDtoWavTB.setText("Song");
    t.settings.SetCDtoWAVApp.Click.raise();
    t.check({2});
    t.reader().onRead = [&] { t.reader().Done.raise(); };
    t.workbench.EncCDtoWAVStart.Click.raise();
    CHECK(t.platform.log.all().back() == "CDtoWAV.ReadTrack(3, /Track3.wav)");
}

TEST_CASE("A beginning of the user's own lasts until an Apply behind the next load writes Track back")
{
    Tab t;
    t.settings.SetCDtoWavTB.setText("Song");
    t.settings.SetCDtoWAVApp.Click.raise();
    t.workbench.EncCDtoWAVSet.Click.raise();
    CHECK(t.workbench.CDtoWAVTB.Caption() == "Song");
    CHECK(t.settings.SetCDtoWavTB.Text() == "Track");
    CHECK(t.stored(cdToWav, "FileNames") == "Song");
    t.settings.SetCDtoWAVApp.Click.raise();
    CHECK(t.stored(cdToWav, "FileNames") == "Track");
}

TEST_CASE("The drive is stored from 1, none as 0, and listed at once")
{
    struct Case {
        std::int32_t row;
        Text stored;
    };
    for (const auto& c : {Case{0, "1"}, Case{1, "2"}, Case{-1, "0"}}) {
        CAPTURE(c.row);
        Tab t;
        t.settings.CDDrives.setListIndex(c.row);
        t.settings.SetCDtoWAVApp.Click.raise();
        CHECK(t.stored(cdToWav, "CD Drive") == c.stored);
        CHECK(t.platform.log.count("CDtoWAV.SelectDrive(" + c.stored + ")") == 1);
    }
}

TEST_CASE("OK without a change writes all keys")
{
    Tab t;
    t.settings.SetCDtoWAVOK.Click.raise();
    CHECK(t.platform.log.of("Store").size() == 6);
    CHECK(t.stored(cdToWav, "Settings Saved") == "yes");
}

TEST_CASE("With titles wanted the description of the names is stored, and no file is named by it")
{
    Tab t;
    t.settings.chkCDDB.setValue(1);
    t.settings.SetCDtoWAVApp.Click.raise();
    CHECK(t.stored(cdToWav, "FileNames") == "Track - Artist - Title");
    CHECK(t.stored(cdToWav, "Access CDDB") == "1");
}

TEST_CASE("Wanting titles describes the names and selects the first drive, whichever was chosen before")
{
    for (const std::int32_t before : {-1, 0, 1}) {
        CAPTURE(before);
        Tab t;
        t.settings.CDDrives.setListIndex(before);
        t.settings.SetCDtoWavTB.setText("Song");
        t.apply().setEnabled(false);
        t.settings.chkCDDB.setValue(1);
        CHECK(t.apply().Enabled());
        CHECK_FALSE(t.settings.SetCDtoWavTB.Enabled());
        CHECK(t.settings.SetCDtoWavTB.Text() == "Track - Artist - Title");
        CHECK(t.settings.CDDrives.ListIndex() == 0);
        CHECK(t.settings.CDDrives.Selected(0));

        t.apply().setEnabled(false);
        t.settings.chkCDDB.setValue(0);
        CHECK(t.apply().Enabled());
        CHECK(t.settings.SetCDtoWavTB.Enabled());
        CHECK(t.settings.SetCDtoWavTB.Text() == "Track");
        CHECK(t.settings.CDDrives.ListIndex() == 0);
        CHECK(t.calls() == "");
    }
}

TEST_CASE("Each change marks the ripping tab and no other")
{
    struct Change {
        Text what;
        std::function<void(Settings&)> make;
    };
    const Change changes[] = {
        {"a drive for reading", [](Settings& s) { s.CDDrives.setListIndex(1); }},
        {"a click on the same drive", [](Settings& s) { s.CDDrives.Click.raise(); }},
        {"the choice of titles", [](Settings& s) { s.chkCDDB.setValue(1); }},
        {"the beginning of the names", [](Settings& s) { s.SetCDtoWavTB.setText("Song"); }},
        {"the directory", [](Settings& s) { s.Dir3.setPath("/tmp"); }},
        {"the drive of the directory", [](Settings& s) { s.Drive3.setDrive("/usr"); }},
    };
    for (const auto& change : changes) {
        CAPTURE(change.what);
        Tab t;
        for (int tab = 0; tab < 4; ++tab)
            t.settings.applyButton(tab).setEnabled(false);
        change.make(t.settings);
        for (int tab = 0; tab < 4; ++tab)
            CHECK(t.settings.applyButton(tab).Enabled() == (tab == 2));
    }
}

TEST_CASE("What is set to the value that it has marks nothing")
{
    Tab t;
    t.settings.CDDrives.setListIndex(0);
    t.settings.chkCDDB.setValue(0);
    t.settings.SetCDtoWavTB.setText("Track");
    t.settings.Dir3.setPath("/");
    t.settings.Drive3.setDrive("/");
    CHECK_FALSE(t.apply().Enabled());
}

TEST_CASE(
    "Another drive takes the directory list along; one that cannot be read is a failure that nobody handles")
{
    Tab t;
    t.settings.Drive3.setDrive("/usr");
    CHECK(t.settings.Dir3.Path() == "/usr");
    t.apply().setEnabled(false);
    const TemporaryFolder folder;
    const Text gone = folder / "gone";
    t.platform.scriptedDrives.drives.push_back({gone, ""});
    CHECK(failureOf([&] { t.settings.Drive3.setDrive(gone); }) == 76);
    CHECK(t.settings.Dir3.Path() == "/usr");
    CHECK_FALSE(t.apply().Enabled());
}
