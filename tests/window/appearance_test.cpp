// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/appearance.h"

#include "tests/support/answer_of_child.h"
#include "toolkit/skin_style.h"
#include "toolkit/tone.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QPixmapCache>
#include <algorithm>
#include <cstdlib>
#include <doctest/doctest.h>
#include <utility>

namespace
{

constexpr const char* chosen = "QT_QPA_PLATFORM";

// What the user has chosen to show the windows, "" for nothing, for as long as this lives.
struct Choice {
    explicit Choice(const char* platform) : before(qgetenv(chosen))
    {
        if (*platform == '\0')
            unsetenv(chosen);
        else
            setenv(chosen, platform, 1);
    }
    ~Choice() { setenv(chosen, before.constData(), 1); }
    QByteArray before;
};

Text linesOf(desktop::LibraryArguments& arguments)
{
    Text lines;
    for (int i = 0; i < arguments.count(); ++i)
        lines += Text(arguments.values()[i]) + '\n';
    return lines;
}

Text colour(QPalette::ColorRole role) { return QApplication::palette().color(role).name().toStdString(); }

// The status with which the program ends, or 0, and what it says to whoever started it.
std::pair<int, Text> asksForDisplay()
{
    int ends[2];
    REQUIRE(pipe(ends) == 0);
    Child child([&] {
        dup2(ends[1], STDERR_FILENO);
        desktop::requireDisplay();
    });
    close(ends[1]);
    char said[512];
    const ssize_t length = read(ends[0], said, sizeof said);
    close(ends[0]);
    return {child.wait(), Text(said, static_cast<std::size_t>(std::max<ssize_t>(length, 0)))};
}

}

TEST_CASE("The windows go to X or Wayland, unless the user has chosen something else")
{
    char program[] = "velmora";
    {
        const Choice none("");
        desktop::LibraryArguments arguments(program);
        CHECK(linesOf(arguments) == "velmora\n-platform\nxcb;wayland;offscreen\n");
    }
    const Choice choice("minimal");
    desktop::LibraryArguments arguments(program);
    CHECK(linesOf(arguments) == "velmora\n");
}

TEST_CASE("Without a display the program ends and says so, unless the user has chosen to see nothing")
{
    CHECK(asksForDisplay() == std::pair<int, Text>(0, ""));
    const Choice none("");
    CHECK(asksForDisplay() ==
          std::pair<int, Text>(1, "Velmora needs a display: none answers at DISPLAY or WAYLAND_DISPLAY.\n"));
}

TEST_CASE("The application has its name, its style, its colours and a small store of pictures")
{
    const Text looks = answerOfChild([] {
        desktop::dressApplication();
        const bool hasStyle = dynamic_cast<SkinStyle*>(QApplication::style()) != nullptr;
        return QApplication::applicationName().toStdString() + ' ' +
               QGuiApplication::desktopFileName().toStdString() + ' ' + colour(QPalette::Window) + ' ' +
               (hasStyle ? "dressed" : "plain") +
               (QGuiApplication::quitOnLastWindowClosed() ? " quits" : "") + ' ' +
               std::to_string(QPixmapCache::cacheLimit());
    });
    CHECK(looks == "Velmora org.velmora.Velmora #24272c dressed 1024");
}

TEST_CASE("Colours, tone and type follow the desktop's wishes at once")
{
    const Text looks = answerOfChild([] {
        Text said;
        for (const desktop::DesktopWishes wishes : {desktop::DesktopWishes{true, 2}, {false, 1}}) {
            desktop::dressFor(wishes);
            said += colour(QPalette::Window) + ' ' + colour(QPalette::Text) + ' ' +
                    (tone() == DesktopTone::highContrast ? "contrast " : "usual ") +
                    std::to_string(QApplication::font().pixelSize()) + '\n';
        }
        return said;
    });
    CHECK(looks == "#0a0b0c #ffffff contrast 15\n#24272c #e4e7ea usual 11\n");
}
