// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/face.h"
#include "support/pointer.h"
#include "support/waiting.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QWindow>
#include <doctest/doctest.h>

#include <chrono>
#include <functional>

namespace
{

struct Rounded {
    Text what;
    Twips given;
    Twips stands;
};

// Two windows that tell who of them was activated, in one log.
struct Pair {
    Toolkit toolkit{Toolkit::Timers::byHand};
    Face one{toolkit, "one"};
    Face other{toolkit, "other"};
    Text heard;

    Pair()
    {
        one.Activate.calls([this] { heard += "one on\n"; });
        one.Deactivate.calls([this] { heard += "one off\n"; });
        other.Activate.calls([this] { heard += "other on\n"; });
        other.Deactivate.calls([this] { heard += "other off\n"; });
    }

    Text told() { return std::exchange(heard, {}); }
};

void saysTheWindowManager(Form& form, QEvent::Type type)
{
    QEvent event(type);
    QApplication::sendEvent(form.page(), &event);
}

}

TEST_CASE("A window stands on whole pixels, and what is set reads back so at once")
{
    const Rounded cases[] = {
        {"a whole pixel", 300, 300},
        {"just under half a pixel more", 307, 300},
        {"half a pixel more", 307.5F, 315},
        {"just over half a pixel more", 308, 315},
        {"left of the screen", -6435, -6435},
        {"a fraction left of the screen", -20, -15},
        {"nothing", 0, 0},
        {"far away", 150000, 150000},
    };
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    for (const bool shown : {false, true}) {
        CAPTURE(shown);
        if (shown)
            face.Show();
        for (const auto& c : cases) {
            CAPTURE(c.what);
            face.setLeft(c.given);
            CHECK(face.Left() == c.stands);
            face.setTop(c.given);
            CHECK(face.Top() == c.stands);
            CHECK(face.Left() == c.stands);
        }
    }
}

TEST_CASE("A window has the size of its client area")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    CHECK(face.Width() == 3000);
    CHECK(face.Height() == 3000);
    face.Show();
    CHECK(face.Width() == 3000);
    CHECK(face.Height() == 3000);
}

TEST_CASE("A window that is shown comes up where it was placed while it was hidden")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.setTop(600);
    CHECK_FALSE(face.Visible());
    face.Show();
    QApplication::processEvents();
    CHECK(face.Visible());
    CHECK(face.page()->pos() == QPoint(100, 40));
    CHECK(face.Left() == 1500);
    CHECK(face.Top() == 600);
}

TEST_CASE("What the window manager says of a window's own moves does not change where the window stands")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.Show();
    for (const Twips left : {300, 600, 900, 1200}) {
        face.setLeft(left);
        QApplication::processEvents();
        CHECK(face.Left() == left);
    }
}

TEST_CASE("A place that was asked for before the word on two older moves had come is the window's in the end")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    CHECK(waitFor([&] { // it comes within a second, in which a busy machine may do nothing
        Face face(toolkit);
        face.Show();
        Pointer(face).to({5, 5}).press();
        face.setLeft(1500);
        face.setLeft(3000);
        face.page()->move(100, 0);
        face.setLeft(1500);
        face.page()->move(200, 0);
        return face.Left() == 1500 && face.page()->x() == 100;
    }));
}

TEST_CASE("Until the user touches a window that has a place, the window manager's choice does not count")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.Show();
    face.page()->move(200, 200);
    CHECK(face.Left() == 1500);
    CHECK(face.page()->x() == 100);
}

TEST_CASE("A window manager that insists has its way, and the place that it gave is the window's")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    CHECK(waitFor([&] { // it answers within a second, in which a busy machine may do nothing
        Face face(toolkit);
        face.setLeft(1500);
        face.Show();
        face.page()->move(200, 200);
        face.page()->move(200, 200);
        return face.Left() == 3000 && face.page()->x() == 200 && face.isKeptFrom(1500, 0);
    }));
}

