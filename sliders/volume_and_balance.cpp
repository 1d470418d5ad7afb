// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/numbers.h"
#include "platform/pump.h"
#include "player/file_kind.h"
#include "player/start_up.h"
#include "playlist/play_list_editor.h"
#include "program.h"
#include "sliders/bar_rules.h"

namespace
{

Twips travelOf(const ctl::Image& track, const ctl::Image& thumb) { return track.Width() - thumb.Width(); }

bool fits(Twips left, const ctl::Image& track, const ctl::Image& thumb)
{
    return track.Left() + track.Width() - thumb.Width() >= left;
}

}

bool StartUp::noMp3Current() const
{
    return OpenSaveDialog1->FilterIndex() == kind::wav || mp3filename.Caption().empty();
}

// The engine takes levels only with a file open. Whether that is the current file is asked anew at the end:
// the wait lets other handlers run.
void StartUp::withOpenEngine(const std::function<void()>& call)
{
    if (noMp3Current())
        while (Mp3Player->Open(conf_path, "") != 0)
            program_.platform().pump().turn();
    call();
    if (noMp3Current())
        Mp3Player->Close();
}

// Both channels get the same number: the balance is heard again only after a gesture on its own bar.
void StartUp::re_set_volume()
{
    volslider_Scroll();
    showVolumeToolTip();
}

void StartUp::showVolumeToolTip()
{
    vslider_img2.setToolTipText("Volume: " + textOf(volslider.Value()) + "%");
}

void StartUp::volslider_Scroll()
{
    withOpenEngine([this] {
        const auto volume = static_cast<std::int16_t>(volslider.Value());
        Mp3Player->SetVolume(volume, volume);
    });
}

void StartUp::apply_balance()
{
    withOpenEngine([this] {
        const ChannelLevels levels = levelsOf(volslider.Value(), balslider.Value());
        Mp3Player->SetVolume(levels.left, levels.right);
    });
}

void StartUp::balslider_Scroll() { apply_balance(); }

void StartUp::vslider_bg_DragDrop(ctl::Image&, Twips X, Twips)
{
    const Twips travel = travelOf(vslider_bg, vslider_img2);
    if (travel < X)
        return;
    vslider_img2.setLeft(vslider_bg.Left() + X);
    volslider.setValue(percentAt(X, travel));
    re_set_volume();
}

void StartUp::balbar_bg_DragDrop(ctl::Image&, Twips X, Twips)
{
    const Twips travel = travelOf(balbar_bg, balbar_img2);
    if (X <= travel) {
        balbar_img2.setLeft(balbar_bg.Left() + X);
        balslider.setValue(balanceAt(X, travel));
    }
    apply_balance();
}

void StartUp::vslider_bg_MouseDown(ctl::Button, std::int16_t, Twips X, Twips)
{
    const auto step = stepTowards(X + vslider_bg.Left(), vslider_img2.Left(), vslider_img2.Width());
    if (step == 0)
        return;
    slider_step = step;
    const Twips left = vslider_img2.Left() + static_cast<Twips>(slider_step);
    if (fits(left, vslider_bg, vslider_img2)) {
        vslider_img2.setLeft(left);
        volslider.setValue(percentAt(left - vslider_bg.Left(), travelOf(vslider_bg, vslider_img2)));
    }
    re_set_volume();
}

void StartUp::balbar_bg_MouseDown(ctl::Button, std::int16_t, Twips X, Twips)
{
    const auto step = stepTowards(X + balbar_bg.Left(), balbar_img2.Left(), balbar_img2.Width());
    if (step == 0)
        return;
    slider_step = step;
    const Twips left = balbar_img2.Left() + static_cast<Twips>(slider_step);
    if (fits(left, balbar_bg, balbar_img2)) {
        balbar_img2.setLeft(left);
        balslider.setValue(balanceAt(left - balbar_bg.Left(), travelOf(balbar_bg, balbar_img2)));
    }
    apply_balance();
}

// The list window comes back with the main window, and cannot stay minimised alone.
void StartUp::vslider_tim1_Timer()
{
    showVolumeToolTip();
    if (WindowState() != minimized)
        program_.playListEditor().setWindowState(normal);
}

void StartUp::balbar_tim1_Timer() { balbar_img2.setToolTipText("Balance: " + textOf(balslider.Value())); }
