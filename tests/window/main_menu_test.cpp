// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/about_frame.h"
#include "info/edit_file_info_form.h"
#include "info/error.h"
#include "info/genre_rows.h"
#include "settingsdlg/settings.h"
#include "support/player.h"
#include "workbench/mp3_encoder.h"

#include <doctest/doctest.h>

namespace
{

struct Item {
    Text caption;
    std::int32_t parent;
    Text key;
};

void choose(Player& p, std::int32_t item) { p.platform.mainMenu->choose(item); }

// Which windows show besides the main one.
Text shownWindows(Player& p)
{
    Text text;
    const auto add = [&](const char* name, bool shows) { text += shows ? Text(name) + " " : Text(); };
    add("PlayListEditor", p.list().Visible());
    add("editfileinfoform", p.program.editFileInfoForm().Visible());
    add("Error", p.program.error().Visible());
    add("Mp3Encoder", p.program.mp3Encoder().Visible());
    add("Settings", p.program.settings().Visible());
    add("AboutFrame", p.program.aboutFrame().Visible());
    return text;
}

// The tag editor's boxes, the genre by its row's name.
Text tagShown(Player& p)
{
    auto& editor = p.program.editFileInfoForm();
    Text text;
    for (auto* box :
         {&editor.txtTitle, &editor.txtArtist, &editor.txtAlbum, &editor.txtYear, &editor.txtComment})
        text += box->Text() + "|";
    return text + genreRows.at(static_cast<std::size_t>(editor.txtGenre.ListIndex()));
}

const Text song = "/m/a.mp3";
const Text wave = "/m/b.wav";

}

TEST_CASE("The menu is built once, at the start, in this order and with these numbers")
{
    Text calls;
    FakePlatform platform;
    Program program(platform);
    program.startUp();
    for (const auto& call : platform.log.of("mainMenu"))
        calls += call + "\n";
    CHECK(calls == "mainMenu.hWndOwner\nmainMenu.Clear\nmainMenu.Store(VLMMenu)\n");

    const Item items[] = {
        {"&File", 0, "mnuAccel(3)"},
        {"&Open", 1, ""},
        {"Play&list Editor", 1, ""},
        {"-", 1, ""},
        {"Edit File &Info", 1, ""},
        {"-", 1, ""},
        {"E&xit", 1, ""},
        {"&Options", 0, ""},
        {"Mp3 &Encoder", 8, ""},
        {"&WAV => MP3", 9, ""},
        {"&Settings", 9, ""},
        {"Mp3 &Decoder", 8, ""},
        {"&MP3 => WAV", 12, ""},
        {"&Settings", 12, ""},
        {"-", 8, ""},
        {"&CD => WAV", 8, ""},
        {"&WAV => CD", 8, ""},
        {"-", 8, ""},
        {"&Settings", 8, ""},
        {"&About", 0, ""},
    };
    const auto& menu = platform.mainMenu->items;
    REQUIRE(menu.size() == std::size(items));
    for (std::size_t i = 0; i < menu.size(); ++i) {
        CAPTURE(i + 1);
        CHECK(menu[i].caption == items[i].caption);
        CHECK(menu[i].parent == items[i].parent);
        CHECK(menu[i].key == items[i].key);
        CHECK(menu[i].helpText.empty());
        CHECK(menu[i].itemData == 0);
        CHECK(menu[i].iconIndex == -1);
        CHECK_FALSE(menu[i].checked);
        CHECK(menu[i].enabled);
    }
}

TEST_CASE("The menu opens directly below its image and keeps its tree")
{
    Player p;
    p.window.imgMenu.Click.raise();
    CHECK(p.calls() == "mainMenu.Restore(VLMMenu)\nmainMenu.ShowPopupMenu(0, 225, 0, 0, 240, 225, True)\n"
                       "mainMenu.Store(VLMMenu)\n");
    p.window.imgMenu.setLeft(100.5F);
    p.window.imgMenu.setTop(30);
    p.window.imgMenu_Click();
    CHECK(p.calls().find("ShowPopupMenu(100, 255, 100, 30, 340, 255, True)") != Text::npos);
}

