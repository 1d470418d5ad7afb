// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/mp3_encoder.h"

#include "player/start_up.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "toolkit/spoken_names.h"
#include "toolkit/toolkit.h"

Mp3Encoder::Mp3Encoder(Program& program) :
    Form(program.platform().toolkit(), "Mp3Encoder", Border::fixed, {7800_tw, 5520_tw}),
    drives_(program.platform().drives()), Mp3Encoder1(program.platform().makeMp3Enc()),
    Mp3Decoder(program.platform().makeMp3Play()), CDtoWAV(program.platform().makeACD()),
    CdBase1(program.platform().makeCdBase()), CDWriter(program.platform().makeACDWRITE()), program_(program)
{
    setCaption("Encoder / Decoder / CD => WAV / WAV => CD");
    txtEncNowEnc.setGrey();
    txtEncNowDec.setGrey();
    EncWAVtoCDdragndrop.setGrey();
    EncWAVtoCDdragndrop.setToolTipText("Drag And Drop Wave-Files Here (44KHz, 16bit, Stereo)");
    EncWAVtoCDdragndrop.acceptFiles();
    // clang-format off
    ctl::setSpokenNames(*this, {
        {EncDecCDWAVtab, "Workbench"},
        {Drive1, "Drive of the wave files"},
        {Dir1, "Folder of the wave files"},
        {File1, "Wave files"},
        {txtEncNowEnc, "File that is encoded"},
        {ProgressBarEnc, "Encoding"},
        {Drive2, "Drive of the MP3 files"},
        {Dir2, "Folder of the MP3 files"},
        {File2, "MP3 files"},
        {txtEncNowDec, "File that is decoded"},
        {ProgressBarDec, "Decoding"},
        {TracksList, "CD tracks"},
        {EncCDtoWAVcommands, "Commands"},
        {ProgressBarCDtoWAVtt, "This track"},
        {ProgressBarCDtoWAVat, "All selected tracks"},
        {EncWAVtoCDdragndrop, "Files for the CD"},
        {ProgressBarWAVtoCD, "Writing the CD"},
    });
    // clang-format on
    wire();
}

void Mp3Encoder::wire()
{
    Load.calls(*this, &Mp3Encoder::Form_Load);
    Drive1.Change.calls(*this, &Mp3Encoder::Drive1_Change);
    Dir1.Change.calls(*this, &Mp3Encoder::Dir1_Change);
    Drive2.Change.calls(*this, &Mp3Encoder::Drive2_Change);
    Dir2.Change.calls(*this, &Mp3Encoder::Dir2_Change);
    EncSettings.Click.calls(*this, &Mp3Encoder::EncSettings_Click);
    Command2.Click.calls(*this, &Mp3Encoder::Command2_Click);
    EncCDtoWAVSet.Click.calls(*this, &Mp3Encoder::EncCDtoWAVSet_Click);
    EncWAVtoCDsettings.Click.calls(*this, &Mp3Encoder::EncWAVtoCDsettings_Click);
    ExitEnc.Click.calls(*this, &Mp3Encoder::ExitEnc_Click);
    Command1.Click.calls(*this, &Mp3Encoder::Command1_Click);
    EncCDtoWAVExit.Click.calls(*this, &Mp3Encoder::EncCDtoWAVExit_Click);
    EncWAVtoCDExit.Click.calls(*this, &Mp3Encoder::EncWAVtoCDExit_Click);
    StartEncoding.Click.calls(*this, &Mp3Encoder::StartEncoding_Click);
    Mp3Encoder1->Progress.calls(*this, &Mp3Encoder::Mp3Encoder1_Progress);
    Mp3Encoder1->Done.calls(*this, &Mp3Encoder::Mp3Encoder1_Done);
    Command3.Click.calls(*this, &Mp3Encoder::Command3_Click);
    Mp3Decoder->Progress.calls(*this, &Mp3Encoder::Mp3Decoder_Progress);
    Mp3Decoder->Done.calls(*this, &Mp3Encoder::Mp3Decoder_Done);
    butRefresh.Click.calls(*this, &Mp3Encoder::butRefresh_Click);
    EncCDtoWAVStart.Click.calls(*this, &Mp3Encoder::EncCDtoWAVStart_Click);
    EncCDtoWAVStop.Click.calls(*this, &Mp3Encoder::EncCDtoWAVStop_Click);
    CDtoWAV->Progress.calls(*this, &Mp3Encoder::CDtoWAV_Progress);
    CDtoWAV->Done.calls(*this, &Mp3Encoder::CDtoWAV_Done);
    EncWAVtoCDdragndrop.OLEDragDrop.calls(*this, &Mp3Encoder::EncWAVtoCDdragndrop_OLEDragDrop);
    EncWAVtoCDWrite.Click.calls(*this, &Mp3Encoder::EncWAVtoCDWrite_Click);
    CDWriter->Progress.calls(*this, &Mp3Encoder::CDWriter_Progress);
    CDWriter->Done.calls(*this, &Mp3Encoder::CDWriter_Done);
}

void Mp3Encoder::Form_Load()
{
    program_.startUp().get_all_settings();
    trackReadFinished = true;
}

void Mp3Encoder::Drive1_Change() { Dir1.setPath(Drive1.Drive()); }

void Mp3Encoder::Dir1_Change() { File1.setPath(Dir1.Path()); }

void Mp3Encoder::Drive2_Change() { Dir2.setPath(Drive2.Drive()); }

void Mp3Encoder::Dir2_Change() { File2.setPath(Dir2.Path()); }

// The loaders mark the tab as changed; its Apply is cleared after them, so that the dialog opens clean.
void Mp3Encoder::openSettings(int tab)
{
    program_.startUp().get_all_settings();
    Settings& settings = program_.settings();
    settings.applyButton(tab).setEnabled(false);
    settings.SettingsTab.setTab(tab);
    settings.Show();
}

void Mp3Encoder::EncSettings_Click() { openSettings(0); }

void Mp3Encoder::Command2_Click() { openSettings(1); }

void Mp3Encoder::EncCDtoWAVSet_Click() { openSettings(2); }

void Mp3Encoder::EncWAVtoCDsettings_Click() { openSettings(3); }

// A run goes on behind the hidden window.
void Mp3Encoder::ExitEnc_Click() { Hide(); }

void Mp3Encoder::Command1_Click() { Hide(); }

void Mp3Encoder::EncCDtoWAVExit_Click() { Hide(); }

void Mp3Encoder::EncWAVtoCDExit_Click() { Hide(); }
