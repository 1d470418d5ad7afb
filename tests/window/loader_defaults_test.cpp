// SPDX-License-Identifier: GPL-3.0-or-later
// A load of sections that were never saved, and the first load of all.
#include "platform/failure.h"
#include "support/temporary_folder.h"
#include "support/workshop.h"

#include <doctest/doctest.h>

namespace
{

Text warning(const Text& directory, const Text& what)
{
    return "The default directory '" + directory +
           "' does not exist!\r\nPlease specify a directory in which the " + what + " should be stored.";
}

// No folder for output.
void noFolder(FakePlatform& platform) { platform.outputDirectory = "/nowhere/Music"; }

Text warnings(FakePlatform& platform)
{
    Text text;
    for (const auto& box : platform.boxes.shown) {
        CHECK(box.title == "Default directory does not exist!");
        CHECK(box.icon == MessageBoxes::Icon::none);
        CHECK(box.buttons == MessageBoxes::Buttons::ok);
        text += box.text == warning("/nowhere/Music", "mp3s")         ? "mp3s "
                : box.text == warning("/nowhere/Music", "wave files") ? "waves "
                                                                      : "? ";
    }
    return text;
}

}

TEST_CASE("The defaults go to the engines in this order")
{
    Workshop w;
    CHECK(w.load() == "Mp3Encoder1.Bitrate = 128000\n"
                      "Mp3Encoder1.HalfSampleRate = False\n"
                      "Scan.FindFirstFile(/*.*)\nScan.FindClose\n"
                      "Scan.FindFirstFile(/*.*)\nScan.FindClose\n"
                      "CDtoWAV.Init\n"
                      "CDtoWAV.DriveCount\nCDtoWAV.DriveName(1)\nCDtoWAV.DriveName(2)\n"
                      "CDtoWAV.SelectDrive(1)\n"
                      "Scan.FindFirstFile(/*.*)\nScan.FindClose\n"
                      "CDtoWAV.Init\n"
                      "CDtoWAV.SelectDrive(1)\n"
                      "CdBase1.ContactIdentity = user@host\n"
                      "CdBase1.Device = default\n"
                      "CdBase1.TimeLimit = 30000\n"
                      "CdBase1.Command = Open\n"
                      "CDtoWAV.TrackCount\n"
                      "CDWriter.WriteSpeed = 1\n"
                      "CDWriter.CloseDisc = False\n"
                      "CDWriter.Simulate = False\n"
                      "CDWriter.AutoEject = True\n");
}

TEST_CASE("First use with the folder for output: no message, and the dialog shows the defaults")
{
    const TemporaryFolder music;
    Workshop w([&](FakePlatform& platform) {
        platform.outputDirectory = music.path();
        platform.scan.folders[music / "*.*"] = {{FoundFile::directory, "."}};
    });
    CHECK(w.platform.log.count("MessageBox.Default directory does not exist!") == 0);
    w.load();
    CHECK(w.platform.boxes.shown.empty());
    CHECK(w.settings.SetEncBitr6.Value());
    CHECK(w.settings.SetEncSF1.Value());
    CHECK(w.settings.SetCDtoWavTB.Text() == "Track");
    CHECK(w.settings.SetWAVtoCDSpeed1x.Value());
    CHECK(w.settings.SetWAVtoCDautoeject.Value() == 1);
    CHECK(w.settings.SetWAVtoCDclosedisc.Value() == 0);
    CHECK(w.settings.SetWAVtoCDtestmode.Value() == 0);
    CHECK(w.settings.CDDrives.ListIndex() == 0);
    for (const auto* list : {&w.settings.Dir1, &w.settings.Dir2, &w.settings.Dir3})
        CHECK(list->Path() == music.path());
    for (const auto* label : {&w.workbench.outputdir, &w.workbench.outputdir2, &w.workbench.CDtoWAVsavedir})
        CHECK(label->Caption() == music.path());
    CHECK(w.workbench.CDtoWAVTB.Caption() == "Track");
    CHECK(w.settings.bitrateText == "128000");
    CHECK(w.settings.sampleFrequencyText == "0");
    CHECK_FALSE(w.settings.halfSampleRate);
    CHECK(w.settings.writeSpeed == 1);
}