TEST_CASE("Each number does its own work")
{
    struct Row {
        std::int32_t item;
        Text shows;
        int workbenchTab; // -1: not asked
        int settingsTab;
    };
    const Row rows[] = {
        {3, "PlayListEditor ", -1, -1}, {5, "Error ", -1, -1},      {10, "Mp3Encoder ", 0, -1},
        {11, "Settings ", -1, 0},       {13, "Mp3Encoder ", 1, -1}, {14, "Settings ", -1, 1},
        {16, "Mp3Encoder ", 2, -1},     {17, "Mp3Encoder ", 3, -1}, {19, "Settings ", -1, 2},
        {20, "AboutFrame ", -1, -1},
    };
    for (const auto& row : rows) {
        CAPTURE(row.item);
        Player p;
        p.program.mp3Encoder().EncDecCDWAVtab.setTab(row.workbenchTab == 2 ? 1 : 2);
        p.program.settings().SettingsTab.setTab(2);
        choose(p, row.item);
        CHECK(shownWindows(p) == row.shows);
        if (row.workbenchTab != -1)
            CHECK(p.program.mp3Encoder().EncDecCDWAVtab.Tab() == row.workbenchTab);
        if (row.settingsTab != -1)
            CHECK(p.program.settings().SettingsTab.Tab() == row.settingsTab);
        CHECK(p.platform.ends == 0);
    }
}

TEST_CASE("Submenus, separators and unknown numbers do nothing")
{
    for (const std::int32_t item : {-1, 0, 1, 4, 6, 8, 9, 12, 15, 18, 21, 65536 + 7}) {
        CAPTURE(item);
        Player p;
        choose(p, item);
        CHECK(p.calls().empty());
        CHECK(p.platform.ends == 0);
        CHECK_FALSE(p.list().Visible());
    }
}

TEST_CASE("The number is only read")
{
    Player p;
    for (std::int32_t item : {3, 20}) {
        const std::int32_t before = item;
        p.window.cP_Click(item);
        CHECK(item == before);
    }
}

TEST_CASE("Exit ends the process at once")
{
    Player p;
    p.current(song, kind::mp3);
    choose(p, 7);
    CHECK(p.platform.ends == 1);
    CHECK(p.calls().empty());
}

TEST_CASE("The workbench and two of the settings load all settings anew, the third does not")
{
    for (const std::int32_t item : {10, 11, 13, 14, 16, 17, 19}) {
        CAPTURE(item);
        Player p;
        choose(p, 10);
        p.program.settings().Hide();
        p.calls();
        p.platform.store.reads.clear();
        choose(p, item);
        CHECK((p.platform.log.count("Mp3Encoder1.Bitrate = 128000") > 0) == (item != 19));
        CHECK(p.platform.store.reads.empty() == (item == 19));
    }
}

TEST_CASE("The settings are loaded before the tab is set and the window shows")
{
    for (const std::int32_t item : {10, 14}) {
        CAPTURE(item);
        Player p;
        choose(p, 10);
        p.program.mp3Encoder().Hide();
        p.program.mp3Encoder().EncDecCDWAVtab.setTab(3);
        p.program.settings().SettingsTab.setTab(3);
        bool loaded = false;
        p.platform.log.onCall = [&](const Text& call) {
            if (call != "Mp3Encoder1.Bitrate = 128000")
                return;
            loaded = true;
            CHECK(p.program.mp3Encoder().EncDecCDWAVtab.Tab() == 3);
            CHECK(p.program.settings().SettingsTab.Tab() == 3);
            CHECK_FALSE(p.program.mp3Encoder().Visible());
            CHECK_FALSE(p.program.settings().Visible());
        };
        bool activated = false;
        p.program.settings().Activate.calls([&] {
            activated = true;
            CHECK(p.program.settings().SettingsTab.Tab() == 1);
        });
        choose(p, item);
        CHECK(loaded);
        CHECK(activated == (item == 14));
    }
}

