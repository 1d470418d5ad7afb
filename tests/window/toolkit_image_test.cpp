// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/face.h"
#include "support/pointer.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <doctest/doctest.h>

namespace
{

struct Shown {
    Toolkit toolkit{Toolkit::Timers::byHand};
    Face face{toolkit};
    Pointer pointer{(face.Show(), face)};

    Shown() { face.told(); }
};

}

TEST_CASE("A left press and its release inside click an image")
{
    Shown s;
    s.pointer.click(s.face.key);
    CHECK(s.face.told() == "key down 1 0 at 150, 150\nkey up 1\nkey click\n");
}

TEST_CASE("A release outside is no click")
{
    Shown s;
    s.pointer.to(s.face.key).press().to({2, 2}).release();
    CHECK(s.face.told() == "key down 1 0 at 150, 150\nkey up 1\n");
    s.pointer.to(s.face.key).press().to({2, 2}).to(s.face.key).release();
    CHECK(s.face.told() == "key down 1 0 at 150, 150\nkey up 1\nkey click\n");
}

TEST_CASE("A press outside that is released inside is no click")
{
    Shown s;
    s.pointer.to({2, 2}).press().to(s.face.key).release();
    CHECK(s.face.told().empty());
}

TEST_CASE("Every button presses, the left one alone clicks")
{
    Shown s;
    s.pointer.click(s.face.key, Qt::RightButton);
    CHECK(s.face.told() == "key down 2 0 at 150, 150\nkey up 2\n");
    s.pointer.click(s.face.key, Qt::MiddleButton);
    CHECK(s.face.told() == "key down 4 0 at 150, 150\nkey up 4\n");
}

TEST_CASE("A second button that is pressed meanwhile does not take the click away")
{
    Shown s;
    s.pointer.to(s.face.key).press().press(Qt::RightButton);
    s.pointer.release(Qt::RightButton).release();
    CHECK(s.face.told() ==
          "key down 1 0 at 150, 150\nkey down 2 0 at 150, 150\nkey up 2\nkey up 1\nkey click\n");
}

TEST_CASE("A window that is left for a moment keeps the click, and ends the press of another button")
{
    Shown s;
    const auto leave = [&] {
        QEvent left(QEvent::WindowDeactivate);
        QApplication::sendEvent(s.face.widgetOf(s.face.key), &left);
    };
    s.pointer.to(s.face.key).press();
    leave();
    s.pointer.release();
    CHECK(s.face.told() == "key down 1 0 at 150, 150\nkey up 1\nkey click\n");
    s.pointer.press(Qt::RightButton);
    leave();
    s.pointer.release(Qt::RightButton);
    CHECK(s.face.told() == "key down 2 0 at 150, 150\nkey up 1\n");
}

TEST_CASE("A lost pointer ends a press without a click")
{
    Shown s;
    s.pointer.to(s.face.key).press();
    QEvent lost(QEvent::UngrabMouse);
    QApplication::sendEvent(s.face.widgetOf(s.face.key), &lost);
    s.pointer.release();
    CHECK(s.face.told() == "key down 1 0 at 150, 150\nkey up 1\n");
}

TEST_CASE("A press tells its place in twips of the image, and the keys that are held")
{
    Shown s;
    s.pointer.keys = Qt::ShiftModifier | Qt::AltModifier;
    s.pointer.to({10, 10}).press();
    CHECK(s.face.told() == "key down 1 5 at 0, 0\n");
    s.pointer.release();
    s.face.told();
    s.pointer.keys = Qt::ControlModifier;
    s.pointer.to({29, 20}).press();
    CHECK(s.face.told() == "key down 1 2 at 285, 150\n");
}

TEST_CASE("A quick second press counts as a press")
{
    Shown s;
    s.pointer.click(s.face.key);
    s.pointer.pressQuickly().release();
    CHECK(s.face.told() == "key down 1 0 at 150, 150\nkey up 1\nkey click\n"
                           "key down 1 0 at 150, 150\nkey up 1\nkey click\n");
}

TEST_CASE("A disabled image does nothing, and works again when it is enabled")
{
    Shown s;
    s.face.key.setEnabled(false);
    CHECK_FALSE(s.face.key.Enabled());
    s.pointer.click(s.face.key);
    s.pointer.click(s.face.key, Qt::RightButton);
    CHECK(s.face.told().empty());
    s.face.key.setEnabled(true);
    s.pointer.click(s.face.key);
    CHECK(s.face.told().ends_with("key click\n"));
}

TEST_CASE("A click from code raises the handler of a disabled image all the same")
{
    Shown s;
    s.face.key.setEnabled(false);
    s.face.key.Click.raise();
    CHECK(s.face.told() == "key click\n");
}

TEST_CASE("A track takes presses on its line alone")
{
    Shown s;
    s.pointer.to({60, 99}).press().release();
    s.pointer.to({60, 105}).press().release();
    CHECK(s.face.told().empty());
    s.pointer.to({60, 100}).press().release();
    CHECK(s.face.told() == "track down 1 0 at 600, 0\ntrack up 1\n");
}

TEST_CASE("An image keeps the exact place that it is given and is painted at the nearest pixel")
{
    Shown s;
    s.face.thumb.setLeft(620);
    CHECK(s.face.thumb.Left() == 620);
    CHECK(s.face.widgetOf(s.face.thumb)->x() == 41);
    s.face.thumb.setLeft(622.5F);
    s.face.thumb.setTop(1852);
    CHECK(s.face.thumb.Left() == 622.5F);
    CHECK(s.face.widgetOf(s.face.thumb)->pos() == QPoint(42, 123));
    s.face.thumb.setLeft(-7);
    CHECK(s.face.thumb.Left() == -7);
    CHECK(s.face.widgetOf(s.face.thumb)->x() == 0);
}

TEST_CASE("A tool tip reads back at once")
{
    Shown s;
    s.face.thumb.setToolTipText("Volume: 50%");
    CHECK(s.face.thumb.ToolTipText() == "Volume: 50%");
    CHECK(s.face.widgetOf(s.face.thumb)->toolTip() == "Volume: 50%");
    s.face.thumb.setToolTipText("");
    CHECK(s.face.widgetOf(s.face.thumb)->toolTip().isEmpty());
}

TEST_CASE("A window that goes while a button is down on its image tells nothing any more")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    for (const bool onThumb : {false, true}) {
        CAPTURE(onThumb);
        Text told;
        {
            Face face(toolkit);
            face.Show();
            ctl::Image& image = onThumb ? face.thumb : face.key;
            image.MouseDown.calls([&](ctl::Button, std::int16_t, Twips, Twips) { told += "down\n"; });
            image.MouseUp.calls([&](ctl::Button, std::int16_t, Twips, Twips) { told += "up\n"; });
            Pointer(face).to(image).press().keepDown();
        }
        CHECK(told == "down\n");
    }
}
