// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog's frame, its load, and the tabs of the encoder and the decoder.
#include "platform/failure.h"
#include "support/temporary_folder.h"
#include "support/widgets.h"
#include "support/workshop.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QTabWidget>
#include <doctest/doctest.h>

namespace
{

// The tabs whose output folder counts at once.
struct Tab {
    const char* section;
    int index;
    ctl::CommandButton Settings::*apply;
    ctl::CommandButton Settings::*ok;
    ctl::CommandButton Settings::*cancel;
    ctl::DriveListBox Settings::*drive;
    ctl::DirListBox Settings::*directory;
    ctl::Label Mp3Encoder::*label;
    Text unchanged; // what an OK stores of the defaults
};

const Tab tabs[] = {
    {section::encoder, 0, &Settings::SetEncApp, &Settings::SetEncOK, &Settings::SetEncCan, &Settings::Drive1,
     &Settings::Dir1, &Mp3Encoder::outputdir,
     "Bitrate = 128000, Sample Frequency = 0, SaveDirectory = /, SaveDrive = /, Settings Saved = yes, "},
    {section::decoder, 1, &Settings::SetDecApp, &Settings::SetDecOK, &Settings::SetDecCan, &Settings::Drive2,
     &Settings::Dir2, &Mp3Encoder::outputdir2, "SaveDirectory = /, SaveDrive = /, Settings Saved = yes, "},
};

// Every key of a section that stands in the store, sorted.
Text storedKeys(Workshop& w, const Text& section)
{
    Text text;
    for (const auto& [place, value] : w.platform.store.values)
        if (place.first == section)
            text += place.second + " = " + value + ", ";
    return text;
}

Text only(int tab)
{
    Text text = "0000";
    text[static_cast<std::size_t>(tab)] = '1';
    return text;
}

// The dialog open and clean.
struct Opened : Workshop {
    using Workshop::Workshop;

    void open()
    {
        settings.Show();
        setApplyButtons(false);
        calls();
    }
};

}

TEST_CASE("The dialog has these tabs")
{
    Workshop w;
    CHECK(w.settings.Caption() == "Settings");
    auto& widget = *widgetOf<QTabWidget>(w.settings, "SettingsTab");
    REQUIRE(widget.count() == 4);
    CHECK(widget.tabText(0) == "Mp3 Encoder");
    CHECK(widget.tabText(1) == "Mp3 Decoder");
    CHECK(widget.tabText(2) == "CD => WAV");
    CHECK(widget.tabText(3) == "WAV => CD");
}

