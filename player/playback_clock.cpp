// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "player/time_text.h"
#include "playlist/play_list_editor.h"
#include "program.h"

void StartUp::Timer_Timer()
{
    readPosition();
    if (toDouble(elapsed_ms) == 0) {
        elapsed_min = "0";
        elapsed_sec = "00";
    } else {
        const std::int32_t elapsed = toInteger32(elapsed_ms);
        elapsed_min = wholeMinutes(elapsed);
        elapsed_sec = twoDigitSeconds(elapsed);
    }
    Label1.setCaption(elapsed_min + ":" + elapsed_sec);
    pbar.setValue(barValue(elapsed_ms, total_ms));

    // A minimised window's place means nothing; whether the list shows is worth keeping all the same.
    if (WindowState() != minimized)
        savePlace();
    PlayListEditor& list = program_.playListEditor();
    if (list.Visible())
        dockPlayListEditor();
    program_.settingsStore().SaveSetting(section::playListPlace, key::shown, list.Visible() ? "YES" : "NO");
}

void StartUp::readPosition()
{
    if (OpenSaveDialog1->FilterIndex() == kind::wav) {
        elapsed_ms = textOf(MMControl1->Position());
        total_ms = textOf(MMControl1->Length());
        return;
    }
    elapsed_ms = textOf(Mp3Player->FrameDuration() * static_cast<float>(Mp3Player->CurrentFrame()));
    total_ms = textOf(Mp3Player->Length());
}

void StartUp::savePlace()
{
    program_.settingsStore().SaveSetting(section::mainWindowPlace, key::left, textOf(Left()));
    program_.settingsStore().SaveSetting(section::mainWindowPlace, key::top, textOf(Top()));
}
