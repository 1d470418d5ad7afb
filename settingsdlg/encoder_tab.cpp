// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "workbench/mp3_encoder.h"

void Settings::wireEncoderTab()
{
    for (const auto& row : bitrateButtons)
        row.button.Click.calls([this, row] {
            bitrateText = textOf(row.bitsPerSecond);
            SetEncApp.setEnabled(true);
        });
    SetEncSF1.Click.calls(*this, &Settings::SetEncSF1_Click);
    SetEncSF2.Click.calls(*this, &Settings::SetEncSF2_Click);
    Drive1.Change.calls(*this, &Settings::Drive1_Change);
    Dir1.Change.calls(*this, &Settings::Dir1_Change);
    SetEncOK.Click.calls(*this, &Settings::SetEncOK_Click);
    SetEncApp.Click.calls(*this, &Settings::SetEncApp_Click);
    SetEncCan.Click.calls(*this, &Settings::SetEncCan_Click);
}

void Settings::SetEncSF1_Click()
{
    halfSampleRate = false;
    sampleFrequencyText = "0";
    SetEncApp.setEnabled(true);
}

void Settings::SetEncSF2_Click()
{
    halfSampleRate = true;
    sampleFrequencyText = "1";
    SetEncApp.setEnabled(true);
}

void Settings::Drive1_Change()
{
    Dir1.setPath(Drive1.Drive());
    SetEncApp.setEnabled(true);
}

void Settings::Dir1_Change() { SetEncApp.setEnabled(true); }

void Settings::storeEncoderTab()
{
    auto& store = program_.settingsStore();
    store.SaveSetting(section::encoder, key::saveDirectory, Dir1.Path());
    store.SaveSetting(section::encoder, key::bitrate, bitrateText);
    store.SaveSetting(section::encoder, key::sampleFrequency, sampleFrequencyText);
    store.SaveSetting(section::encoder, key::saveDrive, Drive1.Drive());
    store.SaveSetting(section::encoder, key::settingsSaved, "yes");
    Mp3Encoder& workbench = program_.mp3Encoder();
    workbench.Mp3Encoder1->setBitrate(bitrateText);
    workbench.Mp3Encoder1->setHalfSampleRate(halfSampleRate);
    workbench.outputdir.setCaption(Dir1.Path());
}

void Settings::SetEncApp_Click()
{
    storeEncoderTab();
    SetEncApp.setEnabled(false);
}

void Settings::SetEncOK_Click()
{
    storeEncoderTab();
    Hide();
}

void Settings::SetEncCan_Click() { Hide(); }
