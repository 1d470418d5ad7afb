// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/face.h"
#include "support/pointer.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QMouseEvent>
#include <doctest/doctest.h>

namespace
{

// The thumb lies at 40, 95 with 7 x 15 pixels, its track at 20, 100 with 100 x 5.
struct Shown {
    Toolkit toolkit{Toolkit::Timers::byHand};
    Face face{toolkit};
    Pointer pointer{(face.Show(), face)};

    Shown() { face.told(); }

    Text dropAt(QPointF place)
    {
        pointer.to(face.thumb).press();
        face.told();
        pointer.to(place).release();
        return face.told();
    }

    void pressKey(int key)
    {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(QWidget::keyboardGrabber(), &press);
    }

    // The widgets of the window besides its controls.
    QList<QWidget*> outlines()
    {
        QList<QWidget*> found;
        for (auto* child : face.page()->findChildren<QWidget*>())
            if (child->objectName().isEmpty() && !child->isHidden())
                found << child;
        return found;
    }
};

struct Release {
    Text where;
    QPointF at;
    Text told;
};

}

TEST_CASE("A thumb that is released over a track is dropped there, and then released")
{
    Shown s;
    s.pointer.to(s.face.thumb).press();
    CHECK(s.face.told() == "thumb down 1 0 at 60, 120\n");
    s.pointer.to({50, 102});
    CHECK(s.face.told().empty());
    s.pointer.release();
    CHECK(s.face.told() == "track takes thumb at 450, 30\nthumb up 1\n");
}

TEST_CASE("A track takes drops five pixels above and below itself")
{
    Shown s;
    const Text up = "thumb up 1\n";
    const Release places[] = {
        {"six pixels above", {80, 94}, up},
        {"five pixels above", {80, 95}, "track takes thumb at 900, -75\n" + up},
        {"its first row", {80, 100}, "track takes thumb at 900, 0\n" + up},
        {"its last row", {80, 104}, "track takes thumb at 900, 60\n" + up},
        {"five pixels below", {80, 109}, "track takes thumb at 900, 135\n" + up},
        {"six pixels below", {80, 110}, up},
        {"its first column", {20, 102}, "track takes thumb at 0, 30\n" + up},
        {"a pixel left of it", {19, 102}, up},
        {"its last column", {119, 102}, "track takes thumb at 1485, 30\n" + up},
        {"a pixel right of it", {120, 102}, up},
        {"no track at all", {150, 20}, up},
        {"another control", {15, 15}, up},
        {"outside the window", {500, 500}, up},
    };
    for (const auto& c : places) {
        CAPTURE(c.where);
        CHECK(s.dropAt(c.at) == c.told);
    }
}

TEST_CASE("Between two pixels the one that the pointer is in counts")
{
    Shown s;
    const auto releaseAt = [&](QPointF inThumb) {
        s.pointer.to(s.face.thumb).press();
        s.face.told();
        QMouseEvent release(QEvent::MouseButtonRelease, inThumb, inThumb, Qt::LeftButton, Qt::NoButton,
                            Qt::NoModifier);
        QApplication::sendEvent(s.face.widgetOf(s.face.thumb), &release);
        s.pointer.release();
        return s.face.told();
    };
    CHECK(releaseAt({-20.5, 7}) == "thumb up 1\n");
    CHECK(releaseAt({-20, 7}) == "track takes thumb at 0, 30\nthumb up 1\n");
    CHECK(releaseAt({79.5, 7}) == "track takes thumb at 1492.5, 30\nthumb up 1\n");
    CHECK(releaseAt({80, 7}) == "thumb up 1\n");
    CHECK(releaseAt({6.9, 7}) == "thumb up 1\n");
    CHECK(releaseAt({-0.1, 7}).starts_with("track takes thumb"));
}

TEST_CASE("A drop goes to the track under the pointer; another one's hears of it when the thumb is released")
{
    Shown s;
    CHECK(s.dropAt({60, 142}) == "thumb up 1\notherTrack takes thumb at 600, 30\n");
}

TEST_CASE("A release inside the thumb's own rectangle is no drop, though its track lies under it")
{
    Shown s;
    s.pointer.to(s.face.thumb).press().release();
    CHECK(s.face.told() == "thumb down 1 0 at 60, 120\nthumb up 1\n");
    CHECK(s.dropAt({40, 95}) == "thumb up 1\n");
    CHECK(s.dropAt({46, 109}) == "thumb up 1\n");
    CHECK(s.dropAt({47, 102}) == "track takes thumb at 405, 30\nthumb up 1\n");
    CHECK(s.dropAt({39, 102}) == "track takes thumb at 285, 30\nthumb up 1\n");
}

TEST_CASE("The thumb stands still until the drop; its outline follows the pointer and goes")
{
    Shown s;
    CHECK(s.outlines().isEmpty());
    s.pointer.to(s.face.thumb).press();
    REQUIRE(s.outlines().size() == 1);
    const QPoint before = s.outlines().front()->pos();
    CHECK(before == QPoint(40, 95));
    s.pointer.to(Pointer::centreOf(s.face.thumb) + QPointF(30, -10));
    CHECK(s.outlines().front()->pos() == before + QPoint(30, -10));
    CHECK(s.face.thumb.Left() == 600);
    CHECK(s.face.widgetOf(s.face.thumb)->x() == 40);
    s.pointer.release();
    CHECK(s.outlines().isEmpty());
    CHECK(s.face.thumb.Left() == 600);
}