TEST_CASE("A place that was refused is asked for again after another one was let stand")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    CHECK(waitFor([&] {
        Face face(toolkit);
        face.setLeft(1500);
        face.Show();
        face.page()->move(200, 0);
        face.page()->move(200, 0);
        const bool wasKept = face.isKeptFrom(1500, 0);
        face.setLeft(4500);
        return wasKept && waitFor([&] { return !face.isKeptFrom(1500, 0); });
    }));
}

TEST_CASE("A place that was refused stays refused while the window stands where it was not asked to")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    CHECK(waitFor([&] {
        Face face(toolkit);
        face.setLeft(1500);
        face.Show();
        face.page()->move(200, 0);
        face.page()->move(200, 0);
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(1200);
        return waitFor([&] { return !face.isKeptFrom(1500, 0) || std::chrono::steady_clock::now() > end; }) &&
               face.isKeptFrom(1500, 0);
    }));
}

TEST_CASE("A window that was touched once has its place put right when it is shown again")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.Show();
    Pointer(face).to({5, 5}).press().release();
    face.page()->move(200, 200);
    REQUIRE(face.Left() == 3000);
    face.Hide();
    face.setLeft(4500);
    face.Show();
    face.page()->move(200, 200);
    CHECK(face.Left() == 4500);
    CHECK(face.page()->x() == 300);
}

TEST_CASE("A pointer that passes over a window without a button has not touched it")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.Show();
    QMouseEvent hover(QEvent::MouseMove, QPointF(5, 5), QPointF(105, 5), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(face.page()->windowHandle(), &hover);
    face.page()->move(200, 200);
    CHECK(face.Left() == 1500);
}

TEST_CASE(
    "A framed window is taken by its frame without a word to it: half a second after it came, by the user")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    struct Framed final : Form {
        using Form::Form;
    } framed(toolkit, "Framed", Form::Border::fixed, {3000, 3000});
    framed.setLeft(1500);
    framed.Show();
    CHECK(waitFor([&] {
        framed.page()->move(framed.page()->x() + 1, 200);
        return framed.Left() != 1500;
    }));
}

TEST_CASE("A move by the user is adopted")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.setTop(600);
    face.Show();
    Pointer(face).to({5, 5}).press();
    face.page()->move(200, 200);
    CHECK(face.Left() == 3000);
    CHECK(face.Top() == 3000);
    face.page()->move(150, 41);
    CHECK(face.Left() == 2250);
    CHECK(face.Top() == 615);
}

TEST_CASE("A repeated Left is no move")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.setTop(600);
    face.Show();
    Pointer(face).to({5, 5}).press();
    face.page()->move(200, 40);
    CHECK(face.Left() == 3000);
    for (int i = 0; i < 5; ++i)
        face.setLeft(3000);
    face.page()->move(150, 40);
    CHECK(face.Left() == 2250);
    face.page()->move(200, 40);
    CHECK(face.Left() == 3000);
}

TEST_CASE("Show activates at once: first the old window goes, then the new one comes")
{
    Pair pair;
    pair.one.Show();
    CHECK(pair.told() == "one on\n");
    QApplication::processEvents();
    CHECK(pair.told().empty());
    pair.other.Show();
    CHECK(pair.told() == "one off\nother on\n");
    QApplication::processEvents();
    CHECK(pair.told().empty());
}

TEST_CASE("A window that hears of its activation is visible already")
{
    Pair pair;
    bool visible = false;
    pair.one.Activate.calls([&] { visible = pair.one.Visible(); });
    pair.one.Show();
    CHECK(visible);
}

TEST_CASE("Show of the active window raises nothing")
{
    Pair pair;
    pair.one.Show();
    pair.told();
    pair.one.Show();
    CHECK(pair.told().empty());
}

TEST_CASE("Show of a visible window that is not active activates it")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    pair.told();
    pair.one.Show();
    CHECK(pair.told() == "other off\none on\n");
}

