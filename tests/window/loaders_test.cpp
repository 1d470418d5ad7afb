// SPDX-License-Identifier: GPL-3.0-or-later
// What a load takes from the store.
#include "info/error.h"
#include "platform/failure.h"
#include "support/temporary_folder.h"
#include "support/workshop.h"

#include <doctest/doctest.h>

namespace
{

// Sections as the dialog leaves them in the store.
const std::map<Text, Text> encoderValues = {{key::bitrate, "192000"},
                                            {key::sampleFrequency, "1"},
                                            {key::saveDrive, "/"},
                                            {key::saveDirectory, "/usr"}};
const std::map<Text, Text> decoderValues = {{key::saveDrive, "/"}, {key::saveDirectory, "/usr"}};
const std::map<Text, Text> cdToWavValues = {{key::saveDrive, "/"},
                                            {key::saveDirectory, "/usr"},
                                            {key::cdDrive, "2"},
                                            {key::fileNames, "My song "},
                                            {key::accessCddb, "0"}};
const std::map<Text, Text> wavToCdValues = {{key::selectedWriter, "1"}, {key::writeSpeed, "8"},
                                            {key::closeDisc, "1"},      {key::simulateWriting, "0"},
                                            {key::autoEject, "0"},      {key::writerType, "5"}};

// The section's usual values with one of them changed.
std::map<Text, Text> with(std::map<Text, Text> values, const Text& key, const Text& value)
{
    values[key] = value;
    return values;
}

void saveAll(Workshop& w)
{
    w.save(section::encoder, encoderValues);
    w.save(section::decoder, decoderValues);
    w.save(section::cdToWav, cdToWavValues);
    w.save(section::wavToCd, wavToCdValues);
}

// The captions of the option buttons that are on.
Text chosenBitrate(Workshop& w)
{
    Text text;
    for (const auto& row : w.settings.bitrateButtons)
        text += row.button.Value() ? textOf(row.bitsPerSecond) : "";
    return text;
}
Text chosenSpeed(Workshop& w)
{
    Text text;
    for (const auto& row : w.settings.speedButtons)
        text += row.button.Value() ? textOf(std::int32_t{row.factor}) : "";
    return text;
}

const Text unusable[] = {"", "fast", "12 8", "0x1", "1,5", "--1", "1e999", "nan", "inf"};

}

TEST_CASE("A load goes through the sections in this order, the drives before the third and the disc after it")
{
    Workshop w;
    saveAll(w);
    w.platform.CDtoWAV->tracks = {60000};
    CHECK(w.load() == "Mp3Encoder1.Bitrate = 192000\n"
                      "Mp3Encoder1.HalfSampleRate = True\n"
                      "CDtoWAV.Init\n"
                      "CDtoWAV.DriveCount\nCDtoWAV.DriveName(1)\nCDtoWAV.DriveName(2)\n"
                      "CDtoWAV.SelectDrive(1)\n"
                      "CDtoWAV.Init\n"
                      "CDtoWAV.SelectDrive(2)\n"
                      "CdBase1.ContactIdentity = user@host\n"
                      "CdBase1.Device = default\n"
                      "CdBase1.TimeLimit = 30000\n"
                      "CdBase1.Command = Open\n"
                      "CDtoWAV.TrackCount\n"
                      "CdBase1.TrackTitle(1)\n"
                      "CDtoWAV.TrackLength(1)\n"
                      "CDtoWAV.TrackLength(1)\n"
                      "CDWriter.WriteSpeed = 8\n"
                      "CDWriter.CloseDisc = True\n"
                      "CDWriter.Simulate = False\n"
                      "CDWriter.AutoEject = False\n"
                      "CDWriter.SelectDrive(1)\n"
                      "CDWriter.SetWriterType(5)\n");
    CHECK(w.platform.boxes.shown.empty());
}

