// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/message_boxes.h"
#include "platform/numbers.h"
#include "platform/paths.h"
#include "player/start_up.h"
#include "program.h"
#include "settingsdlg/settings.h"
#include "workbench/mp3_encoder.h"

namespace
{

// The value of a stored key, read anew at each use.
class Stored
{
public:
    Stored(const SettingsStore& store, const char* section) : store_(store), section_(section) {}

    Text text(const char* key) const { return store_.GetSetting(section_, key); }
    double number(const char* key) const { return toDouble(text(key)); }
    std::int16_t integer(const char* key) const { return toInteger16(text(key)); }
    bool isSaved() const { return text(key::settingsSaved) == "yes"; }

private:
    const SettingsStore& store_;
    const char* section_;
};

}

// The store is copied into the dialog, the workbench and the engines. The first use loads their windows in
// the middle of it, and those ask for the same: they are served by the run under way.
void StartUp::get_all_settings()
{
    if (loadingSettings_)
        return;
    struct Running {
        explicit Running(bool& flag) : flag_(flag) { flag_ = true; }
        ~Running() { flag_ = false; }
        bool& flag_;
    } running(loadingSettings_);
    loadAllSettings();
    if (std::exchange(settingsLoaded_, true))
        return;
    for (int tab = 0; tab < 4; ++tab)
        program_.settings().applyButton(tab).setEnabled(false);
}

void StartUp::loadAllSettings()
{
    const auto& store = program_.settingsStore();
    if (Stored(store, section::encoder).isSaved())
        GetEncoderSettings();
    else
        setEncoderDefaults();
    if (Stored(store, section::decoder).isSaved())
        GetDecoderSettings();
    else
        setDecoderDefaults();
    program_.settings().init();
    if (Stored(store, section::cdToWav).isSaved())
        GetCDtoWAVSettings();
    else
        setCdToWavDefaults();
    program_.settings().get_tracks_fsd();
    if (Stored(store, section::wavToCd).isSaved())
        GetWAVtoCDSettings();
    else
        setWavToCdDefaults();
}

// True when the default directory exists. It is tested and warned about, never made, and the section stays
// unsaved, so that the warning comes again.
bool StartUp::defaultDirectoryExists(const char* whatIsStored)
{
    const Text directory = program_.platform().defaultOutputDirectory();
    if (FileOrDirExists("", directory))
        return true;
    program_.platform().messageBoxes().show(
        "The default directory '" + directory +
            "' does not exist!\r\nPlease specify a directory in which the " + whatIsStored +
            " should be stored.",
        "Default directory does not exist!", MessageBoxes::Icon::none, MessageBoxes::Buttons::ok);
    return false;
}

void StartUp::setEncoderDefaults()
{
    Settings& settings = program_.settings();
    Mp3Encoder& workbench = program_.mp3Encoder();
    settings.SetEncBitr6.setValue(true);
    workbench.Mp3Encoder1->setBitrate(128000);
    settings.SetEncSF1.setValue(true);
    workbench.Mp3Encoder1->setHalfSampleRate(false);
    settings.Drive1.setDrive(Text(defaultDrive));
    if (defaultDirectoryExists("mp3s"))
        settings.Dir1.setPath(program_.platform().defaultOutputDirectory());
    workbench.outputdir.setCaption(settings.Dir1.Path());
}

void StartUp::setDecoderDefaults()
{
    Settings& settings = program_.settings();
    settings.Drive2.setDrive(Text(defaultDrive));
    if (defaultDirectoryExists("wave files"))
        settings.Dir2.setPath(program_.platform().defaultOutputDirectory());
    program_.mp3Encoder().outputdir2.setCaption(settings.Dir2.Path());
}

// With the directory missing the workbench's label stays as it was, unlike those of the two flows before.
void StartUp::setCdToWavDefaults()
{
    Settings& settings = program_.settings();
    Mp3Encoder& workbench = program_.mp3Encoder();
    settings.SetCDtoWavTB.setText("Track");
    settings.Drive3.setDrive(Text(defaultDriveWithoutSeparator));
    settings.CDDrives.setListIndex(0);
    if (defaultDirectoryExists("wave files")) {
        workbench.CDtoWAVsavedir.setCaption(program_.platform().defaultOutputDirectory());
        settings.Dir3.setPath(program_.platform().defaultOutputDirectory());
    }
    workbench.CDtoWAVTB.setCaption("Track");
}

void StartUp::setWavToCdDefaults()
{
    Settings& settings = program_.settings();
    ACDWRITE& writer = *program_.mp3Encoder().CDWriter;
    writer.setWriteSpeed(std::int16_t{1});
    settings.SetWAVtoCDSpeed1x.setValue(true);
    writer.setCloseDisc(false);
    settings.SetWAVtoCDclosedisc.setValue(0);
    writer.setSimulate(false);
    settings.SetWAVtoCDtestmode.setValue(0);
    writer.setAutoEject(true);
    settings.SetWAVtoCDautoeject.setValue(1);
}

