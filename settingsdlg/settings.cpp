// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingsdlg/settings.h"

#include "platform/failure.h"
#include "platform/numbers.h"
#include "player/start_up.h"
#include "program.h"
#include "toolkit/spoken_names.h"
#include "toolkit/toolkit.h"

Settings::Settings(Program& program) :
    Form(program.platform().toolkit(), "Settings", Border::dialog, {6900_tw, 5070_tw}),
    drives_(program.platform().drives()), program_(program)
{
    setCaption("Settings");
    for (int tab = 0; tab < 4; ++tab)
        applyButton(tab).setEnabled(false);
    SetWAVtoCDcddrives.setEnabled(false);
    SetWAVtoCDcdwriter.setEnabled(false);
    SetWAVtoCDcdwriter.setToolTipText("automatic selected CD writer");
    SetWAVtoCDwritertype.setEnabled(false);
    SetWAVtoCDcdwrSetwrtype.setEnabled(false);
    // clang-format off
    ctl::setSpokenNames(*this, {
        {SettingsTab, "Settings"},
        {Drive1, "Drive for the MP3 files"},
        {Dir1, "Folder for the MP3 files"},
        {Drive2, "Drive for the decoded files"},
        {Dir2, "Folder for the decoded files"},
        {CDDrives, "CD drives"},
        {SetCDtoWavTB, "Beginning of the file names"},
        {Drive3, "Drive for the tracks"},
        {Dir3, "Folder for the tracks"},
        {SetWAVtoCDcddrives, "CD drives"},
        {SetWAVtoCDcdwriter, "Detected CD writer"},
        {SetWAVtoCDwritertype, "CD writer type"},
    });
    // clang-format on
    wire();
}

void Settings::wire()
{
    Load.calls(*this, &Settings::Form_Load);
    wireEncoderTab();
    wireDecoderTab();
    wireCdToWavTab();
    wireWavToCdTab();
}

ctl::CommandButton& Settings::applyButton(int tab)
{
    ctl::CommandButton* const buttons[] = {&SetEncApp, &SetDecApp, &SetCDtoWAVApp, &SetWAVtoCDApp};
    return *buttons[tab];
}

void Settings::Form_Load()
{
    skipping([this] { program_.startUp().get_all_settings(); },
             [this] {
                 for (int tab = 0; tab < 4; ++tab)
                     applyButton(tab).setEnabled(false);
             },
             [this] { init(); }, [this] { start_up(); },
             [this] {
                 const auto& store = program_.settingsStore();
                 if (store.GetSetting(section::wavToCd, key::settingsSaved) == "yes")
                     SetWAVtoCDcddrives.setListIndex(
                         toInteger32(store.GetSetting(section::wavToCd, key::selectedWriter)));
             });
}
