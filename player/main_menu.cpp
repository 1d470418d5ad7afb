// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/about_frame.h"
#include "info/edit_file_info_form.h"
#include "info/error.h"
#include "platform/failure.h"
#include "platform/numbers.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "toolkit/menu_below.h"
#include "workbench/mp3_encoder.h"

#include <iterator>

namespace
{

constexpr const char* menuName = "VLMMenu";

}

struct StartUp::MenuItem {
    const char* caption;
    std::int32_t parent; // the number of the item above; 0: top level
    void (*chosen)(StartUp&) = nullptr;
    const char* key = "";
};

// An item's number is its place in this table, counted from 1.
// clang-format off
const StartUp::MenuItem StartUp::menu[] = {
    {"&File",             0, nullptr, "mnuAccel(3)"},
    {"&Open",             1, [](StartUp& window) { window.openFile(); }},
    {"Play&list Editor",  1, [](StartUp& window) { window.program_.playListEditor().Show(); }},
    {"-",                 1},
    {"Edit File &Info",   1, [](StartUp& window) { window.editTag(); }},
    {"-",                 1},
    {"E&xit",             1, [](StartUp& window) { window.program_.platform().endProgram(); }},
    {"&Options",          0},
    {"Mp3 &Encoder",      8},
    {"&WAV => MP3",       9, [](StartUp& window) { window.openWorkbench(0); }},
    {"&Settings",         9, [](StartUp& window) { window.openSettings(0); }},
    {"Mp3 &Decoder",      8},
    {"&MP3 => WAV",      12, [](StartUp& window) { window.openWorkbench(1); }},
    {"&Settings",        12, [](StartUp& window) { window.openSettings(1); }},
    {"-",                 8},
    {"&CD => WAV",        8, [](StartUp& window) { window.openWorkbench(2); }},
    {"&WAV => CD",        8, [](StartUp& window) { window.openWorkbench(3); }},
    {"-",                 8},
    {"&Settings",         8, [](StartUp& window) { window.openSettingsAsTheyStand(); }},
    {"&About",            0, [](StartUp& window) { window.program_.aboutFrame().Show(); }},
};
// clang-format on

void StartUp::CreateMenus()
{
    cP->Clear();
    for (const auto& item : menu)
        cP->AddItem(item.caption, "", 0, item.parent, -1, false, true, item.key);
    cP->Store(menuName);
}

void StartUp::imgMenu_Click() { showMenuBelow(*cP, imgMenu, menuName); }

void StartUp::cP_Click(std::int32_t& item)
{
    if (item < 1 || item > static_cast<std::int32_t>(std::size(menu)))
        return;
    if (const auto chosen = menu[item - 1].chosen)
        chosen(*this);
}

// Opens without playing. Unlike the first Play it leaves the pause and its flag alone, so that a paused
// player goes on into the new file's start.
void StartUp::openFile()
{
    const bool prepared = program_.reporting([this] {
        takeStoredFileType();
        OpenSaveDialog1->setFlags(4112);
        OpenSaveDialog1->setCancelError(true);
        prepareOpenDialog();
    });
    if (!prepared || !succeeds([this] { OpenSaveDialog1->ShowOpen(); }))
        return;
    if (OpenSaveDialog1->FilterIndex() == kind::mp3)
        takeMp3File();
    else
        takeWavFile();
    skipping([this] {
        program_.settingsStore().SaveSetting(section::general, key::fileType,
                                             textOf(OpenSaveDialog1->FilterIndex()));
    });
}

void StartUp::takeMp3File()
{
    skipping([this] { Mp3Player->Stop(); }, [this] { Mp3Player->Close(); },
             [this] { mp3filename.setCaption(OpenSaveDialog1->FileName()); },
             [this] { Mp3Player->Open(mp3filename.Caption(), ""); },
             [this] { showFileInformationSkipping(); }, [this] { MMControl1->setCommand("Close"); });
}

void StartUp::takeWavFile()
{
    skipping([this] { mp3filename.setCaption(OpenSaveDialog1->FileName()); },
             [this] { stitle.setCaption(OpenSaveDialog1->FileTitle()); });
    for (auto* label : {&sartist, &salbum, &sgenre, &slength, &sbitrate, &sfrequency})
        label->setCaption("");
    skipping([this] { Mp3Player->Close(); }, [this] { MMControl1->setCommand("Close"); },
             [this] { MMControl1->setDeviceType("WaveAudio"); },
             [this] { MMControl1->setFileName(mp3filename.Caption()); },
             [this] { MMControl1->setCommand("Open"); }, [this] { showWavLengthSkipping(); });
}

void StartUp::editTag()
{
    if (OpenSaveDialog1->FilterIndex() != kind::mp3) {
        program_.tell("No file or .wav file opened!                                        "
                      "You can only create an ID tag for an mp3 file!");
        return;
    }
    auto& editor = program_.editFileInfoForm();
    editor.filelocation.setText(mp3filename.Caption());
    for (auto* box :
         {&editor.txtTitle, &editor.txtArtist, &editor.txtAlbum, &editor.txtYear, &editor.txtComment})
        box->setText("");
    editor.txtGenre.setListIndex(Mp3Player->GenreIndex() == -1 ? genreRowUnknown : Mp3Player->GenreIndex());
    editor.txtTitle.setText(Mp3Player->Title());
    editor.txtArtist.setText(Mp3Player->Artist());
    editor.txtAlbum.setText(Mp3Player->Album());
    if (Mp3Player->Year() != 0)
        editor.txtYear.setText(textOf(Mp3Player->Year()));
    if (Mp3Player->Comment() != " ")
        editor.txtComment.setText(Mp3Player->Comment());
    editor.setLeft(Left());
    editor.setTop(Top());
    editor.Show();
}

void StartUp::openWorkbench(int tab)
{
    get_all_settings();
    program_.mp3Encoder().EncDecCDWAVtab.setTab(tab);
    program_.mp3Encoder().Show();
}

// The loaders mark the tab as changed; its Apply is cleared after them, so that the window opens clean.
void StartUp::openSettings(int tab)
{
    get_all_settings();
    auto& settings = program_.settings();
    settings.applyButton(tab).setEnabled(false);
    settings.SettingsTab.setTab(tab);
    settings.Show();
}

void StartUp::openSettingsAsTheyStand()
{
    auto& settings = program_.settings();
    for (int tab = 0; tab < 4; ++tab)
        settings.applyButton(tab).setEnabled(false);
    settings.Show();
}
