// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_message_boxes.h"

#include "support/face.h"
#include "support/waiting.h"
#include "toolkit/later.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <doctest/doctest.h>

namespace
{

using Buttons = MessageBoxes::Buttons;
using Answer = MessageBoxes::Answer;

QMessageBox* shownBox() { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); }

void pressEscape(QWidget& widget)
{
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&widget, &press);
}

// The answer to a box with which a person does `what`, once it is shown.
Answer answerTo(Buttons buttons, const std::function<void(QMessageBox&)>& what, const Text& title = "Title")
{
    later(QCoreApplication::instance(), [&] {
        REQUIRE(shownBox() != nullptr);
        what(*shownBox());
    });
    return desktop::QtMessageBoxes().show("Text", title, MessageBoxes::Icon::none, buttons);
}

}

TEST_CASE("A button that is pressed is the answer")
{
    const struct {
        Buttons buttons;
        QMessageBox::StandardButton pressed;
        Answer answer;
    } cases[] = {
        {Buttons::ok, QMessageBox::Ok, Answer::ok},
        {Buttons::okCancel, QMessageBox::Ok, Answer::ok},
        {Buttons::okCancel, QMessageBox::Cancel, Answer::cancel},
        {Buttons::yesNo, QMessageBox::Yes, Answer::yes},
        {Buttons::yesNo, QMessageBox::No, Answer::no},
    };
    for (const auto& c : cases)
        CHECK(answerTo(c.buttons, [&](QMessageBox& box) { box.button(c.pressed)->click(); }) == c.answer);
}

TEST_CASE("Escape and the window manager's close are Cancel, where there is one, and OK where that is all")
{
    CHECK(answerTo(Buttons::okCancel, pressEscape) == Answer::cancel);
    CHECK(answerTo(Buttons::okCancel, [](QMessageBox& box) { box.close(); }) == Answer::cancel);
    CHECK(answerTo(Buttons::ok, pressEscape) == Answer::ok);
    CHECK(answerTo(Buttons::ok, [](QMessageBox& box) { box.close(); }) == Answer::ok);
}

TEST_CASE("A question of Yes and No stays until one of them is pressed")
{
    const auto tryAround = [](QMessageBox& box) {
        pressEscape(box);
        CHECK(box.isVisible());
        box.close();
        CHECK(box.isVisible());
        box.button(QMessageBox::Yes)->click();
    };
    CHECK(answerTo(Buttons::yesNo, tryAround) == Answer::yes);
}

TEST_CASE("A box has room for its title beside what a frame has there, however short its text")
{
    for (const Text title : {"CD created!", "No CD-R Found", "Default directory does not exist!", ""}) {
        CAPTURE(title);
        int width = 0;
        answerTo(
            Buttons::ok,
            [&](QMessageBox& box) {
                width = box.width();
                box.close();
            },
            title);
        QFont bold = QApplication::font();
        bold.setBold(true);
        CHECK(width >= QFontMetrics(bold).horizontalAdvance(QString::fromStdString(title)) + 120);
        CHECK(width < 400);
    }
}

TEST_CASE("The program's timers go on behind a box")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    int ticks = 0;
    face.timer.Timer.calls([&] { ++ticks; });
    answerTo(Buttons::ok, [&](QMessageBox& box) {
        const int before = ticks;
        CHECK(waitFor([&] { return ticks > before + 3; }));
        CHECK(box.isVisible());
        box.button(QMessageBox::Ok)->click();
    });
    CHECK(ticks > 3);
}
