// SPDX-License-Identifier: GPL-3.0-or-later
// The window that the four flows share.
#include "platform/failure.h"
#include "support/files.h"
#include "support/temporary_folder.h"
#include "support/widgets.h"
#include "support/workshop.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QTabWidget>
#include <doctest/doctest.h>

#include <filesystem>

namespace
{

struct SettingsButton {
    const char* name;
    ctl::CommandButton Mp3Encoder::*button;
    int tab;
};

const SettingsButton settingsButtons[] = {
    {"EncSettings", &Mp3Encoder::EncSettings, 0},
    {"Command2", &Mp3Encoder::Command2, 1},
    {"EncCDtoWAVSet", &Mp3Encoder::EncCDtoWAVSet, 2},
    {"EncWAVtoCDsettings", &Mp3Encoder::EncWAVtoCDsettings, 3},
};

}

TEST_CASE("The workbench has these tabs")
{
    Workshop w;
    CHECK(w.workbench.Caption() == "Encoder / Decoder / CD => WAV / WAV => CD");
    auto& tabs = *widgetOf<QTabWidget>(w.workbench, "EncDecCDWAVtab");
    REQUIRE(tabs.count() == 4);
    CHECK(tabs.tabText(0) == "Mp3 Encoder");
    CHECK(tabs.tabText(1) == "Mp3 Decoder");
    CHECK(tabs.tabText(2) == "CD => WAV");
    CHECK(tabs.tabText(3) == "WAV => CD");
}

TEST_CASE("Each control stands on its tab, under its caption")
{
    struct Row {
        int tab;
        const char* name;
        const char* caption; // null: it has none
    };
    const Row rows[] = {
        {0, "Drive1", nullptr},
        {0, "Dir1", nullptr},
        {0, "frmSelectEncode", "Select .Wav Files To Encode"},
        {0, "File1", nullptr},
        {0, "StartEncoding", "&Encode"},
        {0, "EncSettings", "&Settings"},
        {0, "ExitEnc", "E&xit"},
        {0, "frmEncNowEnc", "Now Encoding..."},
        {0, "txtEncNowEnc", nullptr},
        {0, "ProgressBarEnc", nullptr},
        {1, "Drive2", nullptr},
        {1, "Dir2", nullptr},
        {1, "Frame1", "Select .Mp3 Files To Decode"},
        {1, "File2", nullptr},
        {1, "Command3", "&Decode"},
        {1, "Command2", "&Settings"},
        {1, "Command1", "E&xit"},
        {1, "Frame2", "Now Decoding..."},
        {1, "txtEncNowDec", nullptr},
        {1, "ProgressBarDec", nullptr},
        {2, "Frame3", "Select CD Tracks"},
        {2, "TracksList", nullptr},
        {2, "butRefresh", "REFRESH"},
        {2, "EncCDtoWAVcommands", nullptr},
        {2, "EncCDtoWAVStart", "&START"},
        {2, "EncCDtoWAVStop", "S&TOP"},
        {2, "EncCDtoWAVSet", "S&ETTINGS"},
        {2, "EncCDtoWAVExit", "E&XIT"},
        {2, "frmEncCDtoWAVprogress", "Progress"},
        {2, "EncCDtoWAVprogressThisTrack", "This Track"},
        {2, "ProgressBarCDtoWAVtt", nullptr},
        {2, "EncCDtoWAVProgressAll", "All Selected Tracks"},
        {2, "ProgressBarCDtoWAVat", nullptr},
        {3, "frmEncWAVtoCDdragndrop", "Drag And Drop Wave-Files Here (44KHz, 16bit, Stereo)"},
        {3, "EncWAVtoCDdragndrop", nullptr},
        {3, "EncWAVtoCDWrite", "&Write CD"},
        {3, "EncWAVtoCDsettings", "&Settings"},
        {3, "EncWAVtoCDExit", "E&xit"},
        {3, "ProgressBarWAVtoCD", nullptr},
    };
    Workshop w;
    auto& tabs = *widgetOf<QTabWidget>(w.workbench, "EncDecCDWAVtab");
    for (const auto& row : rows) {
        CAPTURE(row.name);
        auto* widget = tabs.widget(row.tab)->findChild<QWidget*>(row.name);
        REQUIRE(widget);
        if (auto* button = qobject_cast<QAbstractButton*>(widget); button && row.caption)
            CHECK(button->text() == row.caption);
        if (auto* frame = qobject_cast<QGroupBox*>(widget); frame && row.caption)
            CHECK(frame->title() == row.caption);
        CHECK(widget->isEnabled());
    }
}