TEST_CASE("A press activates its window before the control hears of it, whichever button it is")
{
    for (const auto button : {Qt::LeftButton, Qt::RightButton}) {
        Pair pair;
        pair.one.Show();
        pair.other.Show();
        pair.told();
        pair.one.key.MouseDown.calls(
            [&](ctl::Button, std::int16_t, Twips, Twips) { pair.heard += "pressed\n"; });
        Pointer pointer(pair.one);
        pointer.click(pair.one.key, button);
        CHECK(pair.told() == "other off\none on\npressed\n");
        pointer.click(pair.one.key, button);
        CHECK(pair.told() == "pressed\n");
    }
}

TEST_CASE("A quick second press activates, too")
{
    Pair pair;
    pair.one.Show();
    Pointer pointer(pair.one);
    pointer.click(pair.one.key);
    pair.other.Show();
    pair.told();
    pointer.pressQuickly();
    CHECK(pair.told() == "other off\none on\n");
}

TEST_CASE("A window that went while it was active is forgotten")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    {
        Face face(toolkit);
        face.Show();
    }
    Face next(toolkit);
    next.Show();
    CHECK(next.told() == "Activate\n");
}

TEST_CASE("A press on the bare face activates, too")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    pair.told();
    Pointer(pair.one).to({190, 190}).press();
    CHECK(pair.told() == "other off\none on\n");
}

TEST_CASE("The window manager's own word on a change that was told is swallowed")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    pair.told();
    saysTheWindowManager(pair.one, QEvent::WindowDeactivate);
    saysTheWindowManager(pair.other, QEvent::WindowActivate);
    CHECK(pair.told().empty());
}

TEST_CASE("A change that the window manager made is told")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    pair.told();
    SUBCASE("the new window first")
    {
        saysTheWindowManager(pair.one, QEvent::WindowActivate);
        saysTheWindowManager(pair.other, QEvent::WindowDeactivate);
        CHECK(pair.told() == "other off\none on\n");
    }
    SUBCASE("the old window first")
    {
        saysTheWindowManager(pair.other, QEvent::WindowDeactivate);
        saysTheWindowManager(pair.one, QEvent::WindowActivate);
        CHECK(pair.told() == "other off\none on\n");
    }
}

TEST_CASE("A window is still the active one when a dialog or another program was in front")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    pair.told();
    saysTheWindowManager(pair.other, QEvent::WindowDeactivate);
    CHECK(pair.told().empty());
    saysTheWindowManager(pair.other, QEvent::WindowActivate);
    CHECK(pair.told().empty());
    saysTheWindowManager(pair.other, QEvent::WindowDeactivate);
    Pointer(pair.one).to({190, 190}).press();
    CHECK(pair.told() == "other off\none on\n");
}

TEST_CASE("A window that hides is deactivated; one that was not active is not")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    pair.told();
    pair.one.Hide();
    CHECK(pair.told().empty());
    pair.other.Hide();
    CHECK(pair.told() == "other off\n");
    CHECK_FALSE(pair.other.Visible());
}

TEST_CASE("Two programs in one process do not hear of each other's windows")
{
    Toolkit mine(Toolkit::Timers::byHand);
    Toolkit yours(Toolkit::Timers::byHand);
    Face my(mine, "my");
    Face your(yours, "your");
    my.Show();
    your.Show();
    QApplication::processEvents();
    my.told();
    your.told();
    Pointer(my).click(my.key, Qt::RightButton);
    CHECK(my.told() == "key down 2 0 at 150, 150\nkey up 2\n");
    CHECK(your.told().empty());
    Pointer(your).click(your.key, Qt::RightButton);
    CHECK(my.told().empty());
    CHECK(your.told() == "key down 2 0 at 150, 150\nkey up 2\n");
}

TEST_CASE("A window's state reads back at once and never shows a hidden window")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setWindowState(Form::minimized);
    CHECK(face.WindowState() == Form::minimized);
    CHECK_FALSE(face.Visible());
    face.setWindowState(Form::normal);
    CHECK(face.WindowState() == Form::normal);
    CHECK_FALSE(face.Visible());
    CHECK(face.told().empty());
}