TEST_CASE("First use without it: three warnings, the one for the mp3s first, however the program gets there")
{
    struct Road {
        const char* name;
        std::function<void(Player&)> take;
    };
    const Road roads[] = {
        {"the workbench's menu entry", [](Player& p) { p.platform.mainMenu->choose(10); }},
        {"the encoder settings", [](Player& p) { p.platform.mainMenu->choose(11); }},
        {"the decoder settings", [](Player& p) { p.platform.mainMenu->choose(14); }},
        {"the general settings", [](Player& p) { p.platform.mainMenu->choose(19); }},
        {"a touch of the dialog", [](Player& p) { p.program.settings(); }},
        {"a touch of the workbench", [](Player& p) { p.program.mp3Encoder(); }},
    };
    for (const auto& road : roads) {
        CAPTURE(road.name);
        Player p([](FakePlatform& platform) {
            noFolder(platform);
            platform.store.values[{section::wavToCd, key::hasWriter}] = "no";
        });
        road.take(p);
        CHECK(warnings(p.platform) == "mp3s waves waves ");
    }
}

TEST_CASE("Without the folder two labels show where the lists stand, the third stays as it was")
{
    Workshop w(noFolder);
    const Text here = w.settings.Dir1.Path();
    CHECK(w.workbench.outputdir.Caption() == here);
    CHECK(w.workbench.outputdir2.Caption() == here);
    CHECK(w.workbench.CDtoWAVsavedir.Caption().empty());
    CHECK(w.workbench.CDtoWAVTB.Caption() == "Track");

    w.settings.Dir1.setPath("/etc");
    w.settings.Dir2.setPath("/usr");
    w.settings.Dir3.setPath("/etc");
    w.workbench.CDtoWAVsavedir.setCaption("/before");
    w.load();
    CHECK(w.workbench.outputdir.Caption() == "/etc");
    CHECK(w.workbench.outputdir2.Caption() == "/usr");
    CHECK(w.workbench.CDtoWAVsavedir.Caption() == "/before");
    CHECK(w.settings.Dir3.Path() == "/etc");
}

TEST_CASE("The warning comes again with each load, and nothing is made or stored")
{
    Workshop w(noFolder);
    for (int times = 0; times < 3; ++times) {
        CHECK(w.load().find("Store.") == Text::npos);
        CHECK(warnings(w.platform) == "mp3s waves waves ");
    }
}

TEST_CASE("A section that is saved warns no more")
{
    struct Row {
        const char* section;
        Text warnings;
    };
    for (const auto& row :
         {Row{section::encoder, "waves waves "}, Row{section::decoder, "mp3s waves "},
          Row{section::cdToWav, "mp3s waves "}, Row{section::wavToCd, "mp3s waves waves "}}) {
        CAPTURE(row.section);
        Workshop w(noFolder);
        w.save(row.section, {});
        w.load();
        CHECK(warnings(w.platform) == row.warnings);
    }
}

TEST_CASE("Each warning stands in the middle of the load, with the labels not yet written")
{
    Workshop w(noFolder);
    w.workbench.outputdir.setCaption("-");
    w.workbench.outputdir2.setCaption("-");
    w.workbench.CDtoWAVTB.setCaption("-");
    Text seen;
    w.platform.boxes.onShow = [&] {
        seen += w.workbench.outputdir.Caption() == "-" ? "0" : "1";
        seen += w.workbench.outputdir2.Caption() == "-" ? "0" : "1";
        seen += w.workbench.CDtoWAVTB.Caption() == "-" ? "0 " : "1 ";
    };
    w.load();
    CHECK(seen == "000 100 110 ");
    CHECK(w.workbench.CDtoWAVTB.Caption() == "Track");
}