TEST_CASE("The hidden controls are nowhere to be seen and hold these values at first")
{
    Workshop w;
    for (const auto* name : {"filename2", "outputdir", "filename22", "outputdir2", "TLCDDB", "AccessCDDB_OK",
                             "CDtoWAVTB", "CDtoWAVsavedir", "pc_len"}) {
        CAPTURE(name);
        CHECK_FALSE(widgetOf<QWidget>(w.workbench, name));
    }
    CHECK(w.workbench.filename22.Text() == "Text1");
    CHECK(w.workbench.filename2.Text().empty());
    CHECK(w.workbench.AccessCDDB_OK.Caption() == "0");
    CHECK(w.workbench.pc_len.Caption() == "100");
    CHECK(w.workbench.trackReadFinished);
}

TEST_CASE("Every progress bar runs from 0 to 100")
{
    Workshop w;
    for (auto* bar :
         {&w.workbench.ProgressBarEnc, &w.workbench.ProgressBarDec, &w.workbench.ProgressBarCDtoWAVtt,
          &w.workbench.ProgressBarCDtoWAVat, &w.workbench.ProgressBarWAVtoCD}) {
        CAPTURE(bar->Name());
        const auto& widget = *widgetOf<QProgressBar>(w.workbench, bar->Name());
        bar->setValue(100);
        CHECK(widget.value() == widget.maximum());
        bar->setValue(0);
        CHECK(widget.value() == widget.minimum());
    }
}

TEST_CASE("Several files can be selected at once; the panels are grey, and not locked")
{
    Workshop w;
    for (const auto* name : {"File1", "File2"})
        CHECK(widgetOf<QListWidget>(w.workbench, name)->selectionMode() ==
              QAbstractItemView::ExtendedSelection);
    for (const auto* name : {"txtEncNowEnc", "txtEncNowDec"}) {
        auto& line = *widgetOf<QLineEdit>(w.workbench, name);
        typeInto(line, "x");
        CHECK(line.text() == "x");
    }
    for (const auto* name : {"txtEncNowEnc", "txtEncNowDec", "EncWAVtoCDdragndrop"})
        CHECK(isGrey(*widgetOf<QWidget>(w.workbench, name)));
    CHECK_FALSE(isGrey(*widgetOf<QWidget>(w.workbench, "File1")));
}

TEST_CASE("The drive leads the folder, the folder leads the files, each tab for itself")
{
    const TemporaryFolder drive;
    std::filesystem::create_directory(drive / "sub");
    putFile(drive / "a.wav", "");
    putFile(drive / "a.mp3", "");
    putFile(drive / "sub/b.wav", "");
    putFile(drive / "sub/b.mp3", "");
    Workshop w([&](FakePlatform& platform) {
        platform.scriptedDrives.drives.push_back({drive.path(), "D"});
    });
    struct Tab {
        ctl::DriveListBox& drive;
        ctl::DirListBox& folder;
        ctl::FileListBox& files;
        Text end;
    };
    Mp3Encoder& b = w.workbench;
    const Text before = b.Dir2.Path();
    for (auto& tab : {Tab{b.Drive1, b.Dir1, b.File1, ".wav"}, Tab{b.Drive2, b.Dir2, b.File2, ".mp3"}}) {
        CAPTURE(tab.end);
        tab.drive.setDrive(drive.path());
        CHECK(tab.folder.Path() == drive.path());
        CHECK(tab.files.Path() == drive.path());
        REQUIRE(tab.files.ListCount() == 1);
        CHECK(tab.files.List(0) == "a" + tab.end);
        tab.folder.setPath(drive / "sub");
        CHECK(tab.files.List(0) == "b" + tab.end);
        if (tab.end == ".wav")
            CHECK(b.Dir2.Path() == before);
    }
    CHECK(w.settings.Drive1.Drive() == "/");
    CHECK(w.calls().empty());
}