void StartUp::GetEncoderSettings()
{
    const Stored stored(program_.settingsStore(), section::encoder);
    Settings& settings = program_.settings();
    Mp3Encoder& workbench = program_.mp3Encoder();
    for (const auto& row : settings.bitrateButtons)
        if (holdsOrFails([&] { return stored.number(key::bitrate) == row.bitsPerSecond; }))
            skipping([&] { row.button.setValue(true); });
    skipping([&] { workbench.Mp3Encoder1->setBitrate(stored.text(key::bitrate)); });
    const bool full = holdsOrFails([&] { return stored.number(key::sampleFrequency) == 0; });
    skipping([&] { (full ? settings.SetEncSF1 : settings.SetEncSF2).setValue(true); },
             [&] { workbench.Mp3Encoder1->setHalfSampleRate(!full); },
             [&] { settings.Drive1.setDrive(stored.text(key::saveDrive)); },
             [&] { settings.Dir1.setPath(stored.text(key::saveDirectory)); },
             [&] { workbench.outputdir.setCaption(stored.text(key::saveDirectory)); });
}

void StartUp::GetDecoderSettings()
{
    const Stored stored(program_.settingsStore(), section::decoder);
    Settings& settings = program_.settings();
    skipping([&] { settings.Drive2.setDrive(stored.text(key::saveDrive)); },
             [&] { settings.Dir2.setPath(stored.text(key::saveDirectory)); },
             [&] { program_.mp3Encoder().outputdir2.setCaption(stored.text(key::saveDirectory)); });
}

// The last branch overwrites the text box in either case: a beginning of the user's own lives on in the
// workbench's label and in the store alone.
void StartUp::GetCDtoWAVSettings()
{
    const Stored stored(program_.settingsStore(), section::cdToWav);
    Settings& settings = program_.settings();
    Mp3Encoder& workbench = program_.mp3Encoder();
    skipping([&] { settings.SetCDtoWavTB.setText(stored.text(key::fileNames)); },
             [&] { settings.Drive3.setDrive(stored.text(key::saveDrive)); },
             [&] { settings.Dir3.setPath(stored.text(key::saveDirectory)); },
             [&] { settings.CDDrives.setListIndex(roundToInteger32(stored.number(key::cdDrive) - 1)); },
             [&] { workbench.CDtoWAVsavedir.setCaption(stored.text(key::saveDirectory)); },
             [&] { workbench.CDtoWAVTB.setCaption(stored.text(key::fileNames)); },
             [&] { settings.chkCDDB.setValue(stored.integer(key::accessCddb)); },
             [&] { workbench.AccessCDDB_OK.setCaption(textOf(settings.chkCDDB.Value())); });
    if (settings.chkCDDB.Value() == 1)
        skipping([&] { settings.SetCDtoWavTB.setEnabled(false); },
                 [&] { settings.SetCDtoWavTB.setText("Track - Artist - Title"); },
                 [&] { settings.CDDrives.setSelected(0, true); });
    else
        skipping([&] { settings.SetCDtoWavTB.setText("Track"); },
                 [&] { settings.SetCDtoWavTB.setEnabled(true); });
}

void StartUp::GetWAVtoCDSettings()
{
    const Stored stored(program_.settingsStore(), section::wavToCd);
    Settings& settings = program_.settings();
    ACDWRITE& writer = *program_.mp3Encoder().CDWriter;
    skipping([&] { writer.setWriteSpeed(stored.text(key::writeSpeed)); });
    for (const auto& row : settings.speedButtons)
        if (holdsOrFails([&] { return stored.number(key::writeSpeed) == row.factor; }))
            skipping([&] { row.button.setValue(true); });
    const bool close = holdsOrFails([&] { return stored.number(key::closeDisc) == 1; });
    skipping([&] { writer.setCloseDisc(close); },
             [&] { settings.SetWAVtoCDclosedisc.setValue(close ? 1 : 0); });
    const bool simulate = holdsOrFails([&] { return stored.number(key::simulateWriting) == 1; });
    skipping([&] { writer.setSimulate(simulate); },
             [&] { settings.SetWAVtoCDtestmode.setValue(simulate ? 1 : 0); });
    const bool eject = holdsOrFails([&] { return stored.number(key::autoEject) == 1; });
    skipping([&] { writer.setAutoEject(eject); },
             [&] { settings.SetWAVtoCDautoeject.setValue(eject ? 1 : 0); },
             [&] { writer.SelectDrive(stored.integer(key::selectedWriter)); },
             [&] { writer.SetWriterType(stored.integer(key::writerType)); },
             [&] { settings.SetWAVtoCDwritertype.setText(stored.text(key::writerType)); });
}
