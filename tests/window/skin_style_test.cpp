// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/skin_style.h"

#include "support/disc_program.h"
#include "toolkit/tone.h"
#include "toolkit/type_size.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QImage>
#include <QMessageBox>
#include <QStyleOptionGroupBox>
#include <doctest/doctest.h>

namespace
{

// The application in the program's style, for as long as this lives.
struct Dressed {
    Dressed() : before(QApplication::font())
    {
        QApplication::setStyle(new SkinStyle);
    } // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the application owns its style
    ~Dressed()
    {
        setTone(DesktopTone::usual);
        QApplication::setFont(before);
        QApplication::setStyle("Fusion");
    }
    QFont before;
};

QRect partOf(const QGroupBox& group, QStyle::SubControl part)
{
    QStyleOptionGroupBox option;
    option.initFrom(&group);
    option.text = group.title();
    return group.style()->subControlRect(QStyle::CC_GroupBox, &option, part, &group);
}

QFont typeOf(int pixels)
{
    QFont font;
    font.setPixelSize(pixels);
    return font;
}

}

TEST_CASE("The buttons of a box bear no pictures, and its own picture is the skin's")
{
    const Dressed dressed;
    for (const auto icon :
         {QMessageBox::Warning, QMessageBox::Critical, QMessageBox::Information, QMessageBox::Question}) {
        QMessageBox box(icon, "Title", "Text", QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        REQUIRE(box.buttons().size() == 3);
        for (const auto* button : box.buttons())
            CHECK(button->icon().isNull());
        CHECK_FALSE(box.iconPixmap().isNull());
        const QImage seen = box.iconPixmap().toImage();
        CHECK(seen.pixelColor(seen.width() / 2, 3).alpha() == 255); // the plate
    }
}

TEST_CASE("A group's caption stands in the upper line of its frame, in every framed window")
{
    const Dressed dressed;
    DiscProgram p;
    int captioned = 0;
    for (Form* form : {static_cast<Form*>(&p.workbench), static_cast<Form*>(&p.settings)}) {
        for (const auto* group : form->page()->findChildren<QGroupBox*>()) {
            CAPTURE(group->objectName().toStdString());
            const QRect frame = partOf(*group, QStyle::SC_GroupBoxFrame);
            const QRect caption = partOf(*group, QStyle::SC_GroupBoxLabel);
            CHECK(frame.bottom() == group->rect().bottom());
            CHECK(caption.isEmpty() == group->title().isEmpty());
            if (caption.isEmpty()) {
                CHECK(frame == group->rect());
                continue;
            }
            ++captioned;
            CHECK(std::abs(caption.center().y() - frame.top()) <= 1);
            CHECK(caption.left() > frame.left() + 4);
            CHECK(caption.right() < frame.right() - 4);
            CHECK(group->rect().contains(caption));
            for (const auto* child : group->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                CHECK_FALSE(child->geometry().intersects(caption));
        }
    }
    CHECK(captioned >= 15);
}

TEST_CASE("The ground of a group is of one colour, also under its caption")
{
    const Dressed dressed;
    QGroupBox group("A caption");
    group.resize(200, 80);
    const QImage seen = group.grab().toImage();
    const QRect frame = partOf(group, QStyle::SC_GroupBoxFrame);
    const QRect caption = partOf(group, QStyle::SC_GroupBoxLabel);
    const QColor inside = seen.pixelColor(frame.center());
    for (int y = frame.top() + 2; y <= caption.bottom(); ++y)
        CHECK(seen.pixelColor(caption.left() - 2, y) == inside);
    CHECK(seen.pixelColor(caption.left() - 2, frame.top()) !=
          seen.pixelColor(caption.right() + 20, frame.top()));
}

TEST_CASE("What only shows stands on the window's own colour, in whatever tone")
{
    const Dressed dressed;
    DiscProgram p;
    const auto* list = p.workbench.page()->findChild<QWidget*>("EncWAVtoCDdragndrop");
    const QPalette before = QApplication::palette();
    for (const QColor colour : {QColor(10, 20, 30), QColor(200, 210, 220)}) {
        QPalette palette = before;
        palette.setColor(QPalette::Window, colour);
        palette.setColor(QPalette::Base, Qt::red);
        QApplication::setPalette(palette);
        QApplication::processEvents();
        CHECK(list->palette().color(QPalette::Base) == colour);
    }
    QApplication::setPalette(before);
}

TEST_CASE("Type becomes smaller until it fits, never smaller than the windows' own")
{
    const auto fitting = [](int asked, int room) {
        return typeThatFits(typeOf(asked),
                            [room](const QFontMetrics& metrics) {
                                return metrics.horizontalAdvance("Comment:") <= room;
                            })
            .pixelSize();
    };
    const int own = QFontMetrics(typeOf(ownTypePixels)).horizontalAdvance("Comment:");
    CHECK(fitting(largestTypePixels, 1000) == largestTypePixels);
    CHECK(fitting(largestTypePixels, own) == ownTypePixels);
    CHECK(fitting(largestTypePixels, 1) == ownTypePixels);
    CHECK(fitting(ownTypePixels, 1) == ownTypePixels);
    CHECK(fitting(32, 1) == 32); // a size that a window chose is its own business
}

TEST_CASE("In the tone of high contrast dark becomes darker, light lighter, and the accent stays")
{
    const Dressed dressed;
    QImage picture(3, 1, QImage::Format_ARGB32_Premultiplied);
    const QColor dark(0x24, 0x27, 0x2c);
    const QColor light(0xaa, 0xb0, 0xb7);
    const QColor accent(0xff, 0xab, 0x40);
    for (int x = 0; x < 3; ++x)
        picture.setPixelColor(x, 0, x == 0 ? dark : x == 1 ? light : accent);
    QImage usual = picture;
    bringIntoTone(usual);
    CHECK(usual == picture);
    setTone(DesktopTone::highContrast);
    bringIntoTone(picture);
    CHECK(picture.pixelColor(0, 0).lightness() < dark.lightness());
    CHECK(picture.pixelColor(1, 0).lightness() > 240);
    CHECK(picture.pixelColor(2, 0) == accent);
    CHECK(lineStrength() > 150);
}

TEST_CASE("Transparent parts of a picture stay transparent in any tone")
{
    const Dressed dressed;
    setTone(DesktopTone::highContrast);
    QImage picture(2, 2, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    bringIntoTone(picture);
    CHECK(picture.pixelColor(1, 1).alpha() == 0);
}