TEST_CASE("Each control stands on its tab, under its caption, and these start disabled")
{
    struct Row {
        int tab;
        const char* name;
        const char* caption; // null: it has none
        bool enabled = true;
    };
    const Row rows[] = {
        {0, "frmSetEncBitr", "Bitrate (kbits/sec)"},
        {0, "SetEncBitr1", "320"},
        {0, "SetEncBitr2", "256"},
        {0, "SetEncBitr3", "224"},
        {0, "SetEncBitr4", "192"},
        {0, "SetEncBitr5", "160"},
        {0, "SetEncBitr6", "128"},
        {0, "SetEncBitr7", "112"},
        {0, "SetEncBitr8", "96"},
        {0, "SetEncBitr9", "80"},
        {0, "SetEncBitr10", "64"},
        {0, "SetEncBitr11", "56"},
        {0, "SetEncBitr12", "48"},
        {0, "SetEncBitr13", "40"},
        {0, "SetEncBitr14", "32"},
        {0, "frmSetEncSF", "Sample Frequency (kHz)"},
        {0, "SetEncSF1", "44"},
        {0, "SetEncSF2", "22"},
        {0, "SetEncSaveDir", "Where do you want the mp3s to be saved?"},
        {0, "Drive1", nullptr},
        {0, "Dir1", nullptr},
        {0, "SetEncOK", "&OK"},
        {0, "SetEncApp", "&Apply", false},
        {0, "SetEncCan", "&Cancel"},
        {1, "Frame1", "Where do you want the .wav files to be saved?"},
        {1, "Drive2", nullptr},
        {1, "Dir2", nullptr},
        {1, "SetDecOK", "&OK"},
        {1, "SetDecApp", "&Apply", false},
        {1, "SetDecCan", "&Cancel"},
        {2, "frmCDDrive", "Select Your CD Drive"},
        {2, "CDDrives", nullptr},
        {2, "SetCDtoWAVFNB", "With what should the filenames begin?"},
        {2, "SetCDtoWavTB", nullptr},
        {2, "chkCDDB", "Get track titles from CDDB"},
        {2, "SetCDtoWAVSaveDir", "Where do you want the .wav files to be saved?"},
        {2, "Drive3", nullptr},
        {2, "Dir3", nullptr},
        {2, "SetCDtoWAVOK", "&OK"},
        {2, "SetCDtoWAVApp", "&Apply", false},
        {2, "SetCDtoWAVCan", "&Cancel"},
        {3, "frmWAVtoCDcddrives", "CD Drives"},
        {3, "SetWAVtoCDcddrives", nullptr, false},
        {3, "frmWAVtoCDdetectedcdwriter", "Detected CD Writer"},
        {3, "SetWAVtoCDcdwriter", nullptr, false},
        {3, "lblSetWAVtoCDcdwritertype", nullptr},
        {3, "SetWAVtoCDwritertype", nullptr, false},
        {3, "SetWAVtoCDcdwrSetwrtype", "Set CD Writer Type", false},
        {3, "frmWAVtoCDwritespeed", "Write Speed"},
        {3, "SetWAVtoCDSpeed1x", "1 \u00D7"},
        {3, "SetWAVtoCDSpeed2x", "2 \u00D7"},
        {3, "SetWAVtoCDSpeed4x", "4 \u00D7"},
        {3, "SetWAVtoCDSpeed6x", "6 \u00D7"},
        {3, "SetWAVtoCDSpeed8x", "8 \u00D7"},
        {3, "SetWAVtoCDSpeed10x", "10 \u00D7"},
        {3, "SetWAVtoCDSpeed12x", "12 \u00D7"},
        {3, "SetWAVtoCDSpeed14x", "14 \u00D7"},
        {3, "SetWAVtoCDSpeed16x", "16 \u00D7"},
        {3, "Frame10", "Options"},
        {3, "SetWAVtoCDclosedisc", "Close Disc"},
        {3, "SetWAVtoCDtestmode", "Simulate Writing"},
        {3, "SetWAVtoCDautoeject", "Auto Eject"},
        {3, "SetWAVtoCDOK", "&OK"},
        {3, "SetWAVtoCDApp", "&Apply", false},
        {3, "SetWAVtoCDCan", "&Cancel"},
    };
    Workshop w;
    auto& widget = *widgetOf<QTabWidget>(w.settings, "SettingsTab");
    for (const auto& row : rows) {
        CAPTURE(row.name);
        auto* control = widget.widget(row.tab)->findChild<QWidget*>(row.name);
        REQUIRE(control);
        if (auto* button = qobject_cast<QAbstractButton*>(control); button && row.caption)
            CHECK(button->text() == row.caption);
        if (auto* frame = qobject_cast<QGroupBox*>(control); frame && row.caption)
            CHECK(frame->title() == row.caption);
        CHECK(control->isEnabled() == row.enabled);
    }
    CHECK(w.settings.lblSetWAVtoCDcdwritertype.Caption() == "CD Writer Type:");
    CHECK(w.settings.SetWAVtoCDcdwriter.ToolTipText() == "automatic selected CD writer");
}