TEST_CASE("A directory that the look-up finds and the list cannot enter is a failure that nobody handles")
{
    Workshop w;
    const TemporaryFolder folder;
    w.platform.outputDirectory = folder / "gone";
    w.platform.scan.folders[w.platform.outputDirectory + "/*.*"] = {{FoundFile::directory, "."}};
    int number = 0;
    guarded([&](const Failure& failure) { number = failure.number; }, [&] { w.load(); });
    CHECK(number == 76);
    w.platform.outputDirectory = "/";
    w.load(); // the failed load does not keep the next one away
    CHECK(w.workbench.outputdir.Caption() == "/");
}

TEST_CASE("The tracks' label has the directory before the list that cannot enter it fails")
{
    Workshop w;
    const TemporaryFolder folder;
    w.save(section::encoder, {{key::saveDirectory, "/"}});
    w.save(section::decoder, {{key::saveDirectory, "/"}});
    w.platform.outputDirectory = folder / "gone";
    w.platform.scan.folders[w.platform.outputDirectory + "/*.*"] = {{FoundFile::directory, "."}};
    w.workbench.CDtoWAVTB.setCaption("-");
    CHECK_FALSE(succeeds([&] { w.load(); }));
    CHECK(w.workbench.CDtoWAVsavedir.Caption() == w.platform.outputDirectory);
    CHECK(w.workbench.CDtoWAVTB.Caption() == "-"); // the failure ends the load there
}

TEST_CASE("The defaults put a dialog back that was changed and never saved")
{
    Workshop w;
    w.settings.SetEncBitr14.setValue(true);
    w.settings.SetEncSF2.setValue(true);
    w.settings.Dir1.setPath("/etc");
    w.settings.Dir3.setPath("/etc");
    w.settings.SetWAVtoCDSpeed16x.setValue(true);
    w.settings.SetWAVtoCDclosedisc.setValue(1);
    w.settings.SetWAVtoCDautoeject.setValue(0);
    w.settings.SetCDtoWavTB.setText("mine");
    w.load();
    CHECK(w.settings.SetEncBitr6.Value());
    CHECK(w.settings.SetEncSF1.Value());
    CHECK(w.settings.Dir1.Path() == "/");
    CHECK(w.settings.Dir3.Path() == "/");
    CHECK(w.settings.SetWAVtoCDSpeed1x.Value());
    CHECK(w.settings.SetWAVtoCDclosedisc.Value() == 0);
    CHECK(w.settings.SetWAVtoCDtestmode.Enabled());
    CHECK(w.settings.SetWAVtoCDautoeject.Value() == 1);
    CHECK(w.settings.SetCDtoWavTB.Text() == "Track");
}

TEST_CASE("The defaults put back a simulated writing that was never saved")
{
    Workshop w;
    w.settings.SetWAVtoCDtestmode.setValue(1);
    REQUIRE_FALSE(w.settings.SetWAVtoCDclosedisc.Enabled());
    w.load();
    CHECK(w.settings.SetWAVtoCDtestmode.Value() == 0);
    CHECK(w.settings.SetWAVtoCDclosedisc.Enabled());
}

TEST_CASE("The CD defaults leave the choice of titles alone, in the dialog and in the workbench")
{
    Workshop w;
    w.settings.chkCDDB.setValue(1);
    w.workbench.AccessCDDB_OK.setCaption("1");
    w.load();
    CHECK(w.settings.chkCDDB.Value() == 1);
    CHECK(w.workbench.AccessCDDB_OK.Caption() == "1");
    CHECK(w.settings.SetCDtoWavTB.Text() == "Track");
    CHECK_FALSE(w.settings.SetCDtoWavTB.Enabled());
}

TEST_CASE("The defaults of writing select no writer")
{
    Workshop w;
    w.platform.CDWriter->writers = {{"One", 5}};
    const Text calls = w.load();
    CHECK(calls.find("CDWriter.SelectDrive") == Text::npos);
    CHECK(calls.find("CDWriter.SetWriterType") == Text::npos);
    CHECK(calls.find("CDWriter.Init") == Text::npos);
}

