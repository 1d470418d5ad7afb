// SPDX-License-Identifier: GPL-3.0-or-later
// The two windows that are drawn by pictures, without a mouse.
#include "support/player.h"
#include "support/pointer.h"
#include "support/widgets.h"

#include <QApplication>
#include <QFocusFrame>
#include <doctest/doctest.h>

namespace
{

const Text song = "/m/a.mp3";

struct Keys : Player {
    Form& form;

    explicit Keys(bool onList = false) : form(onList ? static_cast<Form&>(list()) : window)
    {
        mp3().frameDuration = 26.122F;
        mp3().length = 180000;
        window.Show();
        form.Show();
        form.page()->window()->activateWindow();
        QApplication::processEvents();
        calls();
    }

    void press(int key) { sendKey(form, QEvent::KeyPress, key); }
    void release(int key) { sendKey(form, QEvent::KeyRelease, key); }
    void type(int key, int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            press(key);
            release(key);
        }
    }

    // Tab, until that control has the keys.
    void to(const ctl::Control& control)
    {
        for (int i = 0; i < 20 && focused() != control.Name(); ++i)
            type(Qt::Key_Tab);
        REQUIRE(focused() == control.Name());
    }

    Text focused() const
    {
        auto* widget = QApplication::focusWidget();
        return widget ? widget->objectName().toStdString() : Text();
    }
    bool isMarked() const
    {
        auto* mark = form.page()->findChild<QFocusFrame*>();
        return mark && mark->isVisible();
    }
    Text around(int stops, int key)
    {
        Text names;
        for (int i = 0; i < stops; ++i) {
            type(key);
            names += focused() + " ";
        }
        return names;
    }
};

}

TEST_CASE("Tab goes round the main window as one reads it, and Shift+Tab back")
{
    Keys k;
    k.window.Image3.setEnabled(true);
    CHECK(k.around(10, Qt::Key_Tab) == "imgMenu Minimizeimg closeVLMimg Image1 Image3 Image2 vslider_img2 "
                                       "balbar_img2 posbar_img2 imgMenu ");
    CHECK(k.around(2, Qt::Key_Backtab) == "posbar_img2 balbar_img2 ");
}

TEST_CASE("Tab leaves out what cannot be pressed")
{
    Keys k;
    CHECK(k.around(5, Qt::Key_Tab) == "imgMenu Minimizeimg closeVLMimg Image1 Image2 ");
}

TEST_CASE("The list has the keys first; Tab goes on as one reads its window")
{
    Keys k(true);
    CHECK(k.focused() == "PlayListLB");
    CHECK(k.around(6, Qt::Key_Tab) == "moveitemupimg moveitemdownimg Previmg1 Playimg1 Stopimg1 Nextimg1 ");
    CHECK(k.around(2, Qt::Key_Tab) == "imgMenu closeVLMimg ");
    k.to(k.list().PlayListLB);
}

TEST_CASE("The mark is seen when a key brought the focus, and moves with the thumb")
{
    Keys k;
    CHECK_FALSE(k.isMarked());
    k.to(k.window.vslider_img2);
    CHECK(k.isMarked());
    const auto* mark = k.form.page()->findChild<QFocusFrame*>();
    const int before = mark->x();
    k.type(Qt::Key_End);
    CHECK(mark->x() > before);
    CHECK(mark->geometry().contains(widgetOf<QWidget>(k.form, "vslider_img2")->geometry()));
}

TEST_CASE("A click gives no picture the keys: U, D and Delete stay the list's")
{
    Keys k(true);
    for (const Text row : {"/m/a.mp3", "/m/b.mp3", "/m/c.mp3"})
        k.list().PlayListLB.AddItem(row);
    k.list().PlayListLB.setListIndex(0);
    Pointer(k.form).click(k.list().moveitemdownimg);
    CHECK(k.focused() == "PlayListLB");
    CHECK_FALSE(k.isMarked());
    k.type(Qt::Key_D);
    CHECK(k.list().PlayListLB.List(2) == "/m/a.mp3");
    k.type(Qt::Key_Delete);
    CHECK(k.list().PlayListLB.ListCount() == 2);
}

