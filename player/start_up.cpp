// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/start_up.h"

#include "platform/message_boxes.h"
#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/pump.h"
#include "platform/version.h"
#include "player/first_place.h"
#include "playlist/play_list_editor.h"
#include "program.h"
#include "toolkit/spoken_names.h"
#include "toolkit/toolkit.h"

namespace
{

constexpr Extent client{6435_tw, 2985_tw};

// The version without its last number: "2.0".
Text shortVersion()
{
    const Text version = VELMORA_VERSION;
    return version.substr(0, version.rfind('.'));
}

}

StartUp::StartUp(Program& program) :
    Form(program.platform().toolkit(), "StartUp", Border::none, client),
    Mp3Player(program.platform().makeMp3Play()), MMControl1(program.platform().makeMMControl()),
    OpenSaveDialog1(program.platform().makeOpenSaveDialog()), program_(program)
{
    Image3.setEnabled(false);
    setTones();
    setKeys();
    // clang-format off
    ctl::setSpokenNames(*this, {
        {vslider_img2, "Volume"},
        {balbar_img2, "Balance"},
        {posbar_img2, "Position"},
    });
    // clang-format on
    wire();
}

void StartUp::setKeys()
{
    setMenuImage(imgMenu);
    volslider.showBy(vslider_img2, vslider_bg);
    balslider.showBy(balbar_img2, balbar_bg);
    pbar.showBy(posbar_img2, posbar_bg);
}

void StartUp::setTones()
{
    for (auto* caption : {&lblTitle, &lblArits, &lblAlbum, &lblGenre, &lblLength, &lblBitrate, &lblSampleFreq,
                          &lblkbps, &lblkHz})
        caption->setTone(ctl::Label::Tone::quiet);
    for (auto* lit : {&Label1, &fileinfofield}) {
        lit->setTone(ctl::Label::Tone::lit);
        lit->setCentered();
    }
}

void StartUp::wire()
{
    Load.calls(*this, &StartUp::Form_Load);
    Activate.calls(*this, &StartUp::Form_Activate);
    Deactivate.calls(*this, &StartUp::Form_Deactivate);
    Unload.calls(*this, &StartUp::Form_Unload);
    Terminate.calls(*this, &StartUp::Form_Terminate);
    TitleBarImg.MouseDown.calls(*this, &StartUp::TitleBarImg_MouseDown);
    Minimizeimg.Click.calls(*this, &StartUp::Minimizeimg_Click);
    closeVLMimg.Click.calls(*this, &StartUp::closeVLMimg_Click);
    Image1.Click.calls(*this, &StartUp::Image1_Click);
    Image2.Click.calls(*this, &StartUp::Image2_Click);
    Image3.Click.calls(*this, &StartUp::Image3_Click);
    imgMenu.Click.calls(*this, &StartUp::imgMenu_Click);
    Timer.Timer.calls(*this, &StartUp::Timer_Timer);
    vslider_tim1.Timer.calls(*this, &StartUp::vslider_tim1_Timer);
    balbar_tim1.Timer.calls(*this, &StartUp::balbar_tim1_Timer);
    posbar_tim1.Timer.calls(*this, &StartUp::posbar_tim1_Timer);
    vslider_bg.DragDrop.calls(*this, &StartUp::vslider_bg_DragDrop);
    vslider_bg.MouseDown.calls(*this, &StartUp::vslider_bg_MouseDown);
    balbar_bg.DragDrop.calls(*this, &StartUp::balbar_bg_DragDrop);
    balbar_bg.MouseDown.calls(*this, &StartUp::balbar_bg_MouseDown);
    volslider.Scroll.calls(*this, &StartUp::volslider_Scroll);
    balslider.Scroll.calls(*this, &StartUp::balslider_Scroll);
    posbar_bg.DragDrop.calls(*this, &StartUp::posbar_bg_DragDrop);
    posbar_img2.MouseDown.calls(*this, &StartUp::posbar_img2_MouseDown);
    posbar_img2.MouseUp.calls(*this, &StartUp::posbar_img2_MouseUp);
    pbar.MouseDown.calls(*this, &StartUp::pbar_MouseDown);
    pbar.MouseUp.calls(*this, &StartUp::pbar_MouseUp);
    pbar.KeyDown.calls(*this, &StartUp::pbar_KeyDown);
    pbar.KeyUp.calls(*this, &StartUp::pbar_KeyUp);
    pbar.Scroll.calls(*this, &StartUp::pbar_Scroll);
}

