// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/face.h"
#include "toolkit/toolkit.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QImage>
#include <QPixmap>
#include <doctest/doctest.h>

namespace
{

struct Shown {
    Toolkit toolkit{Toolkit::Timers::byHand};
    Face face{toolkit};

    Shown() { face.Show(); }

    QImage pictureOf(const Text& caption)
    {
        face.caption.setCaption(caption);
        return face.widgetOf(face.caption)->grab().toImage();
    }

    // As many per cent of what has room.
    Text captionOf(int percent)
    {
        const auto& label = *face.widgetOf(face.caption);
        Text caption;
        while (QFontMetrics(label.font()).horizontalAdvance(caption.c_str()) * 100 < label.width() * percent)
            caption += 'i';
        return caption;
    }
};

}

TEST_CASE("A label shows its text as it is: no markup and no access keys")
{
    for (const bool wraps : {false, true}) {
        CAPTURE(wraps);
        Shown s;
        s.face.caption.setWordWrap(wraps);
        REQUIRE(s.pictureOf("RB") != s.pictureOf(""));
        CHECK(s.pictureOf("R&B") != s.pictureOf("RB"));
        CHECK(s.pictureOf("R&&B") != s.pictureOf("R&B"));
        CHECK(s.pictureOf("<b>x") != s.pictureOf("x"));
        CHECK(s.pictureOf("a<br>b") != s.pictureOf("a\nb"));
        CHECK(s.pictureOf("&amp;") != s.pictureOf("&"));
    }
}

TEST_CASE("A label says its text as it is to those who hear it")
{
    Shown s;
    for (const Text text : {"R&B", "<b>bold</b>", "Rock & Roll", "caf\xC3\xA9"}) {
        CAPTURE(text);
        s.face.caption.setCaption(text);
        const auto* said = QAccessible::queryAccessibleInterface(s.face.widgetOf(s.face.caption));
        REQUIRE(said != nullptr);
        CHECK(said->text(QAccessible::Name).toStdString() == text);
    }
}

TEST_CASE("A caption is kept byte for byte, also one that cannot be shown")
{
    Shown s;
    for (const Text text : {"", " ", "caf\xE9", "\xFF\xFE/x.mp3", "two\r\nlines"}) {
        s.face.caption.setCaption(text);
        CHECK(s.face.caption.Caption() == text);
        s.pictureOf(text);
        CHECK(s.face.caption.Caption() == text);
    }
}

TEST_CASE(
    "A caption a little too wide is narrowed until its last letter is seen, a wider one ends in an ellipsis")
{
    Shown s;
    const Text fits = s.captionOf(80);
    const Text little = s.captionOf(108);
    const Text far = s.captionOf(140);
    CHECK(s.pictureOf(fits + "l") != s.pictureOf(fits + "j"));
    CHECK(s.pictureOf(little + "l") != s.pictureOf(little + "j"));
    CHECK(s.pictureOf(far + "l") == s.pictureOf(far + "j"));
}