TEST_CASE("Space and Return press once, however long they are held")
{
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        CAPTURE(key);
        Keys k;
        k.current(song, kind::mp3);
        k.to(k.window.Image1);
        k.calls();
        k.press(key);
        CHECK(k.platform.log.count("Mp3Player.Play") == 1);
        for (int i = 0; i < 5; ++i)
            repeatKey(k.form, key);
        k.release(key);
        CHECK(k.platform.log.count("Mp3Player.Play") == 1);
        k.type(key);
        CHECK(k.platform.log.count("Mp3Player.Play") == 2);
    }
}

TEST_CASE("No other key presses a picture")
{
    Keys k;
    k.current(song, kind::mp3);
    k.to(k.window.Image1);
    k.calls();
    for (const int key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Right, Qt::Key_Delete})
        k.type(key);
    CHECK(k.calls().empty());
}

TEST_CASE("F10, the Menu key and Alt alone open the window's menu")
{
    for (const bool onList : {false, true})
        for (const int key : {Qt::Key_F10, Qt::Key_Menu, Qt::Key_Alt}) {
            CAPTURE(onList);
            CAPTURE(key);
            Keys k(onList);
            const Text shown = onList ? "listMenu.ShowPopupMenu" : "mainMenu.ShowPopupMenu";
            k.type(key);
            CHECK(k.calls().find(shown) != Text::npos);
        }
}

TEST_CASE("Alt with anything else opens no menu")
{
    Keys k;
    const auto opens = [&] { return k.calls().find("ShowPopupMenu") != Text::npos; };
    k.press(Qt::Key_Alt);
    sendKey(k.form, QEvent::KeyPress, Qt::Key_A, Qt::AltModifier);
    sendKey(k.form, QEvent::KeyRelease, Qt::Key_A, Qt::AltModifier);
    k.release(Qt::Key_Alt);
    CHECK_FALSE(opens());
    k.press(Qt::Key_Alt);
    Pointer(k.form).to({200, 190}).press().release();
    k.release(Qt::Key_Alt);
    CHECK_FALSE(opens());
    k.release(Qt::Key_Alt);
    CHECK_FALSE(opens());
    sendKey(k.form, QEvent::KeyPress, Qt::Key_Alt, Qt::ControlModifier);
    k.release(Qt::Key_Alt);
    CHECK_FALSE(opens());
    sendKey(k.form, QEvent::KeyPress, Qt::Key_F10, Qt::ShiftModifier);
    CHECK_FALSE(opens());
    k.type(Qt::Key_Alt);
    CHECK(opens());
}

TEST_CASE("The keys of a thumb move its slider as the user's own move, and the thumb with it")
{
    struct Row {
        const char* what;
        int key;
        std::int32_t before, volume, balance;
    };
    const Row rows[] = {
        {"right", Qt::Key_Right, 50, 51, 51},
        {"up", Qt::Key_Up, 50, 51, 51},
        {"left", Qt::Key_Left, 50, 49, 49},
        {"down", Qt::Key_Down, 50, 49, 49},
        {"a page up", Qt::Key_PageUp, 50, 60, 60},
        {"a page down", Qt::Key_PageDown, 50, 40, 40},
        {"home", Qt::Key_Home, 50, 0, -100},
        {"end", Qt::Key_End, 50, 100, 100},
        {"less than a page", Qt::Key_PageUp, 95, 100, 100},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        Keys k;
        k.current(song, kind::mp3);
        k.window.volslider.setValue(c.before);
        k.to(k.window.vslider_img2);
        k.calls();
        k.type(c.key);
        CHECK(k.window.volslider.Value() == c.volume);
        const Text level = textOf(c.volume);
        CHECK(k.calls() == "Mp3Player.SetVolume(" + level + ", " + level + ")\n");
        CHECK(k.window.vslider_img2.Left() == 360 + 1215 * static_cast<Twips>(c.volume) / 100);

        k.window.balslider.setValue(c.before);
        k.to(k.window.balbar_img2);
        k.calls();
        k.type(c.key);
        CHECK(k.window.balslider.Value() == c.balance);
        CHECK(k.platform.log.count("Mp3Player.SetVolume") + k.platform.log.of("Mp3Player").size() == 1);
        CHECK(k.window.balbar_img2.Left() ==
              doctest::Approx(360 + 607.5 + 607.5 * static_cast<double>(c.balance) / 100));
    }
}

