// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/numbers.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "workbench/mp3_encoder.h"

namespace
{

constexpr std::int32_t lookupLimit = 30000; // milliseconds

constexpr const char* titledNames = "Track - Artist - Title";
constexpr const char* numberedNames = "Track";

// A start that fails is none.
bool cannotStart(ACD& reader)
{
    return holdsOrFails([&] { return reader.Init() != 0; });
}

}

void Settings::wireCdToWavTab()
{
    CDDrives.Click.calls(*this, &Settings::CDDrives_Click);
    chkCDDB.Click.calls(*this, &Settings::chkCDDB_Click);
    SetCDtoWavTB.Change.calls(*this, &Settings::SetCDtoWavTB_Change);
    Drive3.Change.calls(*this, &Settings::Drive3_Change);
    Dir3.Change.calls(*this, &Settings::Dir3_Change);
    SetCDtoWAVOK.Click.calls(*this, &Settings::SetCDtoWAVOK_Click);
    SetCDtoWAVApp.Click.calls(*this, &Settings::SetCDtoWAVApp_Click);
    SetCDtoWAVCan.Click.calls(*this, &Settings::SetCDtoWAVCan_Click);
}

// Starts the reader and lists the drives.
void Settings::init()
{
    Mp3Encoder& workbench = program_.mp3Encoder();
    ACD& reader = *workbench.CDtoWAV;
    if (cannotStart(reader)) {
        program_.tell("Can\u00B4t initialize ASPI! Please use a newer version of ASPI.");
        return;
    }
    CDDrives.Clear();
    workbench.pc_len.setCaption(textOf(workbench.ProgressBarCDtoWAVat.Max()));
    workbench.ProgressBarCDtoWAVat.setValue(0);
    workbench.ProgressBarCDtoWAVtt.setValue(0);
    std::int16_t count = 0;
    skipping([&] { count = reader.DriveCount(); });
    for (listIndex = 1; listIndex <= count; ++listIndex)
        succeeds([&] { CDDrives.AddItem(reader.DriveName(listIndex)); });
    skipping([&] { reader.SelectDrive(1); });
}

// Reads the disc and fills the workbench's track list.
void Settings::get_tracks_fsd()
{
    Mp3Encoder& workbench = program_.mp3Encoder();
    ACD& reader = *workbench.CDtoWAV;
    CdBase& titles = *workbench.CdBase1;
    if (cannotStart(reader))
        return;
    const auto& store = program_.settingsStore();
    succeeds([&] {
        const bool saved = store.GetSetting(section::cdToWav, key::settingsSaved) == "yes";
        reader.SelectDrive(saved ? toInteger16(store.GetSetting(section::cdToWav, key::cdDrive))
                                 : std::int16_t{1});
    });
    workbench.TracksList.Clear();
    skipping([&] { titles.setContactIdentity(program_.platform().contactIdentity()); },
             [&] { titles.setDevice(titles.DefaultDevice()); }, [&] { titles.setTimeLimit(lookupLimit); });
    succeeds([this] { listTracks(); });
}

// Whether titles are wanted or not, the disc is opened for them first: a failure leaves the list as it is.
void Settings::listTracks()
{
    Mp3Encoder& workbench = program_.mp3Encoder();
    workbench.CdBase1->setCommand("Open");
    if (chkCDDB.Value() == 1) {
        workbench.TLCDDB.Clear();
        workbench.TracksList.Clear();
        workbench.CdBase1->Lookup();
    }
    const std::int16_t count = workbench.CDtoWAV->TrackCount();
    for (listIndex = 1; listIndex <= count; ++listIndex) {
        const Text title = titleOf(listIndex);
        if (!title.empty())
            workbench.TLCDDB.AddItem(title);
        const Text name = title.empty() ? "Track " + twoDigits(listIndex) : title;
        workbench.TracksList.AddItem(workbench.trackLineOf(name, listIndex));
    }
}

// "" for a track that shows by its number.
Text Settings::titleOf(std::int16_t track)
{
    const CdBase& titles = *program_.mp3Encoder().CdBase1;
    const Text title = titles.TrackTitle(track);
    return chkCDDB.Value() == 1 && !title.empty() ? titles.DiscArtist() + " - " + title : "";
}

void Settings::CDDrives_Click() { SetCDtoWAVApp.setEnabled(true); }

void Settings::SetCDtoWavTB_Change() { SetCDtoWAVApp.setEnabled(true); }

void Settings::Dir3_Change() { SetCDtoWAVApp.setEnabled(true); }

void Settings::Drive3_Change()
{
    Dir3.setPath(Drive3.Drive());
    SetCDtoWAVApp.setEnabled(true);
}

// The lookup works with the first drive alone.
void Settings::chkCDDB_Click()
{
    SetCDtoWAVApp.setEnabled(true);
    if (chkCDDB.Value() == 1) {
        SetCDtoWavTB.setEnabled(false);
        SetCDtoWavTB.setText(titledNames);
        CDDrives.setSelected(0, true);
    } else {
        SetCDtoWavTB.setText(numberedNames);
        SetCDtoWavTB.setEnabled(true);
    }
}

// The directory and the beginning of the names reach the workbench with the next load of all settings, not
// here.
void Settings::storeCdToWavTab()
{
    auto& store = program_.settingsStore();
    store.SaveSetting(section::cdToWav, key::saveDirectory, Dir3.Path());
    store.SaveSetting(section::cdToWav, key::saveDrive, Drive3.Drive());
    store.SaveSetting(section::cdToWav, key::cdDrive, textOf(CDDrives.ListIndex() + 1));
    store.SaveSetting(section::cdToWav, key::fileNames, SetCDtoWavTB.Text());
    store.SaveSetting(section::cdToWav, key::accessCddb, textOf(chkCDDB.Value()));
    program_.mp3Encoder().AccessCDDB_OK.setCaption(textOf(chkCDDB.Value()));
    store.SaveSetting(section::cdToWav, key::settingsSaved, "yes");
    get_tracks_fsd();
}

void Settings::SetCDtoWAVApp_Click()
{
    storeCdToWavTab();
    SetCDtoWAVApp.setEnabled(false);
}

void Settings::SetCDtoWAVOK_Click()
{
    storeCdToWavTab();
    Hide();
}

void Settings::SetCDtoWAVCan_Click() { Hide(); }
