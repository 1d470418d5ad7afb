// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/disc_desk.h"
#include "support/disc_program.h"
#include "support/failures.h"
#include "support/files.h"

#include <algorithm>
#include <doctest/doctest.h>

namespace
{

constexpr const char* missing = "Default directory does not exist!";

void giveNoDirectory(FakePlatform& platform)
{
    platform.outputDirectory = "/nowhere";
    platform.scan.folders.erase("/nowhere*.*");
    platform.scan.folders.erase("/nowhere/*.*");
}

// A saved tab for ripping, whose directory and drive exist.
void saveRipping(DiscProgram& p)
{
    p.platform.scriptedDrives.drives.push_back({"/usr", ""});
    p.store(cdToWav, "Settings Saved", "yes");
    p.store(cdToWav, "SaveDirectory", "/tmp");
    p.store(cdToWav, "SaveDrive", "/usr");
    p.store(cdToWav, "CD Drive", "2");
    p.store(cdToWav, "FileNames", "My disc ");
    p.store(cdToWav, "Access CDDB", "0");
}

void saveWriting(DiscProgram& p)
{
    p.store(wavToCd, "Settings Saved", "yes");
    p.store(wavToCd, "Selected CD Writer", "1");
    p.store(wavToCd, "Write Speed", "8");
    p.store(wavToCd, "Close Disc", "0");
    p.store(wavToCd, "Simulate Writing", "0");
    p.store(wavToCd, "Auto Eject", "1");
    p.store(wavToCd, "CD Writer Type", "7");
}

std::ptrdiff_t warnings(FakePlatform& platform)
{
    const auto& boxes = platform.boxes.shown;
    return std::count_if(boxes.begin(), boxes.end(), [](auto& box) { return box.title == missing; });
}

std::vector<Text> chosenSpeeds(Settings& settings)
{
    std::vector<Text> chosen;
    for (const auto& row : settings.speedButtons)
        if (row.button.Value())
            chosen.push_back(textOf(row.factor));
    return chosen;
}

}