TEST_CASE("The dialog's load lists the drives once more after the settings, then looks for the writer")
{
    Player p([](FakePlatform& platform) {
        platform.store.values[{section::wavToCd, key::hasWriter}] = "yes";
        platform.onACDWRITE = [](RecordingACDWRITE& writer) { writer.writers = {{"A writer", 5}}; };
    });
    p.program.settings();
    CHECK(p.platform.log.count("Mp3Encoder1.Bitrate = 128000") == 1);
    const Text calls = p.calls();
    CAPTURE(calls);
    CHECK(calls.ends_with("CDWriter.AutoEject = True\n" // the last of the settings
                          "CDtoWAV.Init\nCDtoWAV.DriveCount\nCDtoWAV.DriveName(1)\nCDtoWAV.DriveName(2)\n"
                          "CDtoWAV.SelectDrive(1)\n"
                          "CDWriter.Init\nCDWriter.DriveCount\nCDWriter.DriveName(0)\nCDWriter.DriveCount\n"
                          "CDWriter.SelectDrive(0)\nCDWriter.WriterType\nCDWriter.SetWriterType(5)\n"
                          "CDWriter.WriterType\nCDWriter.DriveName(0)\n"));
    CHECK(p.program.settings().SetWAVtoCDcdwriter.Text() == "A writer");
    CHECK(p.program.settings()
              .SetWAVtoCDApp.Enabled()); // the find marks its tab, behind the load's own cleaning
}

TEST_CASE("The dialog's own load leaves no CD drive selected, although the settings had selected one")
{
    Workshop w;
    CHECK(w.settings.CDDrives.ListCount() == 2);
    w.load();
    CHECK(w.settings.CDDrives.ListIndex() == 0);

    Player p([](FakePlatform& platform) {
        platform.store.values[{section::wavToCd, key::hasWriter}] = "no";
    });
    p.platform.mainMenu->choose(19);
    CHECK(p.program.settings().CDDrives.ListCount() == 2);
    CHECK(p.program.settings().CDDrives.ListIndex() == -1);
}

TEST_CASE("A saved writer is selected in the list of drives, where the list has it")
{
    struct Row {
        Text what, saved, writer;
        std::int32_t row;
    };
    const Row rows[] = {
        {"the second", "yes", "1", 1},           {"the first", "yes", "0", 0},
        {"past the list's end", "yes", "7", -1}, {"no number", "yes", "x", -1},
        {"nothing stored", "yes", "", -1},       {"a section that is not saved", "", "1", -1},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Player p([&](FakePlatform& platform) {
            auto& values = platform.store.values;
            values[{section::wavToCd, key::hasWriter}] = "yes";
            values[{section::wavToCd, key::settingsSaved}] = row.saved;
            values[{section::wavToCd, key::selectedWriter}] = row.writer;
            platform.onACDWRITE = [](RecordingACDWRITE& writer) {
                writer.writers = {{"One", 0}, {"Two", 5}};
            };
        });
        CHECK(p.program.settings().SetWAVtoCDcddrives.ListIndex() == row.row);
    }
}

TEST_CASE("A step that fails does not end the dialog's load")
{
    Player p([](FakePlatform& platform) {
        platform.store.values[{section::wavToCd, key::hasWriter}] = "yes";
        platform.onACD = [](RecordingACD& reader) { reader.drives.clear(); }; // the defaults select row 0
        platform.onACDWRITE = [](RecordingACDWRITE& writer) { writer.writers = {{"A writer", 5}}; };
    });
    CHECK(succeeds([&] { p.program.settings(); }));
    auto& settings = p.program.settings();
    for (int tab = 0; tab < 3; ++tab)
        CHECK_FALSE(settings.applyButton(tab).Enabled());
    CHECK(settings.SetWAVtoCDcdwriter.Text() == "A writer");
    CHECK(p.platform.log.count("CDWriter.Init") == 1);
}

