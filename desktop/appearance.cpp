// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/appearance.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QPalette>
#include <QPixmapCache>
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
};

// A dark face with one accent.
// clang-format off
constexpr Colour colours[] = {
    {QPalette::Window,          0xff24272c}, {QPalette::WindowText,      0xffe4e7ea},
    {QPalette::Base,            0xff17191c}, {QPalette::AlternateBase,   0xff1e2125},
    {QPalette::Text,            0xffe4e7ea}, {QPalette::PlaceholderText, 0xff9aa1a9},
    {QPalette::Button,          0xff2c3036}, {QPalette::ButtonText,      0xffe4e7ea},
    {QPalette::BrightText,      0xffffffff}, {QPalette::Highlight,       0xffc97b14},
    {QPalette::HighlightedText, 0xffffffff}, {QPalette::Link,            0xffffab40},
    {QPalette::ToolTipBase,     0xff33383e}, {QPalette::ToolTipText,     0xffe4e7ea},
};
// clang-format on

constexpr QRgb disabledText = 0xff7d848c;

QPalette darkPalette()
{
    QPalette palette;
    for (const auto& row : colours)
        palette.setColor(row.role, QColor::fromRgb(row.colour));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor::fromRgb(disabledText));
    return palette;
}

// Of what controls look like: enough for all that show together. Every dialog adds its own, which serve no
// other.
constexpr int keptPicturesKb = 1024;

constexpr const char* unseen = "offscreen";

// The last one only tells that no other answers.
char platformOption[] = "-platform";
char platforms[] = "xcb;wayland;offscreen";

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
    QApplication::setStyle("Fusion");
    QApplication::setPalette(darkPalette());
    // None that would draw the captions' "=>" as one arrow.
    QFont font({"Roboto", "Noto Sans", "Cantarell", "DejaVu Sans"});
    font.setPixelSize(11);
    QApplication::setFont(font);
    QPixmapCache::setCacheLimit(keptPicturesKb);
    QApplication::setWindowIcon(QIcon(":/skin/picIcon.svg"));
}

}
