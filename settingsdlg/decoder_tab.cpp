// SPDX-License-Identifier: GPL-3.0-or-later
#include "program.h"
#include "settingsdlg/settings.h"
#include "workbench/mp3_encoder.h"

void Settings::wireDecoderTab()
{
    Drive2.Change.calls(*this, &Settings::Drive2_Change);
    Dir2.Change.calls(*this, &Settings::Dir2_Change);
    SetDecOK.Click.calls(*this, &Settings::SetDecOK_Click);
    SetDecApp.Click.calls(*this, &Settings::SetDecApp_Click);
    SetDecCan.Click.calls(*this, &Settings::SetDecCan_Click);
}

void Settings::Drive2_Change()
{
    Dir2.setPath(Drive2.Drive());
    SetDecApp.setEnabled(true);
}

void Settings::Dir2_Change() { SetDecApp.setEnabled(true); }

void Settings::storeDecoderTab()
{
    auto& store = program_.settingsStore();
    store.SaveSetting(section::decoder, key::saveDirectory, Dir2.Path());
    store.SaveSetting(section::decoder, key::saveDrive, Drive2.Drive());
    store.SaveSetting(section::decoder, key::settingsSaved, "yes");
    program_.mp3Encoder().outputdir2.setCaption(Dir2.Path());
}

void Settings::SetDecApp_Click()
{
    storeDecoderTab();
    SetDecApp.setEnabled(false);
}

void Settings::SetDecOK_Click()
{
    storeDecoderTab();
    Hide();
}

void Settings::SetDecCan_Click() { Hide(); }