TEST_CASE("The defaults' drive comes before the directory: another drive is left through its own root")
{
    const TemporaryFolder drive;
    Workshop w([&](FakePlatform& platform) {
        noFolder(platform);
        platform.scriptedDrives.drives.push_back({drive.path(), "D"});
    });
    w.settings.Drive1.setDrive(drive.path());
    w.settings.Drive2.setDrive(drive.path());
    w.settings.Drive3.setDrive(drive.path());
    w.load();
    for (const auto* list : {&w.settings.Drive1, &w.settings.Drive2, &w.settings.Drive3})
        CHECK(list->Drive() == "/");
    for (const auto* list : {&w.settings.Dir1, &w.settings.Dir2, &w.settings.Dir3})
        CHECK(list->Path() == "/");
    CHECK(w.workbench.outputdir.Caption() == "/");
    CHECK(w.workbench.CDtoWAVsavedir.Caption().empty());
}

TEST_CASE("No CD drive at all is a failure that nobody handles")
{
    Workshop w;
    w.platform.CDtoWAV->drives.clear();
    int number = 0;
    guarded([&](const Failure& failure) { number = failure.number; }, [&] { w.load(); });
    CHECK(number == 380);
    w.save(section::cdToWav, {{key::cdDrive, "1"}});
    CHECK(succeeds([&] { w.load(); }));
}

TEST_CASE("After the first load every control has the store's values and all four Apply buttons are disabled")
{
    struct Road {
        const char* name;
        std::function<void(Player&)> take;
    };
    const Road roads[] = {
        {"a load", [](Player& p) { p.window.get_all_settings(); }},
        {"the workbench", [](Player& p) { p.platform.mainMenu->choose(13); }},
        {"the settings", [](Player& p) { p.platform.mainMenu->choose(14); }},
        {"the general settings", [](Player& p) { p.platform.mainMenu->choose(19); }},
        {"a touch of the workbench", [](Player& p) { p.program.mp3Encoder(); }},
    };
    for (const auto& road : roads) {
        CAPTURE(road.name);
        Player p([](FakePlatform& platform) {
            auto& values = platform.store.values;
            values[{section::wavToCd, key::hasWriter}] = "no";
            for (const auto* name : {section::encoder, section::decoder, section::wavToCd})
                values[{name, key::settingsSaved}] = "yes";
            values[{section::encoder, key::bitrate}] = "40000";
            values[{section::encoder, key::sampleFrequency}] = "1";
            values[{section::encoder, key::saveDirectory}] = "/usr";
            values[{section::decoder, key::saveDirectory}] = "/etc";
            values[{section::wavToCd, key::writeSpeed}] = "16";
        });
        road.take(p);
        auto& settings = p.program.settings();
        auto& workbench = p.program.mp3Encoder();
        CHECK(settings.SetEncBitr13.Value());
        CHECK(settings.SetEncSF2.Value());
        CHECK(settings.Dir1.Path() == "/usr");
        CHECK(settings.Dir2.Path() == "/etc");
        CHECK(settings.SetWAVtoCDSpeed16x.Value());
        CHECK(workbench.outputdir.Caption() == "/usr");
        CHECK(workbench.outputdir2.Caption() == "/etc");
        CHECK(workbench.CDtoWAVTB.Caption() == "Track");
        CHECK(workbench.trackReadFinished);
        CHECK(p.platform.Mp3Encoder1->bitrate == 40000);
        for (int tab = 0; tab < 4; ++tab)
            CHECK_FALSE(settings.applyButton(tab).Enabled());
    }
}

TEST_CASE("The first load runs once, whichever window asks first; each later one runs again")
{
    Player p([](FakePlatform& platform) {
        platform.store.values[{section::wavToCd, key::hasWriter}] = "no";
    });
    p.window.get_all_settings();
    CHECK(p.platform.log.count("Mp3Encoder1.Bitrate = 128000") == 1);
    p.window.get_all_settings();
    CHECK(p.platform.log.count("Mp3Encoder1.Bitrate = 128000") == 2);
}

TEST_CASE("A load during a load returns at once")
{
    Workshop w(noFolder);
    int inner = 0;
    w.platform.boxes.onShow = [&] {
        ++inner;
        w.window.get_all_settings();
    };
    w.load();
    CHECK(inner == 3);
    CHECK(warnings(w.platform) == "mp3s waves waves ");
}
