// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/appearance.h"

#include "toolkit/skin_style.h"
#include "toolkit/tone.h"
#include "toolkit/type_size.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QPixmapCache>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <unistd.h>

namespace desktop
{

namespace
{

struct Colour {
    QPalette::ColorRole role;
    QRgb colour;
    QRgb highContrast;
};

// A dark face with one accent.
// clang-format off
constexpr Colour colours[] = {
    {QPalette::Window,          0xff24272c, 0xff0a0b0c}, {QPalette::WindowText,      0xffe4e7ea, 0xffffffff},
    {QPalette::Base,            0xff17191c, 0xff000000}, {QPalette::AlternateBase,   0xff1e2125, 0xff101112},
    {QPalette::Text,            0xffe4e7ea, 0xffffffff}, {QPalette::PlaceholderText, 0xff9aa1a9, 0xffe8ebee},
    {QPalette::Button,          0xff2c3036, 0xff1c1e21}, {QPalette::ButtonText,      0xffe4e7ea, 0xffffffff},
    {QPalette::BrightText,      0xffffffff, 0xffffffff}, {QPalette::Highlight,       0xffc97b14, 0xffffb74d},
    {QPalette::HighlightedText, 0xffffffff, 0xff000000}, {QPalette::Link,            0xffffab40, 0xffffc670},
    {QPalette::ToolTipBase,     0xff33383e, 0xff000000}, {QPalette::ToolTipText,     0xffe4e7ea, 0xffffffff},
};
// clang-format on

constexpr Colour disabledText{QPalette::Text, 0xff7d848c, 0xffa4abb2};

QColor colourIn(DesktopTone tone, const Colour& colour)
{
    return QColor::fromRgb(tone == DesktopTone::usual ? colour.colour : colour.highContrast);
}

QPalette darkPalette(DesktopTone tone)
{
    QPalette palette;
    for (const auto& row : colours)
        palette.setColor(row.role, colourIn(tone, row));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, colourIn(tone, disabledText));
    return palette;
}

// Of what controls look like: enough for all that show together. Every dialog adds its own, which serve no
// other.
constexpr int keptPicturesKb = 1024;

constexpr const char* unseen = "offscreen";

// The last one only tells that no other answers.
char platformOption[] = "-platform";
char platforms[] = "xcb;wayland;offscreen";

// None that would draw the captions' "=>" as one arrow.
QFont typeOf(double factor)
{
    QFont font({"Roboto", "Noto Sans", "Cantarell", "DejaVu Sans"});
    const double wanted =
        std::clamp(ownTypePixels * factor, double(ownTypePixels), double(largestTypePixels));
    font.setPixelSize(static_cast<int>(std::lround(wanted)));
    return font;
}

bool isChosenByUser() { return std::getenv("QT_QPA_PLATFORM") != nullptr; }

}

LibraryArguments::LibraryArguments(char* program) : values_{program}
{
    if (isChosenByUser())
        return;
    values_[count_++] = platformOption;
    values_[count_++] = platforms;
}

void requireDisplay()
{
    if (isChosenByUser() || QGuiApplication::platformName() != unseen)
        return;
    std::cerr << "Velmora needs a display: none answers at DISPLAY or WAYLAND_DISPLAY.\n";
    _exit(1);
}

void dressApplication()
{
    QApplication::setApplicationName("Velmora");
    QApplication::setDesktopFileName(applicationId);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(new SkinStyle);
    dressFor({}); // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the application owns its style
    QPixmapCache::setCacheLimit(keptPicturesKb);
}

void dressFor(const DesktopWishes& wishes)
{
    setTone(wishes.highContrast ? DesktopTone::highContrast : DesktopTone::usual);
    QApplication::setPalette(darkPalette(tone()));
    QApplication::setFont(typeOf(wishes.typeFactor));
    for (auto* widget : QApplication::allWidgets())
        widget->update();
}

}