TEST_CASE("Show brings a minimised window back, whether it was visible or not")
{
    for (const bool visible : {false, true}) {
        CAPTURE(visible);
        Toolkit toolkit(Toolkit::Timers::byHand);
        Face face(toolkit);
        if (visible)
            face.Show();
        face.setWindowState(Form::minimized);
        CHECK(face.page()->isMinimized() == visible);
        face.Show();
        CHECK_FALSE(face.page()->isMinimized());
        CHECK(face.WindowState() == Form::normal);
    }
}

TEST_CASE("A dialog window can be closed and not minimised or maximised, another framed one minimised, too")
{
    struct Framed final : Form {
        using Form::Form;
    };
    Toolkit toolkit(Toolkit::Timers::byHand);
    Framed dialog(toolkit, "Dialog", Form::Border::dialog, {3000, 3000});
    Framed window(toolkit, "Window", Form::Border::fixed, {3000, 3000});
    const auto flags = [](Form& form) { return form.page()->windowFlags(); };
    for (auto* form : {&dialog, &window}) {
        CHECK(flags(*form).testFlag(Qt::WindowCloseButtonHint));
        CHECK_FALSE(flags(*form).testFlag(Qt::WindowMaximizeButtonHint));
    }
    CHECK((flags(dialog) & Qt::WindowType_Mask) == Qt::Dialog);
    CHECK_FALSE(flags(dialog).testFlag(Qt::WindowMinimizeButtonHint));
    CHECK((flags(window) & Qt::WindowType_Mask) == Qt::Window);
    CHECK(flags(window).testFlag(Qt::WindowMinimizeButtonHint));
}

TEST_CASE("A visible window is minimised and comes back; neither activates it")
{
    Pair pair;
    pair.one.Show();
    pair.other.Show();
    QApplication::processEvents();
    pair.told();
    pair.one.setWindowState(Form::minimized);
    CHECK(pair.one.WindowState() == Form::minimized);
    CHECK(pair.one.page()->isMinimized());
    CHECK(pair.one.Visible());
    pair.one.setWindowState(Form::normal);
    CHECK(pair.one.WindowState() == Form::normal);
    CHECK_FALSE(pair.one.page()->isMinimized());
    CHECK(pair.told().empty());
}

TEST_CASE("What the window manager does to a window's state is adopted")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.Show();
    face.page()->setWindowState(Qt::WindowMinimized);
    CHECK(face.WindowState() == Form::minimized);
    face.page()->setWindowState(Qt::WindowNoState);
    CHECK(face.WindowState() == Form::normal);
}

TEST_CASE("A minimised window keeps its place, whatever the system says of it")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.Show();
    face.page()->move(100, 40);
    REQUIRE(face.Left() == 1500);
    face.setWindowState(Form::minimized);
    face.page()->move(-32000, -32000);
    CHECK(face.Left() == 1500);
    CHECK(face.Top() == 600);
}

TEST_CASE("A window without a place is where the window manager puts it, and comes back there")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.Show();
    face.page()->move(300, 200);
    face.page()->move(310, 210);
    CHECK(face.Left() == 4650);
    CHECK(face.Top() == 3150);
    face.Hide();
    face.Show();
    CHECK(face.page()->pos() == QPoint(310, 210));
}

TEST_CASE("The window manager's close hides a window and keeps it")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.Show();
    face.told();
    face.page()->close();
    CHECK_FALSE(face.Visible());
    CHECK(face.told() == "Deactivate\n");
    face.Show();
    CHECK(face.Visible());
}

TEST_CASE("A caption reads back, whatever its bytes show as")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setCaption("Velmora v2.0");
    CHECK(face.Caption() == "Velmora v2.0");
    face.setCaption("R&B \xC3\xA9");
    CHECK(face.Caption() == "R&B \xC3\xA9");
}