TEST_CASE("Each of the fourteen bit rates is chosen by its button")
{
    struct Row {
        const char* name;
        Text text;
    };
    const Row rows[] = {
        {"SetEncBitr1", "320000"}, {"SetEncBitr2", "256000"}, {"SetEncBitr3", "224000"},
        {"SetEncBitr4", "192000"}, {"SetEncBitr5", "160000"}, {"SetEncBitr6", "128000"},
        {"SetEncBitr7", "112000"}, {"SetEncBitr8", "96000"},  {"SetEncBitr9", "80000"},
        {"SetEncBitr10", "64000"}, {"SetEncBitr11", "56000"}, {"SetEncBitr12", "48000"},
        {"SetEncBitr13", "40000"}, {"SetEncBitr14", "32000"},
    };
    Opened w;
    w.settings.SetEncBitr14.setValue(true);
    w.open();
    for (const auto& row : rows) {
        CAPTURE(row.name);
        w.setApplyButtons(false);
        widgetOf<QAbstractButton>(w.settings, row.name)->click();
        CHECK(w.settings.bitrateText == row.text);
        CHECK(w.applyButtons() == only(0));
        int on = 0;
        for (const auto& each : w.settings.bitrateButtons)
            on += each.button.Value() ? 1 : 0;
        CHECK(on == 1);
    }
    CHECK(w.calls().empty());
}

TEST_CASE("Each of the two sample frequencies is chosen by its button")
{
    Opened w;
    w.open();
    for (const bool half : {true, false}) {
        CAPTURE(half);
        w.setApplyButtons(false);
        widgetOf<QAbstractButton>(w.settings, half ? "SetEncSF2" : "SetEncSF1")->click();
        CHECK(w.settings.halfSampleRate == half);
        CHECK(w.settings.sampleFrequencyText == (half ? "1" : "0"));
        CHECK(w.applyButtons() == only(0));
    }
    CHECK(w.settings.SetEncBitr6.Value()); // the frequencies are a group of their own
    CHECK(w.calls().empty());
}

TEST_CASE("A button that is chosen already raises nothing, by hand or from code")
{
    Opened w;
    w.open();
    widgetOf<QAbstractButton>(w.settings, "SetEncBitr6")->click();
    widgetOf<QAbstractButton>(w.settings, "SetEncSF1")->click();
    w.settings.SetEncBitr6.setValue(true);
    w.settings.SetEncSF1.setValue(true);
    w.settings.Drive1.setDrive("/");
    w.settings.Dir1.setPath(w.settings.Dir1.Path());
    w.settings.Dir2.setPath(w.settings.Dir2.Path());
    CHECK(w.applyButtons() == "0000");
}

TEST_CASE("The button that another one switches off raises nothing")
{
    Opened w;
    Text pressed;
    for (const auto& row : w.settings.bitrateButtons)
        row.button.Click.calls([&pressed, &row] { pressed += Text(row.button.Name()) + " "; });
    w.settings.SetEncBitr2.setValue(true);
    w.settings.SetEncBitr3.setValue(true);
    w.settings.SetEncBitr3.setValue(false);
    CHECK(pressed == "SetEncBitr2 SetEncBitr3 ");
    for (const auto& row : w.settings.bitrateButtons)
        CHECK_FALSE(row.button.Value());
}

TEST_CASE("A drive leads the directory, and either marks its own tab alone")
{
    const TemporaryFolder drive;
    for (const auto& tab : tabs) {
        CAPTURE(tab.section);
        Opened w([&](FakePlatform& platform) {
            platform.scriptedDrives.drives.push_back({drive.path(), "D"});
        });
        w.open();
        (w.settings.*tab.drive).setDrive(drive.path());
        CHECK((w.settings.*tab.directory).Path() == drive.path());
        CHECK(w.applyButtons() == only(tab.index));
        w.setApplyButtons(false);
        (w.settings.*tab.directory).setPath("/usr");
        CHECK((w.settings.*tab.drive).Drive() == drive.path());
        CHECK(w.applyButtons() == only(tab.index));
        CHECK(w.workbench.Dir1.Path() == w.workbench.Dir2.Path());
        CHECK((w.workbench.*tab.label).Caption() == "/");
        CHECK(w.calls().empty());
    }
}