TEST_CASE("The settings window opens with these Apply buttons disabled")
{
    struct Row {
        std::int32_t item;
        bool enc, dec, cdToWav, wavToCd; // enabled afterwards
    };
    for (const auto& row : {Row{11, false, true, true, true}, Row{14, true, false, true, true},
                            Row{19, false, false, false, false}}) {
        CAPTURE(row.item);
        Player p;
        Settings& settings = p.program.settings();
        for (auto* button :
             {&settings.SetEncApp, &settings.SetDecApp, &settings.SetCDtoWAVApp, &settings.SetWAVtoCDApp})
            button->setEnabled(true);
        choose(p, row.item);
        CHECK(settings.SetEncApp.Enabled() == row.enc);
        CHECK(settings.SetDecApp.Enabled() == row.dec);
        CHECK(settings.SetCDtoWAVApp.Enabled() == row.cdToWav);
        CHECK(settings.SetWAVtoCDApp.Enabled() == row.wavToCd);
        CHECK(settings.Visible());
    }
}

TEST_CASE("An Apply button that the loading enabled is disabled afterwards, the others stay as they are")
{
    struct Row {
        std::int32_t item;
        bool enc, dec;
    };
    for (const auto& row : {Row{11, false, true}, Row{14, true, false}}) {
        CAPTURE(row.item);
        Player p;
        choose(p, 19);
        p.store("Encoder Settings", "Settings Saved", "yes");
        p.store("Encoder Settings", "Bitrate", "320000");
        p.store("Decoder Settings", "Settings Saved", "yes");
        p.store("Decoder Settings", "SaveDirectory", "/usr");
        choose(p, row.item);
        CHECK(p.program.settings().SetEncBitr1.Value());
        CHECK(p.program.settings().Dir2.Path() == "/usr");
        CHECK(p.program.settings().SetEncApp.Enabled() == row.enc);
        CHECK(p.program.settings().SetDecApp.Enabled() == row.dec);
    }
}

TEST_CASE("The last Settings keeps the tab where the user had it")
{
    Player p;
    choose(p, 11);
    for (const int tab : {3, 1, 0}) {
        p.program.settings().SettingsTab.setTab(tab);
        choose(p, 19);
        CHECK(p.program.settings().SettingsTab.Tab() == tab);
    }
    choose(p, 14);
    CHECK(p.program.settings().SettingsTab.Tab() == 1);
}

TEST_CASE("The last Settings, chosen first of all, still finds its data: the window loads them")
{
    Player p;
    choose(p, 19);
    CHECK(p.program.settings().SetEncBitr6.Value());
    CHECK(p.program.settings().Visible());
}

TEST_CASE("The About window is built anew after its button has unloaded it")
{
    Player p;
    choose(p, 20);
    p.program.unloadAboutFrame(p.program.aboutFrame());
    choose(p, 20);
    CHECK(p.program.aboutFrame().Visible());
}

TEST_CASE("Without an MP3 file the tag editor is refused, whatever else is loaded and playing")
{
    for (const std::int16_t fileKind : {0, 1, 3}) {
        CAPTURE(fileKind);
        Player p;
        p.current(wave, fileKind);
        choose(p, 5);
        CHECK(p.program.error().theerror.Caption() == "No file or .wav file opened!" + Text(40, ' ') +
                                                          "You can only create an ID tag for an mp3 file!");
        CHECK(shownWindows(p) == "Error ");
    }
}

TEST_CASE("The tag editor opens over the main window, filled from the engine")
{
    Player p;
    p.current(song, kind::mp3);
    p.window.setLeft(1500);
    p.window.setTop(600);
    p.mp3().title = "A title";
    p.mp3().artist = "R&B";
    p.mp3().album = "An album";
    p.mp3().comment = "A comment";
    p.mp3().year = 1999;
    p.mp3().genreIndex = 17;
    choose(p, 5);
    auto& editor = p.program.editFileInfoForm();
    CHECK(editor.filelocation.Text() == song);
    CHECK(editor.txtTitle.Text() == "A title");
    CHECK(editor.txtArtist.Text() == "R&B");
    CHECK(editor.txtAlbum.Text() == "An album");
    CHECK(editor.txtYear.Text() == "1999");
    CHECK(editor.txtComment.Text() == "A comment");
    CHECK(editor.txtGenre.ListIndex() == 17);
    CHECK(editor.Left() == 1500);
    CHECK(editor.Top() == 600);
    CHECK(p.calls().empty());
    CHECK(shownWindows(p) == "editfileinfoform ");
}