TEST_CASE("A slider at its end goes no further, and says nothing")
{
    Keys k;
    k.current(song, kind::mp3);
    k.window.volslider.setValue(100);
    k.to(k.window.vslider_img2);
    k.calls();
    for (const int key : {Qt::Key_Right, Qt::Key_PageUp, Qt::Key_End})
        k.type(key);
    CHECK(k.window.volslider.Value() == 100);
    CHECK(k.calls().empty());
}

TEST_CASE("The clock stands while an arrow key moves the position, and runs when the key is up")
{
    Keys k;
    k.current(song, kind::mp3);
    k.to(k.window.posbar_img2);
    k.calls();
    k.press(Qt::Key_Right);
    CHECK_FALSE(k.window.Timer.Enabled());
    CHECK(k.window.pbar.Value() == 1);
    CHECK(k.calls() == "Mp3Player.Seek(69)\n");
    repeatKey(k.form, Qt::Key_Right);
    CHECK_FALSE(k.window.Timer.Enabled());
    CHECK(k.window.pbar.Value() == 2);
    CHECK(k.calls() == "Mp3Player.Seek(138)\n");
    k.release(Qt::Key_Right);
    CHECK(k.window.Timer.Enabled());
    CHECK(k.window.posbar_img2.Left() == doctest::Approx(1920 + 80.4));
}

TEST_CASE("The keys that are no arrows move the position while the clock goes on")
{
    Keys k;
    k.current(song, kind::mp3);
    k.to(k.window.posbar_img2);
    k.press(Qt::Key_PageUp);
    CHECK(k.window.Timer.Enabled());
    CHECK(k.window.pbar.Value() == 10);
    k.release(Qt::Key_PageUp);
    CHECK(k.window.Timer.Enabled());
}

TEST_CASE("The clock runs again when the keys go elsewhere while one is held")
{
    struct Row {
        const char* what;
        std::function<void(Keys&)> leave;
    };
    const Row rows[] = {
        {"another control", [](Keys& k) { k.press(Qt::Key_Tab); }},
        {"another window", [](Keys& k) { k.list().Show(); }},
        {"no window", [](Keys& k) { k.window.Hide(); }},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        Keys k;
        k.to(k.window.posbar_img2);
        k.press(Qt::Key_Left);
        REQUIRE_FALSE(k.window.Timer.Enabled());
        c.leave(k);
        QApplication::processEvents();
        CHECK(k.window.Timer.Enabled());
    }
}

TEST_CASE("A value set by the user through another way takes the same road, within the range")
{
    Keys k;
    k.current(song, kind::mp3);
    k.window.volslider.moveByUser(30);
    CHECK(k.calls() == "Mp3Player.SetVolume(30, 30)\n");
    CHECK(k.window.vslider_img2.Left() == 724.5F);
    k.window.volslider.moveByUser(-5);
    CHECK(k.window.volslider.Value() == 0);
    k.calls();
    k.window.volslider.moveByUser(0);
    CHECK(k.calls().empty());
}

TEST_CASE("Return in the list is a double click, once however long it is held")
{
    Keys k(true);
    int plays = 0;
    k.list().PlayListLB.DblClick.calls([&] { ++plays; });
    k.press(Qt::Key_Return);
    for (int i = 0; i < 5; ++i)
        repeatKey(k.form, Qt::Key_Return);
    k.release(Qt::Key_Return);
    CHECK(plays == 1);
    k.type(Qt::Key_Enter);
    CHECK(plays == 2);
}