TEST_CASE("A drive that cannot be read is a failure that nobody handles, and the lists stay")
{
    for (const bool first : {true, false}) {
        CAPTURE(first);
        Workshop w([](FakePlatform& platform) {
            platform.scriptedDrives.drives.push_back({"/no/folder", ""});
        });
        auto& b = w.workbench;
        const Text folder = b.Dir1.Path();
        int number = 0;
        guarded([&](const Failure& failure) { number = failure.number; },
                [&] { (first ? b.Drive1 : b.Drive2).setDrive("/no/folder"); });
        CHECK(number == 76);
        CHECK((first ? b.Dir1 : b.Dir2).Path() == folder);
        CHECK((first ? b.File1 : b.File2).Path() == folder);
        CHECK(w.platform.boxes.shown.empty());
    }
}

TEST_CASE("Each Settings button loads, disables the Apply of its tab, turns to it and shows the dialog")
{
    for (const auto& row : settingsButtons) {
        CAPTURE(row.name);
        Workshop w;
        w.settings.SettingsTab.setTab((row.tab + 2) % 4);
        w.setApplyButtons(true);
        bool loaded = false;
        w.platform.log.onCall = [&](const Text& call) {
            if (call != "Mp3Encoder1.Bitrate = 128000")
                return;
            loaded = true;
            CHECK(w.applyButtons() == "1111");
            CHECK(w.settings.SettingsTab.Tab() == (row.tab + 2) % 4);
            CHECK_FALSE(w.settings.Visible());
        };
        bool activated = false;
        w.settings.Activate.calls([&] {
            activated = true;
            CHECK_FALSE(w.settings.applyButton(row.tab).Enabled());
            CHECK(w.settings.SettingsTab.Tab() == row.tab);
        });
        (w.workbench.*row.button).Click.raise();
        CHECK(loaded);
        CHECK(activated);
        Text apply = "1111";
        apply[static_cast<std::size_t>(row.tab)] = '0';
        CHECK(w.applyButtons() == apply);
        CHECK(w.settings.SettingsTab.Tab() == row.tab);
        CHECK(w.settings.Visible());
        CHECK_FALSE(w.settings.page()->window()->isModal());
    }
}

TEST_CASE("The dialog opens clean on its tab although the loading has pressed its buttons")
{
    for (const auto& row : settingsButtons) {
        CAPTURE(row.name);
        Workshop w;
        w.settings.SetEncBitr1.setValue(true);
        w.settings.Dir2.setPath("/usr");
        w.settings.SetCDtoWavTB.setText("mine");
        w.settings.SetWAVtoCDSpeed16x.setValue(true);
        w.setApplyButtons(false);
        (w.workbench.*row.button).Click.raise();
        Text apply = "1111"; // the load has changed something on every tab
        apply[static_cast<std::size_t>(row.tab)] = '0';
        CHECK(w.applyButtons() == apply);
    }
}

TEST_CASE("Each Exit hides the workbench and does nothing else; the next opening finds it as it was")
{
    for (const auto button : {&Mp3Encoder::ExitEnc, &Mp3Encoder::Command1, &Mp3Encoder::EncCDtoWAVExit,
                              &Mp3Encoder::EncWAVtoCDExit}) {
        Workshop w;
        CAPTURE((w.workbench.*button).Name());
        w.workbench.Show();
        w.settings.Show();
        w.workbench.txtEncNowEnc.setText("kept");
        w.calls();
        (w.workbench.*button).Click.raise();
        CHECK_FALSE(w.workbench.Visible());
        CHECK(w.settings.Visible());
        CHECK(w.calls().empty());
        CHECK(&w.program.mp3Encoder() == &w.workbench);
        CHECK(w.workbench.txtEncNowEnc.Text() == "kept");
    }
}