TEST_CASE("A tag without genre, year and comment leaves the boxes of the last one empty")
{
    struct Row {
        Text what;
        std::int16_t year;
        Text comment;
        std::int16_t genre;
        Text yearShown;
        Text commentShown;
        std::int32_t row;
    };
    const Row rows[] = {
        {"nothing at all", 0, "", -1, "", "", 80},
        {"one blank for a comment", 0, " ", 0, "", "", 0},
        {"two blanks are a comment", 1, "  ", 80, "1", "  ", 80},
        {"a year before the common ones", -5, "x", 79, "-5", "x", 79},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        Player p;
        p.current(song, kind::mp3);
        auto& editor = p.program.editFileInfoForm();
        for (auto* box :
             {&editor.txtTitle, &editor.txtArtist, &editor.txtAlbum, &editor.txtYear, &editor.txtComment})
            box->setText("old");
        p.mp3().year = c.year;
        p.mp3().comment = c.comment;
        p.mp3().genreIndex = c.genre;
        choose(p, 5);
        CHECK(editor.txtTitle.Text().empty());
        CHECK(editor.txtArtist.Text().empty());
        CHECK(editor.txtAlbum.Text().empty());
        CHECK(editor.txtYear.Text() == c.yearShown);
        CHECK(editor.txtComment.Text() == c.commentShown);
        CHECK(editor.txtGenre.ListIndex() == c.row);
    }
}

TEST_CASE("The tag editor asks for the kind alone: a closed engine fills it with what it has")
{
    Player p;
    p.dialog().filterIndex = kind::mp3;
    choose(p, 5);
    CHECK(shownWindows(p) == "editfileinfoform ");
    CHECK(p.program.editFileInfoForm().filelocation.Text().empty());
}

TEST_CASE("After a cancelled dialog of the MP3 kind the tag editor shows what the closed engine reports")
{
    struct Row {
        const char* what;
        Text title, artist, album, comment;
        std::int16_t year, genre;
        Text shown;
    };
    const Row rows[] = {
        {"nothing", "", "", "", "", 0, -1, "|||||Unknown"},
        {"the tag of the file before", "A title", "R&B", "An album", "A comment", 1999, 17,
         "A title|R&B|An album|1999|A comment|Rock"},
    };
    for (const auto& row : rows)
        for (const bool byPlay : {true, false}) {
            CAPTURE(row.what);
            CAPTURE(byPlay);
            Player p;
            p.store(section::general, key::fileType, "2");
            p.mp3().title = row.title;
            p.mp3().artist = row.artist;
            p.mp3().album = row.album;
            p.mp3().comment = row.comment;
            p.mp3().year = row.year;
            p.mp3().genreIndex = row.genre;
            byPlay ? p.window.Image1.Click.raise() : choose(p, 2);
            REQUIRE(p.platform.log.count("OpenSaveDialog1.ShowOpen") == 1);
            choose(p, 5);
            CHECK_FALSE(p.mp3().isOpen);
            CHECK(shownWindows(p) == "editfileinfoform ");
            CHECK(p.program.editFileInfoForm().filelocation.Text().empty());
            CHECK(tagShown(p) == row.shown);
        }
}

TEST_CASE("A genre past the rows is a failure that nobody handles")
{
    Player p;
    p.current(song, kind::mp3);
    p.mp3().genreIndex = 81;
    p.mp3().title = "A title";
    p.program.editFileInfoForm().txtTitle.setText("old");
    int number = 0;
    guarded([&](const Failure& failure) { number = failure.number; }, [&] { choose(p, 5); });
    CHECK(number == 380);
    auto& editor = p.program.editFileInfoForm();
    CHECK_FALSE(editor.Visible());
    CHECK(editor.filelocation.Text() == song); // what stands before the genre was done
    CHECK(editor.txtTitle.Text().empty());
    CHECK(p.platform.boxes.shown.empty());
}

TEST_CASE("Only Open has a handling of failures: the others' reach whoever chose")
{
    Player p;
    p.list().Activate.calls([] { throw Failure(Trouble::overflow); });
    CHECK_FALSE(succeeds([&] { choose(p, 3); }));
    CHECK(p.platform.boxes.shown.empty());
}
