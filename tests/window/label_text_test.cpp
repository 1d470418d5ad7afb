// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/label_text.h"

#include "support/face.h"
#include "toolkit/toolkit.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QPixmap>
#include <QToolTip>
#include <doctest/doctest.h>

namespace
{

const QString reason = " is not a valid .wav file (44kHz, 16Bit, Stereo)";

// Without what lets a path break.
QString plain(QString text) { return text.remove(QChar(0x200B)); }

QString drawn(const QString& text)
{
    return plain(fitted(text, QFontMetrics(QApplication::font()), {257, 49}).lines);
}

}

TEST_CASE("A run of twenty blanks breaks the line, a shorter one stays")
{
    for (const int blanks : {2, 7, 19}) {
        const QString text = "one" + QString(blanks, ' ') + "two";
        CHECK(brokenAtLongBlanks(text) == text);
    }
    for (const int blanks : {20, 40, 57})
        CHECK(brokenAtLongBlanks("one." + QString(blanks, ' ') + "Two") == "one.\nTwo");
}

TEST_CASE("A text that fits is drawn as it is")
{
    for (const QString text : {"", "Short", "/music/a.wav is not valid", "two\nlines"})
        CHECK(drawn(text) == text);
}

TEST_CASE("Of a message that does not fit the reason is drawn, and both ends of the path")
{
    const QString folders = "/home/somebody/" + QString("A folder with a long name/").repeated(12);
    for (const QString& path : {folders + "Song.wav", folders + "01. A song with blanks.wav",
                                "/music/" + QString("a long name ").repeated(30) + ".wav",
                                "/" + QString(250, 'x') + ".wav", folders + "noextension"}) {
        CAPTURE(path.toStdString());
        const QString text = drawn(path + reason);
        CHECK(text.startsWith("/"));
        CHECK(text.endsWith(reason));
        CHECK(text.contains(u'\u2026'));
        CHECK(text.contains(path.right(3) + reason));
        CHECK_FALSE(fitted(path + reason, QFontMetrics(QApplication::font()), {257, 49}).isWhole);
    }
}

TEST_CASE("A point within a name does not end the path, nor does one in the reason begin it")
{
    const QString folders = "/home/somebody/" + QString("A folder with a long name/").repeated(12);
    for (const QString& name : {QString("Song feat.X live ") + QString("and long ").repeated(40) + "end.wav",
                                QString("Vol.2 of ") + QString("many ").repeated(60) + "a.b.wav"}) {
        CAPTURE(name.toStdString());
        const QString text = drawn(folders + name + reason);
        CHECK(text.endsWith(name.right(5) + reason));
        CHECK(text.startsWith("/home"));
        CHECK(drawn(folders + name).endsWith(name.right(5)));
    }
}

TEST_CASE("No more of a path goes than must")
{
    const QFontMetrics metrics(QApplication::font());
    const QString text =
        fitted("/" + QString("folder/").repeated(60) + "a.wav" + reason, metrics, {257, 49}).lines;
    const QRect room(0, 0, 257, 49);
    CHECK(room.contains(metrics.boundingRect(room, Qt::TextWordWrap, text)));
    const QString longer = QString(text).replace(QChar(0x2026), "\u2026folder/");
    CHECK_FALSE(room.contains(metrics.boundingRect(room, Qt::TextWordWrap, longer)));
}

TEST_CASE("A text without a path is not shortened")
{
    const QString text = QString("word ").repeated(200);
    CHECK(drawn(text) == text);
}

TEST_CASE("What a label cannot show stands whole in its tip and for those who hear it")
{
    Toolkit toolkit{Toolkit::Timers::byHand};
    Face face(toolkit);
    face.caption.setWordWrap(true);
    face.Show();
    QWidget& label = *face.widgetOf(face.caption);
    const auto* heard = QAccessible::queryAccessibleInterface(&label);
    REQUIRE(heard != nullptr);
    const Text message = "/music/" + Text(300, 'x') + "<b>.wav is not valid";
    face.caption.setCaption(message);
    CHECK(label.toolTip().remove(QChar(0x200B)).contains(QString(300, 'x') + "&lt;b&gt;.wav is not valid"));
    CHECK(heard->text(QAccessible::Description).toStdString() == message);
    CHECK(face.caption.Caption() == message);
    CHECK(label.grab().toImage() != QImage());
    face.caption.setCaption("Short");
    CHECK(label.toolTip().isEmpty());
    CHECK(heard->text(QAccessible::Description).isEmpty());
}

TEST_CASE("A caption of one line that is cut is its own tip, and one that fits has none")
{
    Toolkit toolkit{Toolkit::Timers::byHand};
    Face face(toolkit);
    face.Show();
    QWidget& label = *face.widgetOf(face.caption);
    const auto tip = [&] {
        QHelpEvent asked(QEvent::ToolTip, {5, 5}, label.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&label, &asked);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    face.caption.setCaption("Short");
    CHECK(tip().isEmpty());
    face.caption.setCaption(Text(100, 'x') + " & more");
    CHECK(tip().contains(QString(100, 'x') + " &amp; more"));
    QToolTip::hideText();
}