TEST_CASE("A drive that cannot be read is a failure that nobody handles, before the tab is marked")
{
    for (const auto& tab : tabs) {
        CAPTURE(tab.section);
        Opened w([](FakePlatform& platform) {
            platform.scriptedDrives.drives.push_back({"/no/folder", ""});
        });
        w.open();
        int number = 0;
        guarded([&](const Failure& failure) { number = failure.number; },
                [&] { (w.settings.*tab.drive).setDrive("/no/folder"); });
        CHECK(number == 76);
        CHECK((w.settings.*tab.directory).Path() == "/");
        CHECK(w.applyButtons() == "0000");
        CHECK(w.platform.boxes.shown.empty());
    }
}

TEST_CASE("Apply and OK of the encoder store these keys in this order, then give them to the engine")
{
    for (const bool byApply : {true, false}) {
        CAPTURE(byApply);
        Opened w;
        w.open();
        w.settings.SetEncBitr3.setValue(true);
        w.settings.SetEncSF2.setValue(true);
        w.settings.Dir1.setPath("/usr");
        w.settings.Dir2.setPath("/etc"); // the other tab's, not applied
        w.platform.log.onCall = [&](const Text& call) {
            if (call.starts_with("Store."))
                CHECK(w.workbench.outputdir.Caption() == "/");
        };
        (byApply ? w.settings.SetEncApp : w.settings.SetEncOK).Click.raise();
        CHECK(w.calls() == "Store.Encoder Settings/SaveDirectory = /usr\n"
                           "Store.Encoder Settings/Bitrate = 224000\n"
                           "Store.Encoder Settings/Sample Frequency = 1\n"
                           "Store.Encoder Settings/SaveDrive = /\n"
                           "Store.Encoder Settings/Settings Saved = yes\n"
                           "Mp3Encoder1.Bitrate = 224000\n"
                           "Mp3Encoder1.HalfSampleRate = True\n");
        CHECK(w.workbench.outputdir.Caption() == "/usr");
        CHECK(w.workbench.outputdir2.Caption() == "/");
        CHECK(w.settings.Visible() == byApply);
        CHECK(w.settings.SetEncApp.Enabled() == !byApply); // nothing resets it at an OK
    }
}

TEST_CASE("Apply and OK of the decoder store these keys in this order")
{
    for (const bool byApply : {true, false}) {
        CAPTURE(byApply);
        Opened w;
        w.open();
        w.settings.Dir1.setPath("/etc"); // the other tab's, not applied
        w.settings.Dir2.setPath("/usr");
        (byApply ? w.settings.SetDecApp : w.settings.SetDecOK).Click.raise();
        CHECK(w.calls() == "Store.Decoder Settings/SaveDirectory = /usr\n"
                           "Store.Decoder Settings/SaveDrive = /\n"
                           "Store.Decoder Settings/Settings Saved = yes\n");
        CHECK(w.workbench.outputdir2.Caption() == "/usr");
        CHECK(w.workbench.outputdir.Caption() == "/");
        CHECK(w.settings.Visible() == byApply);
        CHECK(w.settings.SetDecApp.Enabled() == !byApply);
    }
}

TEST_CASE("OK without any change writes all keys and marks the section as saved")
{
    for (const auto& tab : tabs) {
        CAPTURE(tab.section);
        Opened w;
        w.open();
        (w.settings.*tab.ok).Click.raise();
        CHECK(storedKeys(w, tab.section) == tab.unchanged);
        CHECK(w.applyButtons() == "0000"); // as it stood
        CHECK_FALSE(w.settings.Visible());
    }
}

TEST_CASE("Cancel hides the dialog; what was changed stays in it, unsaved, until the next load")
{
    for (const auto& tab : tabs) {
        CAPTURE(tab.section);
        Opened w;
        w.open();
        w.settings.SetEncSF2.setValue(true);
        (w.settings.*tab.directory).setPath("/usr");
        const Text apply = w.applyButtons();
        (w.settings.*tab.cancel).Click.raise();
        CHECK(w.calls().empty());
        CHECK_FALSE(w.settings.Visible());
        CHECK(w.settings.SetEncSF2.Value());
        CHECK((w.settings.*tab.directory).Path() == "/usr");
        CHECK((w.workbench.*tab.label).Caption() == "/");
        CHECK(w.applyButtons() == apply);
        w.load();
        CHECK(w.settings.SetEncSF1.Value());
        CHECK((w.settings.*tab.directory).Path() == "/");
    }
}

