// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/play_list_editor.h"

#include "platform/failure.h"
#include "platform/paths.h"
#include "platform/text_files.h"
#include "player/start_up.h"
#include "playlist/list_settings.h"
#include "playlist/playlist_format.h"
#include "program.h"
#include "toolkit/spoken_names.h"
#include "toolkit/toolkit.h"

namespace
{

constexpr Extent client{6435_tw, 2985_tw};

constexpr std::int16_t keyU = 85;
constexpr std::int16_t keyD = 68;
constexpr std::int16_t keyDelete = 46;

}

PlayListEditor::PlayListEditor(Program& program) :
    Form(program.platform().toolkit(), "PlayListEditor", Border::none, client),
    Mp3Player2(program.platform().makeMp3Play()), OpenSaveDialogP(program.platform().makeOpenSaveDialog()),
    program_(program)
{
    setCaption("Playlist Editor");
    PlayListFileName.setLocked(true);
    setMenuImage(imgMenu);
    // clang-format off
    ctl::setSpokenNames(*this, {
        {PlayListFileName, "List file"},
        {PlayListLB, "Songs"},
    });
    // clang-format on
    wire();
}

void PlayListEditor::wire()
{
    Load.calls(*this, &PlayListEditor::Form_Load);
    Activate.calls(*this, &PlayListEditor::Form_Activate);
    Deactivate.calls(*this, &PlayListEditor::Form_Deactivate);
    PLETitleBarImg.MouseDown.calls(*this, &PlayListEditor::PLETitleBarImg_MouseDown);
    closeVLMimg.Click.calls(*this, &PlayListEditor::closeVLMimg_Click);
    imgMenu.Click.calls(*this, &PlayListEditor::imgMenu_Click);
    Timer1.Timer.calls(*this, &PlayListEditor::Timer1_Timer);
    moveitemupimg.Click.calls(*this, &PlayListEditor::moveitemupimg_Click);
    moveitemdownimg.Click.calls(*this, &PlayListEditor::moveitemdownimg_Click);
    PlayListLB.KeyDown.calls(*this, &PlayListEditor::PlayListLB_KeyDown);
    PlayListLB.DblClick.calls(*this, &PlayListEditor::PlayListLB_DblClick);
    Stopimg1.Click.calls(*this, &PlayListEditor::Stopimg1_Click);
    Nextimg1.Click.calls(*this, &PlayListEditor::Nextimg1_Click);
    Previmg1.Click.calls(*this, &PlayListEditor::Previmg1_Click);
    Playimg1.Click.calls(*this, &PlayListEditor::Playimg1_Click);
}

void PlayListEditor::Form_Load()
{
    cP = program_.platform().makePopupMenu();
    cP->Click.calls(*this, &PlayListEditor::cP_Click);
    cP->hWndOwner(*this);
    CreateMenus();
    program_.startUp().get_reg_settings_plse();
    setFolders();
    loadStoredList();
}

void PlayListEditor::setFolders()
{
    AppFolder = joined(program_.platform().applicationFolder(), "");
    DefaultListPath = program_.platform().applicationFolder() + pathSeparator + "deflist.vlp";
}

Text PlayListEditor::storedList() const
{
    return program_.startUp().GetFromINI(ini::section, ini::playList, "", AppFolder + ini::file);
}

// The stored path is read anew at each use: nothing of it is kept.
void PlayListEditor::loadStoredList()
{
    if (storedList().empty())
        return;
    NamedListActive = storedList() != DefaultListPath;
    if (NamedListActive)
        PlayListFileName.setText(storedList());

    std::int64_t length = 0;
    succeeds([&] { length = program_.platform().textFiles().length(storedList()); });
    if (length > 0)
        readListFile(storedList());
}

void PlayListEditor::Form_Activate() { program_.startUp().get_plss_pos_pi(); }

void PlayListEditor::Form_Deactivate()
{
    program_.startUp().get_plss_pos_pi();
    program_.startUp().form_active_ok_sub();
}

void PlayListEditor::PLETitleBarImg_MouseDown(ctl::Button, std::int16_t, Twips, Twips) { dragWithPointer(); }

void PlayListEditor::closeVLMimg_Click() { Hide(); }

// Keeps the list alive, whatever happens to the program: on each tick its rows and the way back to them are
// on the disk.
void PlayListEditor::Timer1_Timer()
{
    setFolders();
    skipping([this] { workingCopyTrouble_.unless([this] { writeWorkingCopy(); }); },
             [this] {
                 program_.startUp().AddToINI(ini::section, ini::playList,
                                             NamedListActive ? PlayListFileName.Text() : DefaultListPath,
                                             AppFolder + ini::file);
             });
}

void PlayListEditor::writeWorkingCopy()
{
    auto& files = program_.platform().textFiles();
    const auto revision = PlayListLB.revision();
    if (files.stillHolds(DefaultListPath, revision))
        return;
    const auto output = files.openForOutput(DefaultListPath);
    if (PlayListLB.ListCount() == 0)
        keepLastRows();
    for (std::int32_t row = 0; row < PlayListLB.ListCount(); ++row)
        output->write(PlayListLB.List(row).append(lineEnd));
    output->finish(revision);
}

// A working copy that is about to become empty stays beside it: the program never reads it, a user can. Only
// once the new one could be opened: a copy that cannot change would be kept anew on each tick.
void PlayListEditor::keepLastRows()
{
    succeeds([this] {
        auto& files = program_.platform().textFiles();
        const Text rows = files.readWhole(DefaultListPath);
        if (!rows.empty())
            files.keepBackup(DefaultListPath, rows);
    });
}

void PlayListEditor::removeSelected()
{
    if (PlayListLB.ListIndex() == -1)
        return;
    PlayListLB.RemoveItem(PlayListLB.ListIndex());
    NamedListActive = false;
}

void PlayListEditor::moveitemupimg_Click()
{
    const std::int32_t selected = PlayListLB.ListIndex();
    if (selected >= 1)
        moveRow(selected - 1, selected - 1);
}

void PlayListEditor::moveitemdownimg_Click()
{
    const std::int32_t selected = PlayListLB.ListIndex();
    if (selected != -1 && selected < PlayListLB.ListCount() - 1)
        moveRow(selected + 2, selected + 1);
}

// The selection stays on the old row while its copy is inserted, so that the old row is the one removed.
void PlayListEditor::moveRow(std::int32_t insertAt, std::int32_t selectAt)
{
    PlayListLB.AddItem(PlayListLB.Text(), insertAt);
    PlayListLB.RemoveItem(PlayListLB.ListIndex());
    PlayListLB.setListIndex(selectAt);
    NamedListActive = false;
}

void PlayListEditor::PlayListLB_KeyDown(std::int16_t keyCode, std::int16_t)
{
    if (keyCode == keyU)
        moveitemupimg_Click();
    if (keyCode == keyD)
        moveitemdownimg_Click();
    if (keyCode == keyDelete)
        removeSelected();
}