void StartUp::Form_Load()
{
    cP = program_.platform().makePopupMenu();
    cP->Click.calls(*this, &StartUp::cP_Click);
    cP->hWndOwner(*this);
    CreateMenus();
    placeFromStore();
    PlayListEditor& list = program_.playListEditor();
    Label1.setFontSize(24);
    Label1.setFontBold(true);
    if (program_.settingsStore().GetSetting(section::playListPlace, key::shown) == "YES")
        list.Show();
    conf_path = program_.platform().applicationFolder() + pathSeparator + "conf.mp3";
    setCaption("Velmora v" + shortVersion());
    readLevels();
}

void StartUp::placeFromStore()
{
    const auto& store = program_.settingsStore();
    const Text left = store.GetSetting(section::mainWindowPlace, key::left);
    const Text top = store.GetSetting(section::mainWindowPlace, key::top);
    const Place screen = toolkit().screen();
    setLeft(left.empty() ? centred(screen.left, screen.width, Width()) : toSingle(left));
    setTop(top.empty() ? centred(screen.top, screen.height, Height()) : toSingle(top));
}

// The engine knows its levels only while a file is open: that is what conf.mp3 is for.
void StartUp::readLevels()
{
    if (!FileOrDirExists(conf_path, "")) {
        program_.platform().messageBoxes().show(
            "The default mp3 configuration file (conf.mp3) was not found.\r\n"
            "Without this file you will not be able to change the volume.",
            "conf.mp3 not found", MessageBoxes::Icon::exclamation, MessageBoxes::Buttons::ok);
        return;
    }
    while (Mp3Player->Open(conf_path, "") != 0)
        program_.platform().pump().turn();
    const std::int16_t right = Mp3Player->RightVolume();
    const std::int16_t left = Mp3Player->LeftVolume();
    volslider.setValue(roundToInteger32((right + left) / 2.0));
    balslider.setValue(right - left);
    Mp3Player->Close();

    const Twips volumeTravel = vslider_bg.Width() - vslider_img2.Width();
    vslider_img2.setLeft(volumeTravel * static_cast<Twips>(volslider.Value()) / 100 + vslider_bg.Left());
    const Twips balanceHalf = (balbar_bg.Width() - balbar_img2.Width()) / 2;
    balbar_img2.setLeft(balanceHalf * static_cast<Twips>(balslider.Value()) / 100 + balbar_bg.Left() +
                        balanceHalf);
}

void StartUp::Form_Activate() { window_active = true; }

void StartUp::Form_Deactivate() { window_active = false; }

void StartUp::form_active_ok_sub() { window_active = true; }

void StartUp::Form_Unload() { closeEnginesAndEnd(); }

void StartUp::Form_Terminate() { closeEnginesAndEnd(); }

void StartUp::closeEnginesAndEnd()
{
    Mp3Player->Stop();
    Mp3Player->Close();
    MMControl1->setCommand("Close");
    program_.platform().endProgram();
}

// No engine is stopped and nothing is saved: the clock has saved everything already.
void StartUp::closeVLMimg_Click() { program_.platform().endProgram(); }

void StartUp::TitleBarImg_MouseDown(ctl::Button, std::int16_t, Twips, Twips) { dragWithPointer(); }

void StartUp::Minimizeimg_Click()
{
    setWindowState(minimized);
    program_.playListEditor().setWindowState(minimized);
}