TEST_CASE("A load asks for the keys of a saved section in this order")
{
    struct Row {
        const char* section;
        std::map<Text, Text> values;
        Text keys;
    };
    const Row rows[] = {
        {section::encoder, encoderValues,
         [] {
             Text keys = "Settings Saved ";
             for (int button = 0; button <= 14; ++button)
                 keys += "Bitrate ";
             return keys + "Sample Frequency SaveDrive SaveDirectory SaveDirectory ";
         }()},
        {section::decoder, decoderValues, "Settings Saved SaveDrive SaveDirectory SaveDirectory "},
        {section::cdToWav, cdToWavValues,
         "Settings Saved FileNames SaveDrive SaveDirectory CD Drive SaveDirectory FileNames Access CDDB "
         "Settings Saved CD Drive "},
        {section::wavToCd, wavToCdValues,
         [] {
             Text keys = "Settings Saved ";
             for (int button = 0; button <= 9; ++button)
                 keys += "Write Speed ";
             return keys + "Close Disc Simulate Writing Auto Eject Selected CD Writer CD Writer Type "
                           "CD Writer Type ";
         }()},
    };
    for (const auto& row : rows) {
        CAPTURE(row.section);
        Workshop w;
        w.save(row.section, row.values);
        w.load();
        Text keys;
        const Text start = Text(row.section) + "/";
        for (const auto& read : w.platform.store.reads)
            if (read.starts_with(start))
                keys += read.substr(start.size()) + " ";
        CHECK(keys == row.keys);
    }
}

