// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "sliders/bar_rules.h"

namespace
{

constexpr std::int16_t firstArrowKey = 37;
constexpr std::int16_t lastArrowKey = 40;

}

void StartUp::posbar_tim1_Timer()
{
    const Twips travel = posbar_bg.Width() - posbar_img2.Width();
    posbar_img2.setLeft(placeOfPercent(pbar.Value(), travel) + posbar_bg.Left());
}

void StartUp::posbar_bg_DragDrop(ctl::Image&, Twips X, Twips)
{
    const Twips travel = posbar_bg.Width() - posbar_img2.Width();
    if (travel < X)
        return;
    pbar.setValue(percentAt(X, travel));
    seek_to_bar_value();
}

// The WAV engine is opened anew and started at the place; the MP3 engine seeks to a frame and stays as it
// was.
void StartUp::seek_to_bar_value()
{
    const double share = pbar.Value() / 100.0;
    if (OpenSaveDialog1->FilterIndex() != kind::wav) {
        Mp3Player->Seek(roundToInteger32(
            share * (Mp3Player->Length() / static_cast<double>(Mp3Player->FrameDuration()))));
        return;
    }
    MMControl1->setCommand("Close");
    MMControl1->setFileName(mp3filename.Caption());
    MMControl1->setCommand("Open");
    if (pbar.Value() != 0)
        MMControl1->setFrom(roundToInteger32(share * MMControl1->Length()));
    MMControl1->setCommand("Play");
}

// The clock is held while the user has the bar in hand, or it would pull the number back.
void StartUp::posbar_img2_MouseDown(ctl::Button, std::int16_t, Twips, Twips) { Timer.setEnabled(false); }

void StartUp::posbar_img2_MouseUp(ctl::Button, std::int16_t, Twips, Twips) { resumeClock(); }

void StartUp::pbar_MouseDown() { Timer.setEnabled(false); }

void StartUp::pbar_MouseUp() { resumeClock(); }

void StartUp::pbar_KeyDown(std::int16_t keyCode)
{
    if (keyCode >= firstArrowKey && keyCode <= lastArrowKey)
        Timer.setEnabled(false);
}

void StartUp::pbar_KeyUp(std::int16_t) { resumeClock(); }

void StartUp::pbar_Scroll() { seek_to_bar_value(); }

void StartUp::resumeClock()
{
    if (!Timer.Enabled())
        Timer.setEnabled(true);
}