TEST_CASE("A window that the pointer drags follows it until the last button is up")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(1500);
    face.setTop(1500);
    face.Show();
    QApplication::processEvents();
    face.key.MouseDown.calls([&](ctl::Button, std::int16_t, Twips, Twips) { face.dragWithPointer(); });
    QCursor::setPos(300, 200); // a quick hand is further by now
    Pointer pointer(face);
    pointer.to({15, 15}).press();
    pointer.to({45, 5});
    CHECK(face.Left() == 1950);
    CHECK(face.Top() == 1350);
    QApplication::processEvents();
    pointer.to({15, 15});
    CHECK(face.Left() == 1950);
    pointer.press(Qt::RightButton).release(Qt::LeftButton).to({17, 15});
    CHECK(face.Left() == 1980);
    pointer.release(Qt::RightButton).to({60, 60});
    CHECK(face.Left() == 1980);
    CHECK(face.Top() == 1350);
    CHECK(QWidget::mouseGrabber() == nullptr);
}

TEST_CASE("A drag whose release goes elsewhere ends, and the pointer is free")
{
    struct Ending {
        Text what;
        std::function<void(Face&)> end;
    };
    QDialog box;
    box.setModal(true);
    box.setGeometry(600, 400, 100, 100); // beside the place of the press
    const Ending endings[] = {
        {"a modal box", [&](Face&) { box.show(); }},
        {"a lost pointer",
         [](Face& face) {
             QEvent lost(QEvent::UngrabMouse);
             QApplication::sendEvent(face.page(), &lost);
         }},
        {"a window that is closed", [](Face& face) { face.page()->close(); }},
        {"a window that hides", [](Face& face) { face.Hide(); }},
        {"a pointer that comes back without its button",
         [](Face& face) {
             QMouseEvent move(QEvent::MouseMove, QPointF(50, 50), QPointF(400, 400), Qt::NoButton,
                              Qt::NoButton, Qt::NoModifier);
             QApplication::sendEvent(face.page()->windowHandle(), &move);
         }},
    };
    for (const auto& c : endings) {
        CAPTURE(c.what);
        Toolkit toolkit(Toolkit::Timers::byHand);
        Face face(toolkit);
        face.setLeft(1500);
        face.Show();
        QApplication::processEvents();
        face.key.MouseDown.calls([&](ctl::Button, std::int16_t, Twips, Twips) { face.dragWithPointer(); });
        Pointer pointer(face);
        pointer.to({15, 15}).press().to({25, 15});
        REQUIRE(face.Left() == 1650);
        REQUIRE(QWidget::mouseGrabber() == face.page());
        c.end(face);
        QApplication::processEvents();
        CHECK(QWidget::mouseGrabber() == nullptr);
        pointer.to({60, 60});
        CHECK(face.Left() == 1650);
        box.hide();
        QApplication::processEvents();
    }
}

TEST_CASE("A press that comes for the window that was just dragged goes to the one under it")
{
    Pair pair;
    pair.one.Show();
    pair.other.setLeft(6000);
    pair.other.Show();
    QApplication::processEvents();
    const QPointF inOther(415, 15); // on its key, as the other window counts
    Pointer pointer(pair.one);
    pointer.to(inOther).press();
    CHECK(pair.other.heard == "key down 1 0 at 75, 75\n");
    CHECK(pair.one.heard.empty());
}

TEST_CASE("A press that comes past a dialog is passed on to no window")
{
    Pair pair;
    pair.one.Show();
    pair.other.setLeft(6000);
    pair.other.Show();
    QApplication::processEvents();
    const auto press = [&] {
        pair.other.heard.clear();
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(415, 15), QPointF(415, 15), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(pair.one.page()->windowHandle(), &event);
        return !pair.other.heard.empty();
    };
    CHECK(press());
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(15, 15), QPointF(415, 15), Qt::LeftButton,
                        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(pair.other.page()->windowHandle(), &release);
    QDialog box;
    box.setModal(true);
    box.setGeometry(600, 400, 100, 100); // beside the place of the press
    box.show();
    QApplication::processEvents();
    CHECK(!press());
}

TEST_CASE("Without a button down there is nothing to drag")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.Show();
    face.dragWithPointer();
    CHECK(QWidget::mouseGrabber() == nullptr);
}