TEST_CASE("A first use with the default directory fills both disc tabs without a message")
{
    Player p;
    Mp3Encoder& workbench = p.program.mp3Encoder();
    Settings& settings = p.program.settings();
    CHECK(warnings(p.platform) == 0);
    CHECK(settings.SetCDtoWavTB.Text() == "Track");
    CHECK(settings.SetCDtoWavTB.Enabled());
    CHECK(settings.Drive3.Drive() == "/");
    CHECK(settings.Dir3.Path() == "/");
    CHECK(settings.CDDrives.ListIndex() == 0);
    CHECK(settings.chkCDDB.Value() == 0);
    CHECK(workbench.CDtoWAVsavedir.Caption() == "/");
    CHECK(workbench.CDtoWAVTB.Caption() == "Track");
    CHECK(workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(chosenSpeeds(settings) == std::vector<Text>{"1"});
    CHECK(settings.writeSpeed == 1);
    CHECK(settings.SetWAVtoCDclosedisc.Value() == 0);
    CHECK(settings.SetWAVtoCDtestmode.Value() == 0);
    CHECK(settings.SetWAVtoCDautoeject.Value() == 1);
    for (int tab = 0; tab < 4; ++tab)
        CHECK_FALSE(settings.applyButton(tab).Enabled());
    CHECK(p.stored(cdToWav, "Settings Saved").empty());
    CHECK(p.stored(wavToCd, "Settings Saved").empty());
}

TEST_CASE(
    "A first use without it warns, and the ripping directory stays as it was, in the label and in the list")
{
    Player p(giveNoDirectory);
    Mp3Encoder& workbench = p.program.mp3Encoder();
    Settings& settings = p.program.settings();
    CHECK(warnings(p.platform) == 3);
    const auto& boxes = p.platform.boxes.shown;
    const auto last =
        std::find_if(boxes.rbegin(), boxes.rend(), [](auto& box) { return box.title == missing; });
    CHECK(last->text == "The default directory '/nowhere' does not exist!\r\n"
                        "Please specify a directory in which the wave files should be stored.");
    CHECK(last->icon == MessageBoxes::Icon::none);
    CHECK(last->buttons == MessageBoxes::Buttons::ok);
    CHECK(workbench.CDtoWAVsavedir.Caption() == "");
    CHECK(workbench.outputdir2.Caption() == settings.Dir2.Path());
    CHECK(workbench.CDtoWAVTB.Caption() == "Track");

    workbench.CDtoWAVsavedir.setCaption("/old");
    settings.Dir3.setPath("/tmp");
    p.window.get_all_settings();
    CHECK(warnings(p.platform) == 6);
    CHECK(workbench.CDtoWAVsavedir.Caption() == "/old");
    CHECK(settings.Dir3.Path() == "/tmp");
    CHECK(p.stored(cdToWav, "Settings Saved").empty());
}

TEST_CASE("The two disc sections are loaded in this order, with the drives before the one and the disc "
          "before the other")
{
    DiscProgram p;
    const Text listing =
        "CDtoWAV.Init\nCDtoWAV.SelectDrive(1)\nCdBase1.ContactIdentity = " + p.titles().identity +
        "\nCdBase1.Device = default\nCdBase1.TimeLimit = 30000\nCdBase1.Command = Open\n"
        "CDtoWAV.TrackCount\n";
    p.window.get_all_settings();
    const Text calls = p.calls();
    CHECK(calls.substr(calls.find("CDtoWAV.Init")) ==
          "CDtoWAV.Init\nCDtoWAV.DriveCount\nCDtoWAV.DriveName(1)\nCDtoWAV.DriveName(2)\n"
          "CDtoWAV.SelectDrive(1)\nScan.FindFirstFile(/*.*)\nScan.FindClose\n" +
              listing +
              "CDWriter.WriteSpeed = 1\nCDWriter.CloseDisc = False\nCDWriter.Simulate = False\n"
              "CDWriter.AutoEject = True\n");
}

TEST_CASE("Each section decides alone whether it was saved")
{
    for (const bool ripping : {false, true})
        for (const bool writing : {false, true}) {
            CAPTURE(ripping);
            CAPTURE(writing);
            DiscProgram p;
            if (ripping)
                saveRipping(p);
            if (writing)
                saveWriting(p);
            p.window.get_all_settings();
            CHECK(p.workbench.CDtoWAVTB.Caption() == (ripping ? "My disc " : "Track"));
            CHECK(p.settings.writeSpeed == (writing ? 8 : 1));
        }
}

TEST_CASE("The saved ripping tab is loaded, but its text box shows Track again")
{
    DiscProgram p;
    saveRipping(p);
    p.window.get_all_settings();
    CHECK(p.settings.Drive3.Drive() == "/usr");
    CHECK(p.settings.Dir3.Path() == "/tmp");
    CHECK(p.settings.CDDrives.ListIndex() == 1);
    CHECK(p.workbench.CDtoWAVsavedir.Caption() == "/tmp");
    CHECK(p.workbench.CDtoWAVTB.Caption() == "My disc ");
    CHECK(p.settings.chkCDDB.Value() == 0);
    CHECK(p.workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(p.settings.SetCDtoWavTB.Text() == "Track");
    CHECK(p.settings.SetCDtoWavTB.Enabled());
    CHECK(p.platform.log.count("CDtoWAV.SelectDrive(2)") == 1);
    CHECK(warnings(p.platform) == 0);
}

TEST_CASE(
    "With titles wanted the text box is disabled and describes the names, and the first drive is selected")
{
    DiscProgram p;
    saveRipping(p);
    p.store(cdToWav, "Access CDDB", "1");
    p.window.get_all_settings();
    CHECK(p.settings.chkCDDB.Value() == 1);
    CHECK(p.workbench.AccessCDDB_OK.Caption() == "1");
    CHECK(p.settings.SetCDtoWavTB.Text() == "Track - Artist - Title");
    CHECK_FALSE(p.settings.SetCDtoWavTB.Enabled());
    CHECK(p.settings.CDDrives.ListIndex() == 0);
    CHECK(p.workbench.CDtoWAVTB.Caption() == "My disc ");
    CHECK(p.platform.log.count("CDtoWAV.SelectDrive(2)") == 1);

    p.window.get_all_settings(); // the box does not change, so that nothing but the load itself selects
    CHECK(p.settings.CDDrives.ListIndex() == 0);

    p.store(cdToWav, "Access CDDB", "0");
    p.window.get_all_settings();
    CHECK(p.settings.SetCDtoWavTB.Text() == "Track");
    CHECK(p.settings.SetCDtoWavTB.Enabled());
    CHECK(p.settings.CDDrives.ListIndex() == 1);
}

TEST_CASE("The loader selects the stored drive, and an unusable number leaves the selection")
{
    struct Case {
        Text drive;
        std::int32_t selects;
    };
    for (const auto& c : {Case{"1", 0}, Case{"2", 1}, Case{"0", -1}, Case{"3", 0}, Case{"-1", 0},
                          Case{"two", 0}, Case{"", 0}, Case{" 2 ", 1}, Case{"99999999999", 0}}) {
        CAPTURE(c.drive);
        DiscProgram p;
        saveRipping(p);
        p.store(cdToWav, "CD Drive", c.drive);
        REQUIRE(p.settings.CDDrives.ListIndex() == 0);
        p.window.GetCDtoWAVSettings();
        CHECK(p.settings.CDDrives.ListIndex() == c.selects);
        CHECK(p.workbench.CDtoWAVTB.Caption() == "My disc ");
    }
}

TEST_CASE("A drive and a directory that are gone leave the lists, while the workbench gets the stored path")
{
    DiscProgram p;
    saveRipping(p);
    p.store(cdToWav, "SaveDrive", "/media/gone");
    p.store(cdToWav, "SaveDirectory", "/media/gone/wav");
    CHECK(failureOf([&] { p.window.get_all_settings(); }) == 0);
    CHECK(p.settings.Drive3.Drive() == "/");
    CHECK(p.settings.Dir3.Path() == "/");
    CHECK(p.workbench.CDtoWAVsavedir.Caption() == "/media/gone/wav");
    CHECK(p.workbench.CDtoWAVTB.Caption() == "My disc ");
}

TEST_CASE("An unusable choice of titles leaves the check box, and the label says what the box holds")
{
    for (const Text stored : {"2", "-1", "yes", "", "70000"})
        for (const std::int16_t before : {0, 1}) {
            CAPTURE(stored);
            CAPTURE(before);
            DiscProgram p;
            saveRipping(p);
            p.store(cdToWav, "Access CDDB", stored);
            p.settings.chkCDDB.setValue(before);
            p.workbench.AccessCDDB_OK.setCaption("7");
            p.window.GetCDtoWAVSettings();
            CHECK(p.settings.chkCDDB.Value() == before);
            CHECK(p.workbench.AccessCDDB_OK.Caption() == textOf(before));
            CHECK(p.settings.SetCDtoWavTB.Enabled() == (before == 0));
        }
}

TEST_CASE("With titles wanted and no drive to select the load goes on")
{
    DiscProgram p;
    saveRipping(p);
    saveWriting(p);
    p.store(cdToWav, "Access CDDB", "1");
    p.reader().drives = {};
    CHECK(failureOf([&] { p.window.get_all_settings(); }) == 0);
    CHECK(p.settings.CDDrives.ListCount() == 0);
    CHECK(p.workbench.AccessCDDB_OK.Caption() == "1");
    CHECK(p.settings.writeSpeed == 8);
}

TEST_CASE("The defaults leave the choice of titles alone, in the box and in the label")
{
    DiscProgram p;
    p.settings.chkCDDB.setValue(1);
    p.settings.SetCDtoWAVCan.Click.raise();
    p.workbench.EncCDtoWAVSet.Click.raise();
    CHECK(p.settings.chkCDDB.Value() == 1);
    CHECK(p.workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(p.settings.SetCDtoWavTB.Text() == "Track");
    CHECK_FALSE(p.settings.SetCDtoWavTB.Enabled());
    CHECK(p.platform.log.count("CdBase1.Lookup") == 1);
}

TEST_CASE("A load discards what the user changed and left with Cancel")
{
    DiscProgram p;
    saveRipping(p);
    saveWriting(p);
    p.window.get_all_settings();
    p.settings.SetCDtoWavTB.setText("Song");
    p.settings.CDDrives.setListIndex(0);
    p.settings.chkCDDB.setValue(1);
    p.settings.Dir3.setPath("/usr");
    p.settings.SetWAVtoCDSpeed16x.setValue(true);
    p.settings.SetWAVtoCDclosedisc.setValue(1);
    p.settings.SetCDtoWAVCan.Click.raise();
    p.window.get_all_settings();
    CHECK(p.settings.SetCDtoWavTB.Text() == "Track");
    CHECK(p.settings.CDDrives.ListIndex() == 1);
    CHECK(p.settings.chkCDDB.Value() == 0);
    CHECK(p.settings.Dir3.Path() == "/tmp");
    CHECK(p.settings.writeSpeed == 8);
    CHECK(p.settings.SetWAVtoCDclosedisc.Value() == 0);
}

TEST_CASE("The settings window, opened before everything else, starts the reader twice and selects no drive")
{
    Player p([](FakePlatform& platform) {
        platform.onACDWRITE = [](RecordingACDWRITE& writer) { writer.writers = {{"Recorder", 1}}; };
    });
    p.platform.mainMenu->choose(19);
    Settings& settings = p.program.settings();
    CHECK(p.platform.log.count("CDtoWAV.DriveCount") == 2);
    CHECK(rowsOf(settings.CDDrives) == std::vector<Text>{"Drive one", "Drive two"});
    CHECK(settings.CDDrives.ListIndex() == -1);
    for (int tab = 0; tab < 4; ++tab)
        CHECK_FALSE(settings.applyButton(tab).Enabled());
    settings.SetCDtoWAVApp_Click();
    CHECK(p.stored(cdToWav, "CD Drive") == "0");
}

TEST_CASE("Opened behind the workbench the settings window keeps the drive that the load selected")
{
    Player p;
    p.platform.mainMenu->choose(16);
    CHECK(p.program.settings().CDDrives.ListIndex() == 0);
}

TEST_CASE("The saved writing tab reaches the writer and the dialog, in this order")
{
    DiscProgram p;
    saveWriting(p);
    p.window.GetWAVtoCDSettings();
    CHECK(p.calls() == "CDWriter.WriteSpeed = 8\nCDWriter.CloseDisc = False\nCDWriter.Simulate = False\n"
                       "CDWriter.AutoEject = True\nCDWriter.SelectDrive(1)\nCDWriter.SetWriterType(7)\n");
    CHECK(chosenSpeeds(p.settings) == std::vector<Text>{"8"});
    CHECK(p.settings.writeSpeed == 8);
    CHECK(p.settings.SetWAVtoCDwritertype.Text() == "7");
    CHECK(p.settings.SetWAVtoCDcdwriter.Text() == "");
    CHECK(p.settings.selectedWriter == 0);
    CHECK(p.settings.writerType == 0);
}

TEST_CASE("A stored speed chooses its button, and the writer gets it whether there is one or not")
{
    struct Case {
        Text stored;
        std::vector<Text> chosen;
        std::int16_t variable;
        Text call;
    };
    const Case cases[] = {
        {"1", {"1"}, 1, "CDWriter.WriteSpeed = 1"},
        {"2", {"2"}, 2, "CDWriter.WriteSpeed = 2"},
        {"4", {"4"}, 4, "CDWriter.WriteSpeed = 4"},
        {"6", {"6"}, 6, "CDWriter.WriteSpeed = 6"},
        {"8", {"8"}, 8, "CDWriter.WriteSpeed = 8"},
        {"10", {"10"}, 10, "CDWriter.WriteSpeed = 10"},
        {"12", {"12"}, 12, "CDWriter.WriteSpeed = 12"},
        {"14", {"14"}, 14, "CDWriter.WriteSpeed = 14"},
        {"16", {"16"}, 16, "CDWriter.WriteSpeed = 16"},
        {"4.0", {"4"}, 4, "CDWriter.WriteSpeed = 4"},
        {"3", {"2"}, 2, "CDWriter.WriteSpeed = 3"}, // no button: the one before stays
        {"0", {"2"}, 2, "CDWriter.WriteSpeed = 0"},
        {"fast", {"16"}, 16, ""}, // each button in turn
        {"", {"16"}, 16, ""},
        {"40000", {"2"}, 2, ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.stored);
        DiscProgram p;
        saveWriting(p);
        p.settings.SetWAVtoCDSpeed2x.setValue(true);
        p.store(wavToCd, "Write Speed", c.stored);
        p.window.GetWAVtoCDSettings();
        CHECK(chosenSpeeds(p.settings) == c.chosen);
        CHECK(p.settings.writeSpeed == c.variable);
        CHECK(p.calls().starts_with(c.call.empty() ? "CDWriter.CloseDisc = False\n" : c.call + "\n"));
    }
}

TEST_CASE("An option of the writer is on for 1 and for what is no number")
{
    struct Option {
        const char* key;
        const char* call;
        ctl::CheckBox Settings::*box;
    };
    const Option options[] = {
        {"Close Disc", "CDWriter.CloseDisc", &Settings::SetWAVtoCDclosedisc},
        {"Simulate Writing", "CDWriter.Simulate", &Settings::SetWAVtoCDtestmode},
        {"Auto Eject", "CDWriter.AutoEject", &Settings::SetWAVtoCDautoeject},
    };
    struct Value {
        Text stored;
        bool on;
    };
    for (const auto& option : options)
        for (const auto& value : {Value{"1", true}, Value{"0", false}, Value{"2", false}, Value{"-1", false},
                                  Value{"1.0", true}, Value{"yes", true}, Value{"", true}}) {
            CAPTURE(option.key);
            CAPTURE(value.stored);
            DiscProgram p;
            saveWriting(p);
            p.store(wavToCd, option.key, value.stored);
            p.window.GetWAVtoCDSettings();
            CHECK(p.platform.log.count(option.call + Text(value.on ? " = True" : " = False")) == 1);
            CHECK((p.settings.*option.box).Value() == (value.on ? 1 : 0));
        }
}

TEST_CASE("A stored Close Disc disables Simulate Writing at once, and the other way round")
{
    struct Case {
        Text close, simulate;
        bool closeEnabled, simulateEnabled;
        std::int16_t closeValue, simulateValue;
    };
    const Case cases[] = {
        {"0", "0", true, true, 0, 0},
        {"1", "0", true, false, 1, 0},
        {"0", "1", false, true, 0, 1},
        {"1", "1", false, true, 0, 1}, // only a hand can have written both; the later one wins
    };
    for (const auto& c : cases) {
        CAPTURE(c.close);
        CAPTURE(c.simulate);
        DiscProgram p;
        saveWriting(p);
        p.store(wavToCd, "Close Disc", c.close);
        p.store(wavToCd, "Simulate Writing", c.simulate);
        p.window.get_all_settings();
        CHECK(p.settings.SetWAVtoCDclosedisc.Value() == c.closeValue);
        CHECK(p.settings.SetWAVtoCDtestmode.Value() == c.simulateValue);
        CHECK(p.settings.SetWAVtoCDclosedisc.Enabled() == c.closeEnabled);
        CHECK(p.settings.SetWAVtoCDtestmode.Enabled() == c.simulateEnabled);
    }
}

TEST_CASE("A writer and a type that are no numbers are passed over, and the text box shows what is stored")
{
    DiscProgram p;
    saveWriting(p);
    p.store(wavToCd, "Selected CD Writer", "none");
    p.store(wavToCd, "CD Writer Type", "none");
    p.window.GetWAVtoCDSettings();
    CHECK(p.calls().ends_with("CDWriter.AutoEject = True\n"));
    CHECK(p.settings.SetWAVtoCDwritertype.Text() == "none");
}

TEST_CASE("A call of the writer that fails does not keep the next ones from it")
{
    DiscProgram p;
    saveWriting(p);
    for (const Text call : {"CDWriter.WriteSpeed", "CDWriter.CloseDisc", "CDWriter.Simulate",
                            "CDWriter.AutoEject", "CDWriter.SelectDrive", "CDWriter.SetWriterType"}) {
        CAPTURE(call);
        p.fails(call);
        CHECK(failureOf([&] { p.window.GetWAVtoCDSettings(); }) == 0);
        CHECK(p.platform.log.all().size() == 6);
        p.platform.log.clear();
    }
}

TEST_CASE(
    "Whatever stands where disc images are kept, the workbench and the settings open, and START is silent")
{
    namespace fs = std::filesystem;
    struct Case {
        Text what;
        std::function<void(const Text&)> make;
    };
    const Case cases[] = {
        {"no folder", [](const Text&) {}},
        {"an empty folder", [](const Text& path) { fs::create_directory(path); }},
        {"a file", [](const Text& path) { putFile(path, "no folder"); }},
        {"a link to nothing", [](const Text& path) { fs::create_symlink(path + ".gone", path); }},
        {"a link to itself", [](const Text& path) { fs::create_symlink(path, path); }},
        {"a folder that nobody may read",
         [](const Text& path) {
             fs::create_directory(path);
             fs::permissions(path, fs::perms::none);
         }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        DiscDesk desk;
        fs::remove_all(desk.discs);
        c.make(desk.discs);
        Player p([&](FakePlatform& platform) { platform.otherReader = [&] { return desk.reader(); }; });
        CHECK(failureOf([&] {
                  for (const std::int32_t item : {10, 11, 13, 14, 16, 17, 19})
                      p.platform.mainMenu->choose(item);
                  p.program.mp3Encoder().butRefresh.Click.raise();
                  p.program.mp3Encoder().EncCDtoWAVStart.Click.raise();
                  p.program.settings().SetCDtoWAVApp.Click.raise();
                  p.platform.mainMenu->choose(16);
              }) == 0);
        CHECK(p.program.mp3Encoder().Visible());
        CHECK(rowsOf(p.program.settings().CDDrives) == std::vector<Text>{"Disc image: none"});
        CHECK(p.program.mp3Encoder().TracksList.ListCount() == 0);
        CHECK_FALSE(p.program.error().Visible());
    }
}

TEST_CASE("Images that appear and vanish between openings are the drives of the next one")
{
    DiscDesk desk;
    Player p([&](FakePlatform& platform) { platform.otherReader = [&] { return desk.reader(); }; });
    const auto drives = [&] {
        p.platform.mainMenu->choose(16);
        return rowsOf(p.program.settings().CDDrives);
    };
    CHECK(drives() == std::vector<Text>{"Disc image: none"});
    putFile(desk.discs + "/Mine.cue", "");
    CHECK(drives() == std::vector<Text>{"Disc image: Mine"});
    std::filesystem::remove_all(desk.discs);
    CHECK(drives() == std::vector<Text>{"Disc image: none"});
    CHECK(p.program.settings().CDDrives.ListIndex() == 0);
}
