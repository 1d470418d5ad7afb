// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/numbers.h"
#include "platform/pump.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "player/time_text.h"
#include "playlist/play_list_editor.h"
#include "program.h"

#include <span>

namespace
{

using SkippedStep = void (*)(StartUp&);

// clang-format off
constexpr SkippedStep fileInformation[] = {
    [](StartUp& w) { w.stitle.setCaption(w.Mp3Player->Title()); },
    [](StartUp& w) { w.sartist.setCaption(w.Mp3Player->Artist()); },
    [](StartUp& w) { w.salbum.setCaption(w.Mp3Player->Album()); },
    [](StartUp& w) { w.sgenre.setCaption(w.Mp3Player->GenreName(w.Mp3Player->GenreIndex())); },
    [](StartUp& w) { w.total_min = wholeMinutes(w.Mp3Player->Length()); },
    [](StartUp& w) { w.total_sec = twoDigitSeconds(w.Mp3Player->Length()); },
    [](StartUp& w) { w.slength.setCaption(w.total_min + ":" + w.total_sec); },
    [](StartUp& w) { w.sbitrate.setCaption(textOf(w.Mp3Player->Bitrate() / 1000.0)); },
    [](StartUp& w) { w.sfrequency.setCaption(textOf(w.Mp3Player->Frequency() / 1000.0)); },
};

constexpr SkippedStep wavLength[] = {
    [](StartUp& w) { w.total_min = wholeMinutes(w.MMControl1->Length()); },
    [](StartUp& w) { w.total_sec = twoDigitSeconds(w.MMControl1->Length()); },
    [](StartUp& w) { w.slength.setCaption(w.total_min + ":" + w.total_sec); },
};
// clang-format on

void skippingEach(std::span<const SkippedStep> statements, StartUp& window)
{
    for (const auto statement : statements)
        skipping([&] { statement(window); });
}

}

void StartUp::prepareOpenDialog()
{
    OpenSaveDialog1->setInitialName("");
    OpenSaveDialog1->setDialogTitle("Select a file to open");
    OpenSaveDialog1->setFilter("Wav Files|*.wav|Mp3 Files|*.mp3");
}

void StartUp::takeStoredFileType()
{
    const auto& store = program_.settingsStore();
    if (!store.GetSetting(section::general, key::fileType).empty())
        OpenSaveDialog1->setFilterIndex(toInteger16(store.GetSetting(section::general, key::fileType)));
}

void StartUp::retryingOpen()
{
    while (Mp3Player->Open(mp3filename.Caption(), "") != 0)
        program_.platform().pump().turn();
}

void StartUp::showFileInformation()
{
    for (const auto statement : fileInformation)
        statement(*this);
}

void StartUp::showFileInformationSkipping() { skippingEach(fileInformation, *this); }

void StartUp::showWavLengthSkipping() { skippingEach(wavLength, *this); }

// Which of the two runs is judged once: after the dialog the file is known, and still only the first has run.
void StartUp::Image1_Click()
{
    Image3.setEnabled(true);
    if (mp3filename.Caption().empty())
        playChosenFile();
    else
        playKnownFile();
}

void StartUp::playChosenFile()
{
    const bool prepared = program_.reporting([this] {
        takeStoredFileType();
        OpenSaveDialog1->setFlags(4112);
        prepareOpenDialog();
    });
    if (!prepared || !succeeds([this] { OpenSaveDialog1->ShowOpen(); }))
        return;

    if (OpenSaveDialog1->FilterIndex() == kind::mp3)
        skipping([this] { mp3filename.setCaption(OpenSaveDialog1->FileName()); },
                 [this] { Mp3Player->Stop(); }, [this] { Mp3Player->Close(); },
                 [this] { Mp3Player->Open(mp3filename.Caption(), ""); },
                 [this] { showFileInformationSkipping(); });
    else
        skipping([this] { mp3filename.setCaption(OpenSaveDialog1->FileName()); },
                 [this] { stitle.setCaption(OpenSaveDialog1->FileTitle()); },
                 [this] { MMControl1->setCommand("Close"); },
                 [this] { MMControl1->setDeviceType("WaveAudio"); },
                 [this] { MMControl1->setFileName(mp3filename.Caption()); },
                 [this] { MMControl1->setCommand("Open"); }, [this] { showWavLengthSkipping(); });

    skipping([this] {
        program_.settingsStore().SaveSetting(section::general, key::fileType,
                                             textOf(OpenSaveDialog1->FilterIndex()));
    });

    // The file is opened once more to be played.
    if (OpenSaveDialog1->FilterIndex() == kind::mp3)
        skipping([this] { Mp3Player->Stop(); }, [this] { Mp3Player->Close(); },
                 [this] { Mp3Player->Open(mp3filename.Caption(), ""); }, [this] { Mp3Player->Play(); });
    else
        skipping([this] { MMControl1->setFileName(mp3filename.Caption()); },
                 [this] { MMControl1->setCommand("Open"); }, [this] { MMControl1->setCommand("Play"); });
}

void StartUp::playKnownFile()
{
    if (OpenSaveDialog1->FilterIndex() != kind::mp3) {
        playWav();
        return;
    }
    if (paused_flag == 1) {
        Mp3Player->Play();
        paused_flag = 0;
    } else {
        Mp3Player->Stop();
        Mp3Player->Close();
        Mp3Player->Open(mp3filename.Caption(), "");
        Mp3Player->Play();
    }
    showFileInformation();
}

// The current file from its beginning, or on from a pause. The labels of an MP3 file before it stand.
void StartUp::playWav()
{
    if (paused_flag == 1) {
        MMControl1->setCommand("Play");
        paused_flag = 0;
        return;
    }
    MMControl1->setCommand("Close");
    MMControl1->setFileName(mp3filename.Caption());
    MMControl1->setCommand("Open");
    MMControl1->setCommand("Play");
}

void StartUp::Image3_Click()
{
    const bool isMp3 = OpenSaveDialog1->FilterIndex() == kind::mp3;
    if (paused_flag != 0) {
        isMp3 ? Mp3Player->Play() : MMControl1->setCommand("Play");
        paused_flag = 0;
    } else {
        isMp3 ? Mp3Player->Pause() : MMControl1->setCommand("Stop");
        paused_flag = 1;
    }
}

void StartUp::Image2_Click()
{
    program_.playListEditor().labtemp1.setCaption("1");
    if (OpenSaveDialog1->FilterIndex() == kind::mp3) {
        if (paused_flag == 1)
            Mp3Player->Pause();
        Mp3Player->Stop();
        Mp3Player->Close();
        pbar.setValue(0);
        Timer.setEnabled(true);
        retryingOpen();
    } else {
        MMControl1->setCommand("Close");
    }
    Image3.setEnabled(false);
    paused_flag = 0;
}

// Both engines are closed first, so a list that starts in a pause finds nothing open to continue: its row
// does not sound, and the pause is over.
void StartUp::playfunction1()
{
    MMControl1->setCommand("Close");
    Mp3Player->Stop();
    Mp3Player->Close();
    Image3.setEnabled(true);
    if (OpenSaveDialog1->FilterIndex() == kind::mp3)
        startMp3Row();
    else
        playWav();
}

void StartUp::startMp3Row()
{
    if (paused_flag == 1) {
        Mp3Player->Play();
        paused_flag = 0;
    } else {
        Mp3Player->Stop();
        Mp3Player->Close();
        retryingOpen();
        Mp3Player->Play();
    }
    showFileInformation();
}
