// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/reach.h"

#include "support/face.h"
#include "toolkit/toolkit.h"

#include <QGuiApplication>
#include <QScreen>
#include <doctest/doctest.h>

TEST_CASE("A window that no pointer can reach is brought onto the nearest screen, any other stays")
{
    struct Row {
        const char* what;
        QRect window;
        QPoint stands;
    };
    const QList<QRect> screens = {{0, 0, 1000, 800}, {1000, 200, 600, 400}};
    const Row rows[] = {
        {"on the first screen", {100, 100, 400, 200}, {100, 100}},
        {"one pixel of it on the screen", {-399, 799, 400, 200}, {-399, 799}},
        {"just left of it", {-400, 100, 400, 200}, {0, 100}},
        {"just below it", {100, 800, 400, 200}, {100, 600}},
        {"far off", {-32000, 32000, 400, 200}, {0, 600}},
        {"right of the second screen", {5000, 300, 400, 200}, {1200, 300}},
        {"above the second one, nearer to it than to the first", {1300, -50, 200, 100}, {1300, 200}},
        {"larger than the nearest screen", {9000, 300, 900, 500}, {1000, 200}},
    };
    for (const auto& c : rows) {
        CAPTURE(c.what);
        CHECK(withinReach(c.window, screens) == c.stands);
    }
    CHECK(withinReach({9000, 9000, 10, 10}, {}) == QPoint(9000, 9000));
}

TEST_CASE("A window whose place lies outside every screen stands there until it is brought within reach")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    face.setLeft(-480000);
    face.setTop(480000);
    face.Show();
    CHECK(face.Left() == -480000);
    face.bringWithinReach();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    CHECK(face.Left() == twipsOf(screen.left()));
    CHECK(face.Top() == twipsOf(screen.bottom() + 1) - face.Height());
    face.bringWithinReach();
    CHECK(face.Left() == twipsOf(screen.left()));
}