TEST_CASE("Escape ends a drag without a drop; the button's release says nothing more")
{
    Shown s;
    s.pointer.to(s.face.thumb).press().to({80, 102});
    s.face.told();
    s.pressKey(Qt::Key_Space);
    CHECK(s.face.told().empty());
    s.pressKey(Qt::Key_Escape);
    CHECK(s.face.told() == "thumb up 1\n");
    CHECK(s.outlines().isEmpty());
    CHECK(QWidget::keyboardGrabber() == nullptr);
    s.pointer.release();
    CHECK(s.face.told().empty());
    CHECK(s.dropAt({80, 102}) == "track takes thumb at 900, 30\nthumb up 1\n");
}

TEST_CASE("A window that hides ends the drag")
{
    Shown s;
    s.pointer.to(s.face.thumb).press().to({80, 102});
    s.face.told();
    s.face.Hide();
    CHECK(s.face.told() == "thumb up 1\nDeactivate\n");
    CHECK(s.outlines().isEmpty());
    CHECK(QWidget::keyboardGrabber() == nullptr);
}

TEST_CASE("A window that is left ends the drag")
{
    Shown s;
    s.pointer.to(s.face.thumb).press().to({80, 102});
    s.face.told();
    QEvent left(QEvent::WindowDeactivate);
    QApplication::sendEvent(s.face.page(), &left);
    CHECK(s.face.told().find("thumb up 1\n") != Text::npos);
    CHECK(s.outlines().isEmpty());
    s.pointer.release();
    CHECK(s.face.told().empty());
}

TEST_CASE("A lost pointer ends the drag")
{
    Shown s;
    s.pointer.to(s.face.thumb).press();
    s.face.told();
    QEvent lost(QEvent::UngrabMouse);
    QApplication::sendEvent(s.face.widgetOf(s.face.thumb), &lost);
    CHECK(s.face.told() == "thumb up 1\n");
    QApplication::sendEvent(s.face.widgetOf(s.face.thumb), &lost);
    CHECK(s.face.told().empty());
}

TEST_CASE("Another button on a thumb presses and releases without a drag")
{
    Shown s;
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        s.pointer.to(s.face.thumb).press(button);
        CHECK(s.outlines().isEmpty());
        s.pointer.to({80, 102}).release(button);
        CHECK(s.face.told().ends_with(" at 60, 120\nthumb up " + textOf(button == Qt::RightButton ? 2 : 4) +
                                      "\n"));
    }
}

TEST_CASE("A window that hides ends the press of another button, too")
{
    Shown s;
    s.pointer.to(s.face.thumb).press(Qt::RightButton);
    s.face.told();
    s.face.Hide();
    CHECK(s.face.told() == "thumb up 1\nDeactivate\n");
}

TEST_CASE("A press of another button ends when the pointer is lost or the window is left, and only once")
{
    for (const auto button : {Qt::RightButton, Qt::MiddleButton})
        for (const auto type : {QEvent::UngrabMouse, QEvent::WindowDeactivate}) {
            CAPTURE(type);
            Shown s;
            s.pointer.to(s.face.thumb).press(button);
            s.face.told();
            for (int i = 0; i < 2; ++i) {
                QEvent lost(type);
                QApplication::sendEvent(s.face.widgetOf(s.face.thumb), &lost);
            }
            s.pointer.release(button);
            CHECK(s.face.told() == "thumb up 1\n");
        }
}

TEST_CASE("A modal window that opens while a button is down on a thumb ends the press")
{
    for (const auto button : {Qt::LeftButton, Qt::RightButton}) {
        Shown s;
        QApplication::processEvents();
        s.pointer.to(s.face.thumb).press(button);
        s.face.told();
        QDialog box;
        box.setModal(true);
        box.show();
        box.activateWindow();
        QApplication::processEvents();
        s.pointer.release(button);
        const Text told = s.face.told();
        CHECK(told.find("thumb up 1\n") != Text::npos);
        CHECK(told.find("thumb up") == told.rfind("thumb up"));
    }
}

TEST_CASE("Other buttons neither end nor disturb a drag")
{
    Shown s;
    s.pointer.to(s.face.thumb).press();
    s.face.told();
    s.pointer.press(Qt::RightButton).to({80, 102}).release(Qt::RightButton);
    CHECK(s.face.told().empty());
    s.pointer.release();
    CHECK(s.face.told() == "track takes thumb at 900, 30\nthumb up 1\n");

    s.pointer.to(s.face.thumb).press(Qt::RightButton).press();
    s.face.told();
    s.pointer.release(Qt::RightButton);
    CHECK(s.face.told().empty());
    s.pointer.to({80, 102}).release();
    CHECK(s.face.told() == "track takes thumb at 900, 30\nthumb up 1\n");
}

TEST_CASE("A drop whose handler waits has given the keyboard and the screen back")
{
    Shown s;
    s.face.onDrop = [&] {
        CHECK(QWidget::keyboardGrabber() == nullptr);
        CHECK(s.outlines().isEmpty());
    };
    CHECK(s.dropAt({80, 102}) == "track takes thumb at 900, 30\nthumb up 1\n");
}

TEST_CASE("A new drag that begins while the handler of a drop waits goes on after it")
{
    Shown s;
    s.face.onDrop = [&] {
        s.face.onDrop = {};
        s.pointer.to(s.face.thumb).press();
    };
    s.dropAt({80, 102});
    CHECK(s.outlines().size() == 1);
    s.pointer.to({60, 142}).release();
    CHECK(s.face.told() == "thumb up 1\notherTrack takes thumb at 600, 30\n");
}

TEST_CASE("A disabled thumb is not dragged")
{
    Shown s;
    s.face.thumb.setEnabled(false);
    CHECK(s.dropAt({80, 102}).empty());
}