TEST_CASE("The window manager's close hides the dialog like Cancel")
{
    Opened w;
    w.open();
    w.settings.SetEncSF2.setValue(true);
    w.settings.page()->window()->close();
    CHECK_FALSE(w.settings.Visible());
    CHECK(w.calls().empty());
    CHECK(w.settings.SetEncSF2.Value());
}

TEST_CASE("An Apply leaves the other tabs' marks and sections alone")
{
    for (const auto& tab : tabs) {
        CAPTURE(tab.section);
        Opened w;
        w.open();
        w.setApplyButtons(true);
        (w.settings.*tab.apply).Click.raise();
        Text expected = "1111";
        expected[static_cast<std::size_t>(tab.index)] = '0';
        CHECK(w.applyButtons() == expected);
        for (const auto* other : {section::encoder, section::decoder, section::cdToWav, section::wavToCd})
            CHECK(w.stored(other, key::settingsSaved) == (Text(other) == tab.section ? "yes" : ""));
    }
}

TEST_CASE("With a bit rate that has no button, Apply writes back the text that was there before")
{
    Opened w;
    w.settings.SetEncBitr10.setValue(true);
    w.save(section::encoder, {{key::bitrate, "100000"}, {key::sampleFrequency, "0"}});
    w.load();
    CHECK(w.encoder().bitrate == 100000);
    CHECK(w.settings.bitrateText == "64000");
    w.settings.SetEncApp.Click.raise();
    CHECK(w.stored(section::encoder, key::bitrate) == "64000");
    CHECK(w.encoder().bitrate == 64000);
}

TEST_CASE("With no bit rate ever chosen, Apply stores everything and then fails at the engine")
{
    Opened w([](FakePlatform& platform) {
        platform.store.values[{section::encoder, key::settingsSaved}] = "yes";
        platform.store.values[{section::encoder, key::bitrate}] = "100000";
    });
    w.open();
    w.settings.SetEncApp.setEnabled(true);
    const Text label = w.workbench.outputdir.Caption();
    int number = 0;
    guarded([&](const Failure& failure) { number = failure.number; },
            [&] { w.settings.SetEncApp.Click.raise(); });
    CHECK(number == 13);
    CHECK(w.stored(section::encoder, key::bitrate).empty());
    CHECK(w.stored(section::encoder, key::settingsSaved) == "yes");
    CHECK(w.workbench.outputdir.Caption() == label);
    CHECK(w.settings.SetEncApp.Enabled());
    CHECK(w.platform.boxes.shown.empty());
}

TEST_CASE("What Apply stored comes back with the next load, and in the next run")
{
    Opened w;
    w.open();
    w.settings.SetEncBitr13.setValue(true);
    w.settings.SetEncSF2.setValue(true);
    w.settings.Dir1.setPath("/usr");
    w.settings.Dir2.setPath("/etc");
    w.settings.SetEncApp.Click.raise();
    w.settings.SetDecApp.Click.raise();
    Workshop next([&](FakePlatform& platform) { platform.store.values = w.platform.store.values; });
    for (auto* each : {static_cast<Workshop*>(&w), &next}) {
        each->load();
        CHECK(each->settings.SetEncBitr13.Value());
        CHECK(each->settings.SetEncSF2.Value());
        CHECK(each->settings.Dir1.Path() == "/usr");
        CHECK(each->workbench.outputdir.Caption() == "/usr");
        CHECK(each->settings.Dir2.Path() == "/etc");
        CHECK(each->workbench.outputdir2.Caption() == "/etc");
        CHECK(each->encoder().bitrate == 40000);
    }
}
