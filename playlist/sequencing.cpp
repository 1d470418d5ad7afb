// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "platform/numbers.h"
#include "platform/pump.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"

namespace
{

std::int16_t kindOf(const Text& path)
{
    return lowerCase(lastThreeCharacters(path)) == "mp3" ? kind::mp3 : kind::wav;
}

}

// Commands given during a run execute inside its wait and may start a run of their own. The shared `RunIndex`
// and the stop flag make the nest unwind: an outer run never goes on where it was interrupted.
void PlayListEditor::go_play_the_list(std::int32_t start)
{
    labtemp1.setCaption("0");
    const std::int32_t limit = PlayListLB.ListCount() - 1;
    for (RunIndex = start; RunIndex <= limit; ++RunIndex) {
        startRow(RunIndex);
        waitForEnd();
        if (toDouble(labtemp1.Caption()) == 1 || RunIndex == PlayListLB.ListCount() - 1)
            return;
    }
}

// Rows can be removed under a running run; it goes on to its old limit with empty texts.
void PlayListEditor::startRow(std::int32_t row)
{
    StartUp& player = program_.startUp();
    player.mp3filename.setCaption(PlayListLB.List(roundToInteger16(row)));
    player.OpenSaveDialog1->setFilterIndex(kindOf(PlayListLB.List(roundToInteger16(row))));
    const std::int16_t selected = roundToInteger16(row);
    if (selected < PlayListLB.ListCount())
        PlayListLB.setListIndex(selected);
    PlayIndex = row;
    player.playfunction1();
}

// Both waits ask the MP3 engine, for a WAV row as well: the run stands still on it until a command comes.
void PlayListEditor::waitForEnd()
{
    const Mp3Play& engine = *program_.startUp().Mp3Player;
    while (engine.IsPlaying() == 0)
        program_.platform().pump().turn();
    while (engine.IsPlaying() != 0)
        program_.platform().pump().turn();
}

// `paused_flag` stays as it is: a list started after a pause must meet it.
void PlayListEditor::stop_pl_first()
{
    StartUp& player = program_.startUp();
    labtemp1.setCaption("1");
    if (player.OpenSaveDialog1->FilterIndex() == kind::mp3) {
        player.Mp3Player->Stop();
        player.Mp3Player->Close();
        player.pbar.setValue(0);
        player.Timer.setEnabled(true);
        player.retryingOpen();
    } else {
        player.MMControl1->setCommand("Close");
    }
    player.Image3.setEnabled(false);
}

void PlayListEditor::GoDoStop() { stop_pl_first(); }

void PlayListEditor::Stopimg1_Click() { stop_pl_first(); }

void PlayListEditor::startFromFirst() { go_play_the_list(0); }

void PlayListEditor::GoDoPlayFromSelected()
{
    stop_pl_first();
    go_play_the_list(PlayListLB.ListIndex() == -1 ? 0 : PlayListLB.ListIndex());
}

void PlayListEditor::Playimg1_Click() { GoDoPlayFromSelected(); }

void PlayListEditor::GoDoNext()
{
    stop_pl_first();
    if (PlayIndex < PlayListLB.ListCount() - 1)
        go_play_the_list(PlayIndex + 1);
}

void PlayListEditor::Nextimg1_Click() { GoDoNext(); }

void PlayListEditor::Previmg1_Click()
{
    stop_pl_first();
    if (PlayIndex > 0)
        go_play_the_list(PlayIndex - 1);
}

void PlayListEditor::stopAndPrevious()
{
    stop_pl_first();
    Previmg1_Click();
}

// The one place where the case of the letters counts: a name in capitals goes to the WAV engine.
void PlayListEditor::GoDoPlaySelected()
{
    stop_pl_first();
    if (PlayListLB.ListIndex() != -1)
        playAlone(PlayListLB.Text(), lastThreeCharacters(PlayListLB.Text()) == "mp3" ? kind::mp3 : kind::wav);
}

void PlayListEditor::PlayListLB_DblClick()
{
    stop_pl_first();
    playAlone(PlayListLB.Text(), kindOf(PlayListLB.Text()));
}

// The stop flag stays up, so no other row follows, and Next counts from the last row of the last run.
void PlayListEditor::playAlone(const Text& path, std::int16_t kind)
{
    StartUp& player = program_.startUp();
    player.mp3filename.setCaption(path);
    player.OpenSaveDialog1->setFilterIndex(kind);
    player.playfunction1();
}
