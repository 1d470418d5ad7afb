// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "platform/pump.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "workbench/file_names.h"
#include "workbench/mp3_encoder.h"
#include "workbench/track_line.h"

Text Mp3Encoder::trackLineOf(const Text& name, std::int16_t track)
{
    const std::int32_t minutes = CDtoWAV->TrackLength(track) / 60000;
    const std::int32_t seconds = CDtoWAV->TrackLength(track) / 1000 % 60;
    return trackLine(name, minutes, seconds, program_.platform().decimalSign());
}

// The first track's line stands for the disc: when it is the listed one, the disc counts as unchanged.
void Mp3Encoder::butRefresh_Click()
{
    const auto& store = program_.settingsStore();
    if (store.GetSetting(section::cdToWav, key::settingsSaved) == "yes")
        CDtoWAV->SelectDrive(toInteger16(store.GetSetting(section::cdToWav, key::cdDrive)));
    else
        CDtoWAV->SelectDrive(1);
    firstTrackLine = trackLineOf("Track 01", 1);
    if (firstTrackLine != TracksList.List(0) && trackReadFinished)
        program_.settings().get_tracks_fsd();
}

// Stop ends a track, not the run: the loop goes on with the next row that is checked at that moment.
void Mp3Encoder::EncCDtoWAVStart_Click()
{
    std::int32_t selected = 0;
    for (std::int32_t row = 0; row < TracksList.ListCount(); ++row)
        selected += TracksList.Selected(row) ? 1 : 0;
    if (selected == 0)
        return;
    tracksSelectedCount = selected;
    tracksStartedCount = 0;
    const std::int32_t count = TracksList.ListCount();
    for (std::int32_t row = 0; row < count; ++row)
        if (TracksList.Selected(row))
            readTrack(roundToInteger16(row + 1),
                      rippedFilePath(CDtoWAVsavedir.Caption(), trackFileName(row)));
    ProgressBarCDtoWAVtt.setValue(0);
    ProgressBarCDtoWAVat.setValue(0);
}

// The titles are taken by row, although a track without a title adds none.
Text Mp3Encoder::trackFileName(std::int32_t row) const
{
    if (toDouble(AccessCDDB_OK.Caption()) == 1)
        return cleanFileName(twoDigits(row + 1) + " - " + TLCDDB.List(row));
    return cleanFileName(CDtoWAVTB.Caption() + textOf(row + 1));
}

// A read that could not start is waited for all the same.
void Mp3Encoder::readTrack(std::int16_t track, const Text& path)
{
    ++tracksStartedCount;
    trackReadFinished = false;
    if (CDtoWAV->ReadTrack(track, path) != 0)
        program_.tell("Can't read track!");
    while (!trackReadFinished)
        program_.platform().pump().turn();
}

void Mp3Encoder::EncCDtoWAVStop_Click() { CDtoWAV->Stop(); }

void Mp3Encoder::CDtoWAV_Progress(std::int32_t position)
{
    ProgressBarCDtoWAVtt.setValue(static_cast<float>(toDouble(pc_len.Caption()) / 1000 * position));
    const double share = toDouble(pc_len.Caption()) / tracksSelectedCount;
    ProgressBarCDtoWAVat.setValue(
        static_cast<float>(static_cast<double>(ProgressBarCDtoWAVtt.Value()) / tracksSelectedCount +
                           (tracksStartedCount - 1) * share));
}

void Mp3Encoder::CDtoWAV_Done() { trackReadFinished = true; }