TEST_CASE("The values of all sections reach the dialog, the workbench and the engines")
{
    Workshop w;
    saveAll(w);
    w.load();
    CHECK(chosenBitrate(w) == "192000");
    CHECK(w.settings.bitrateText == "192000");
    CHECK(w.settings.SetEncSF2.Value());
    CHECK_FALSE(w.settings.SetEncSF1.Value());
    CHECK(w.settings.sampleFrequencyText == "1");
    CHECK(w.settings.halfSampleRate);
    CHECK(w.settings.Dir1.Path() == "/usr");
    CHECK(w.workbench.outputdir.Caption() == "/usr");
    CHECK(w.settings.Dir2.Path() == "/usr");
    CHECK(w.workbench.outputdir2.Caption() == "/usr");
    CHECK(w.settings.Dir3.Path() == "/usr");
    CHECK(w.workbench.CDtoWAVsavedir.Caption() == "/usr");
    CHECK(w.settings.CDDrives.ListIndex() == 1);
    CHECK(w.settings.chkCDDB.Value() == 0);
    CHECK(w.workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(chosenSpeed(w) == "8");
    CHECK(w.settings.writeSpeed == 8);
    CHECK(w.settings.SetWAVtoCDclosedisc.Value() == 1);
    CHECK(w.settings.SetWAVtoCDtestmode.Value() == 0);
    CHECK(w.settings.SetWAVtoCDautoeject.Value() == 0);
    CHECK(w.settings.SetWAVtoCDwritertype.Text() == "5");
}

TEST_CASE("Each section decides alone, by exactly yes")
{
    for (const Text mark : {"", "YES", "Yes", "yes ", "no", "1"}) {
        CAPTURE(mark);
        Workshop w;
        saveAll(w);
        w.store(section::encoder, key::settingsSaved, mark);
        w.load();
        CHECK(chosenBitrate(w) == "128000");
        CHECK(w.workbench.outputdir.Caption() == "/");
        CHECK(w.workbench.outputdir2.Caption() == "/usr");
        CHECK(w.workbench.CDtoWAVsavedir.Caption() == "/usr");
        CHECK(chosenSpeed(w) == "8");
        const auto& reads = w.platform.store.reads;
        CHECK(std::find(reads.begin(), reads.end(), "Encoder Settings/Bitrate") == reads.end());
    }
}

TEST_CASE("A saved section beside unsaved ones")
{
    struct Row {
        const char* section;
        std::map<Text, Text> values;
        Text directories; // of the three flows
        Text bitrate, speed;
    };
    const Row rows[] = {
        {section::encoder, encoderValues, "/usr / /", "192000", "1"},
        {section::decoder, decoderValues, "/ /usr /", "128000", "1"},
        {section::cdToWav, cdToWavValues, "/ / /usr", "128000", "1"},
        {section::wavToCd, wavToCdValues, "/ / /", "128000", "8"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.section);
        Workshop w;
        w.save(row.section, row.values);
        w.load();
        CHECK(w.workbench.outputdir.Caption() + " " + w.workbench.outputdir2.Caption() + " " +
                  w.workbench.CDtoWAVsavedir.Caption() ==
              row.directories);
        CHECK(chosenBitrate(w) == row.bitrate);
        CHECK(chosenSpeed(w) == row.speed);
    }
}

TEST_CASE("Each stored bit rate finds its button")
{
    for (const auto rate : {320000, 256000, 224000, 192000, 160000, 128000, 112000, 96000, 80000, 64000,
                            56000, 48000, 40000, 32000}) {
        CAPTURE(rate);
        Workshop w;
        w.save(section::encoder, with(encoderValues, key::bitrate, textOf(rate)));
        w.load();
        CHECK(chosenBitrate(w) == textOf(rate));
        CHECK(w.settings.bitrateText == textOf(rate));
        CHECK(w.encoder().bitrate == rate);
    }
}

TEST_CASE("A bit rate without a button leaves the buttons and goes to the encoder all the same")
{
    for (const Text rate : {"100000", "1", "-320000", "0"}) {
        CAPTURE(rate);
        Workshop w;
        w.save(section::encoder, with(encoderValues, key::bitrate, "64000"));
        w.load();
        w.store(section::encoder, key::bitrate, rate);
        CHECK(w.load().starts_with("Mp3Encoder1.Bitrate = " + rate + "\n"));
        CHECK(chosenBitrate(w) == "64000");
        CHECK(w.settings.bitrateText == "64000");
    }
    Workshop fresh([](FakePlatform& platform) {
        platform.store.values[{section::encoder, key::settingsSaved}] = "yes";
        platform.store.values[{section::encoder, key::bitrate}] = "100000";
    });
    CHECK(chosenBitrate(fresh).empty());
    CHECK(fresh.settings.bitrateText.empty());
    CHECK(fresh.encoder().bitrate == 100000);
}

TEST_CASE("Any spelling of a bit rate's number finds its button")
{
    for (const Text rate : {" 96000 ", "+96000", "9.6e4", "96000.0"}) {
        CAPTURE(rate);
        Workshop w;
        w.save(section::encoder, with(encoderValues, key::bitrate, rate));
        w.load();
        CHECK(chosenBitrate(w) == "96000");
        CHECK(w.settings.bitrateText == "96000");
    }
}

TEST_CASE("An unusable bit rate presses all fourteen buttons, one after the other, and the last one stays")
{
    for (const auto& rate : unusable) {
        CAPTURE(rate);
        Workshop w;
        w.save(section::encoder, with(encoderValues, key::bitrate, rate));
        Text pressed;
        for (const auto& row : w.settings.bitrateButtons)
            row.button.Click.calls([&pressed, &row] { pressed += textOf(row.bitsPerSecond) + " "; });
        const Text calls = w.load();
        CHECK(pressed ==
              "320000 256000 224000 192000 160000 128000 112000 96000 80000 64000 56000 48000 40000 "
              "32000 ");
        CHECK(chosenBitrate(w) == "32000");
        CHECK(calls.find("Bitrate") == Text::npos); // the engine does not take it
        CHECK(w.workbench.outputdir.Caption() == "/usr");
    }
}

TEST_CASE("Any sample frequency but 0 means 22 kHz, and an unusable one means 44")
{
    struct Row {
        Text stored;
        bool half;
    };
    const Row rows[] = {
        {"0", false}, {" 0 ", false},    {"0.0", false},   {"-0", false},   {"1", true},
        {"44", true}, {"22", true},      {"-1", true},     {"0.001", true}, {"", false},
        {"x", false}, {"44 kHz", false}, {"1e999", false},
    };
    for (const auto& row : rows) {
        CAPTURE(row.stored);
        Workshop w;
        w.save(section::encoder, with(encoderValues, key::sampleFrequency, row.half ? "0" : "1"));
        w.load();
        w.store(section::encoder, key::sampleFrequency, row.stored);
        CHECK(w.load().find(row.half ? "HalfSampleRate = True" : "HalfSampleRate = False") != Text::npos);
        CHECK(w.settings.SetEncSF1.Value() == !row.half);
        CHECK(w.settings.SetEncSF2.Value() == row.half);
        CHECK(w.settings.halfSampleRate == row.half);
        CHECK(w.settings.sampleFrequencyText == (row.half ? "1" : "0"));
    }
}

TEST_CASE(
    "A drive or a directory that is gone leaves the lists where they were; the label gets the stored path")
{
    struct Section {
        const char* name;
        std::map<Text, Text> values;
        ctl::DriveListBox Settings::*drive;
        ctl::DirListBox Settings::*directory;
        ctl::Label Mp3Encoder::*label;
    };
    const Section sections[] = {
        {section::encoder, encoderValues, &Settings::Drive1, &Settings::Dir1, &Mp3Encoder::outputdir},
        {section::decoder, decoderValues, &Settings::Drive2, &Settings::Dir2, &Mp3Encoder::outputdir2},
        {section::cdToWav, cdToWavValues, &Settings::Drive3, &Settings::Dir3, &Mp3Encoder::CDtoWAVsavedir},
    };
    struct Row {
        Text what, drive, directory, driveAfter, directoryAfter;
    };
    const Row rows[] = {
        {"neither drive nor directory", "/gone", "/gone/too", "/", "/usr"},
        {"a drive that is gone, a directory that stands", "/gone", "/etc", "/", "/etc"},
        {"an empty directory", "/", "", "/", "/usr"},
        {"a file", "/", "/etc/passwd", "/", "/usr"},
        {"a drive that is offered and is no folder", "/no/folder", "/gone", "/no/folder", "/usr"},
    };
    for (const auto& s : sections)
        for (const auto& row : rows) {
            CAPTURE(s.name);
            CAPTURE(row.what);
            Workshop w([](FakePlatform& platform) {
                platform.scriptedDrives.drives.push_back({"/no/folder", ""});
            });
            w.save(s.name, s.values);
            w.load();
            w.store(s.name, key::saveDrive, row.drive);
            w.store(s.name, key::saveDirectory, row.directory);
            w.load();
            CHECK((w.settings.*s.drive).Drive() == row.driveAfter);
            CHECK((w.settings.*s.directory).Path() == row.directoryAfter);
            CHECK((w.workbench.*s.label).Caption() == row.directory);
        }
}

TEST_CASE("The label takes the stored path as it is written, not as the list shows it")
{
    Workshop w;
    w.save(section::encoder, with(encoderValues, key::saveDirectory, "/usr/"));
    w.load();
    CHECK(w.settings.Dir1.Path() == "/usr");
    CHECK(w.workbench.outputdir.Caption() == "/usr/");
}

TEST_CASE("The lists of the dialog are loaded, not those that the workbench has under the same names")
{
    Workshop w;
    const Text folder = w.workbench.Dir1.Path();
    saveAll(w);
    w.load();
    CHECK(w.settings.Dir1.Path() == "/usr");
    CHECK(w.workbench.Dir1.Path() == folder);
    CHECK(w.workbench.Dir2.Path() == folder);
    CHECK(w.workbench.Drive1.Drive() == "/");
}

TEST_CASE("A stored drive moves the directory list there first, the stored directory then away again")
{
    const TemporaryFolder drive;
    Workshop w([&](FakePlatform& platform) {
        platform.scriptedDrives.drives.push_back({drive.path(), "D"});
    });
    w.save(section::decoder, {{key::saveDrive, drive.path()}, {key::saveDirectory, "/usr"}});
    Text went;
    w.settings.Dir2.Change.calls([&] { went += w.settings.Dir2.Path() + " "; });
    w.load();
    CHECK(went == drive.path() + " /usr ");
}

TEST_CASE("The beginning of the file names goes to the workbench; the text box shows the branch's own text")
{
    struct Row {
        Text what, names, cddb;
        Text shown, label, access;
        bool enabled;
        std::int32_t drive; // the row that is selected; "CD Drive" is 2
    };
    const Row rows[] = {
        {"numbers", "My song ", "0", "Track", "My song ", "0", true, 1},
        {"titles", "My song ", "1", "Track - Artist - Title", "My song ", "1", false, 0},
        {"no beginning", "", "0", "Track", "", "0", true, 1},
        {"a fraction that rounds down", "x", "0.5", "Track", "x", "0", true, 1},
        {"a fraction that rounds up", "x", "0.6", "Track - Artist - Title", "x", "1", false, 0},
        {"no number", "x", "yes", "Track", "x", "0", true, 1},
        {"nothing", "x", "", "Track", "x", "0", true, 1},
        {"neither 0 nor 1", "x", "2", "Track", "x", "0", true, 1},
        {"a truth value", "x", "-1", "Track", "x", "0", true, 1},
        {"too great", "x", "99999", "Track", "x", "0", true, 1},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Workshop w;
        w.save(section::cdToWav,
               with(with(cdToWavValues, key::fileNames, row.names), key::accessCddb, row.cddb));
        w.load();
        CHECK(w.settings.SetCDtoWavTB.Text() == row.shown);
        CHECK(w.settings.SetCDtoWavTB.Enabled() == row.enabled);
        CHECK(w.workbench.CDtoWAVTB.Caption() == row.label);
        CHECK(w.workbench.AccessCDDB_OK.Caption() == row.access);
        CHECK(w.settings.CDDrives.ListIndex() == row.drive);
    }
}

TEST_CASE("An unusable choice of titles keeps the one of before, and the last branch goes by that")
{
    Workshop w;
    w.save(section::cdToWav, with(cdToWavValues, key::accessCddb, "1"));
    w.load();
    w.store(section::cdToWav, key::accessCddb, "maybe");
    w.load();
    CHECK(w.settings.chkCDDB.Value() == 1);
    CHECK(w.workbench.AccessCDDB_OK.Caption() == "1");
    CHECK(w.settings.SetCDtoWavTB.Text() == "Track - Artist - Title");
    CHECK_FALSE(w.settings.SetCDtoWavTB.Enabled());
    CHECK(w.settings.CDDrives.ListIndex() == 0);
}

TEST_CASE("The text box shows the stored beginning on the way, before the branch overwrites it")
{
    Workshop w;
    w.save(section::cdToWav, cdToWavValues);
    Text shown;
    w.settings.SetCDtoWavTB.Change.calls([&] { shown += w.settings.SetCDtoWavTB.Text() + "|"; });
    w.load();
    CHECK(shown == "My song |Track|");
    w.settings.SetCDtoWAVApp.Click.raise();
    CHECK(w.stored(section::cdToWav, key::fileNames) == "Track");
    CHECK(w.workbench.CDtoWAVTB.Caption() == "My song ");
}

TEST_CASE("The stored CD drive counts from 1, the list from 0, and what the list has not is left out")
{
    struct Row {
        Text what, stored;
        std::int32_t row;
        Text clicks; // of the list
    };
    const Row rows[] = {
        {"the first", "1", 0, "0 "},
        {"the second", "2", 1, "1 "},
        {"none", "0", -1, ""},
        {"past the end", "3", -1, ""},
        {"before the start", "-5", -1, ""},
        {"a fraction", "1.4", 0, "0 "},
        {"half a drive: to even", "1.5", 0, "0 "},
        {"no number", "D:", -1, ""},
        {"nothing", "", -1, ""},
        {"far too great", "1e300", -1, ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Workshop w;
        w.save(section::cdToWav, with(cdToWavValues, key::cdDrive, row.stored));
        Text clicks;
        w.settings.CDDrives.Click.calls([&] { clicks += textOf(w.settings.CDDrives.ListIndex()) + " "; });
        w.load();
        CHECK(w.settings.CDDrives.ListIndex() == row.row);
        CHECK(clicks == row.clicks);
    }
}

TEST_CASE("Each stored speed finds its button")
{
    for (const std::int32_t speed : {1, 2, 4, 6, 8, 10, 12, 14, 16}) {
        CAPTURE(speed);
        Workshop w;
        w.save(section::wavToCd, with(wavToCdValues, key::writeSpeed, textOf(speed)));
        w.load();
        CHECK(chosenSpeed(w) == textOf(speed));
        CHECK(w.settings.writeSpeed == speed);
        CHECK(w.platform.CDWriter->speed == speed);
    }
}

TEST_CASE("A speed without a button leaves the buttons and goes to the writer all the same")
{
    Workshop w([](FakePlatform& platform) {
        platform.store.values[{section::wavToCd, key::settingsSaved}] = "yes";
        platform.store.values[{section::wavToCd, key::writeSpeed}] = "3";
    });
    CHECK(chosenSpeed(w).empty());
    CHECK(w.settings.writeSpeed == 0);
    CHECK(w.platform.CDWriter->speed == 3);
}

TEST_CASE("An unusable speed presses all nine buttons, and the last one stays")
{
    for (const auto& speed : unusable) {
        CAPTURE(speed);
        Workshop w;
        w.save(section::wavToCd, with(wavToCdValues, key::writeSpeed, speed));
        w.settings.SetWAVtoCDSpeed16x.setValue(true); // one that is on already would not be pressed again
        Text pressed;
        for (const auto& row : w.settings.speedButtons)
            row.button.Click.calls([&pressed, &row] { pressed += textOf(std::int32_t{row.factor}) + " "; });
        CHECK(w.load().find("WriteSpeed") == Text::npos);
        CHECK(pressed == "1 2 4 6 8 10 12 14 16 ");
        CHECK(chosenSpeed(w) == "16");
    }
}

TEST_CASE("Only 1 ticks a writing option, and an unusable value counts as 1")
{
    struct Option {
        const char* key;
        const char* engine;
        ctl::CheckBox Settings::*box;
    };
    const Option options[] = {
        {key::closeDisc, "CDWriter.CloseDisc", &Settings::SetWAVtoCDclosedisc},
        {key::simulateWriting, "CDWriter.Simulate", &Settings::SetWAVtoCDtestmode},
        {key::autoEject, "CDWriter.AutoEject", &Settings::SetWAVtoCDautoeject},
    };
    struct Row {
        Text stored;
        bool ticked;
    };
    std::vector<Row> rows = {{"1", true},  {"1.0", true}, {" 1 ", true}, {"0", false},
                             {"2", false}, {"-1", false}, {"0.9", false}};
    for (const auto& text : unusable)
        rows.push_back({text, true});
    for (const auto& option : options)
        for (const auto& row : rows) {
            CAPTURE(option.key);
            CAPTURE(row.stored);
            Workshop w;
            auto values = wavToCdValues;
            for (const auto* each : {key::closeDisc, key::simulateWriting, key::autoEject})
                values[each] = "0";
            w.save(section::wavToCd, with(values, option.key, row.ticked ? "0" : "1"));
            w.load();
            w.store(section::wavToCd, option.key, row.stored);
            const Text calls = w.load();
            CHECK(calls.find(Text(option.engine) + (row.ticked ? " = True" : " = False")) != Text::npos);
            CHECK((w.settings.*option.box).Value() == (row.ticked ? 1 : 0));
        }
}

TEST_CASE("Both closing and simulating stored: the engine gets both, the boxes keep each other out")
{
    Workshop w;
    w.save(section::wavToCd, with(wavToCdValues, key::simulateWriting, "1"));
    const Text calls = w.load();
    CHECK(calls.find("CDWriter.CloseDisc = True\nCDWriter.Simulate = True\n") != Text::npos);
    CHECK(w.settings.SetWAVtoCDclosedisc.Value() == 0);
    CHECK_FALSE(w.settings.SetWAVtoCDclosedisc.Enabled());
    CHECK(w.settings.SetWAVtoCDtestmode.Value() == 1);
    CHECK(w.settings.SetWAVtoCDtestmode.Enabled());
}

TEST_CASE("An unusable writer or type is left out; the type's text is shown whatever it is")
{
    struct Row {
        Text what, writer, type, calls;
    };
    const Row rows[] = {
        {"both usable", "1", "5", "CDWriter.SelectDrive(1)\nCDWriter.SetWriterType(5)\n"},
        {"fractions", "0.5", "2.5", "CDWriter.SelectDrive(0)\nCDWriter.SetWriterType(2)\n"},
        {"no writer", "", "5", "CDWriter.SetWriterType(5)\n"},
        {"no type", "1", "five", "CDWriter.SelectDrive(1)\n"},
        {"too great", "99999", "40000", ""},
        {"negative", "-1", "-1", "CDWriter.SelectDrive(-1)\nCDWriter.SetWriterType(-1)\n"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Workshop w;
        w.save(section::wavToCd,
               with(with(wavToCdValues, key::selectedWriter, row.writer), key::writerType, row.type));
        CHECK(w.load().ends_with("CDWriter.AutoEject = False\n" + row.calls));
        CHECK(w.settings.SetWAVtoCDwritertype.Text() == row.type);
        CHECK(w.settings.selectedWriter == 0); // these two never come from the store
        CHECK(w.settings.writerType == 0);
    }
}

TEST_CASE("A store full of nonsense still loads to the end, without a word")
{
    Workshop w;
    for (const auto* name : {section::encoder, section::decoder, section::cdToWav, section::wavToCd}) {
        w.save(name, {});
        for (const auto* each :
             {key::bitrate, key::sampleFrequency, key::saveDrive, key::saveDirectory, key::cdDrive,
              key::fileNames, key::accessCddb, key::selectedWriter, key::writeSpeed, key::closeDisc,
              key::simulateWriting, key::autoEject, key::writerType})
            w.store(name, each, "\xFF nonsense");
    }
    w.load();
    CHECK(w.platform.boxes.shown.empty());
    CHECK_FALSE(w.program.error().Visible());
    CHECK(w.workbench.outputdir.Caption() == "\xFF nonsense");
    CHECK(w.workbench.CDtoWAVTB.Caption() == "\xFF nonsense");
    CHECK(w.settings.SetWAVtoCDwritertype.Text() == "\xFF nonsense");
}

TEST_CASE("A load discards what was changed and left with Cancel, and gives the engines their values again")
{
    Workshop w;
    saveAll(w);
    w.load();
    w.settings.SetEncBitr1.setValue(true);
    w.settings.SetEncSF1.setValue(true);
    w.settings.Dir1.setPath("/etc");
    w.settings.SetEncCan.Click.raise();
    const Text calls = w.load();
    CHECK(chosenBitrate(w) == "192000");
    CHECK(w.settings.bitrateText == "192000");
    CHECK(w.settings.SetEncSF2.Value());
    CHECK(w.settings.Dir1.Path() == "/usr");
    CHECK(calls.find("Mp3Encoder1.Bitrate = 192000") != Text::npos);
}

TEST_CASE("A load writes nothing to the store")
{
    Workshop w;
    CHECK(w.load().find("Store.") == Text::npos);
    saveAll(w);
    CHECK(w.load().find("Store.") == Text::npos);
}

TEST_CASE("A load that finds the controls as they are marks nothing as changed but the drive list")
{
    Workshop w;
    saveAll(w);
    w.load();
    w.setApplyButtons(false);
    w.load();
    CHECK(w.applyButtons() == "0010"); // the CD drives are listed and selected anew
}
