// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_pump.h"
#include "platform/post.h"
#include "support/waiting.h"
#include "toolkit/toolkit.h"

#include <QTimer>
#include <doctest/doctest.h>

TEST_CASE("A run that waits lets in what came right behind the call that it began in")
{
    Toolkit toolkit(Toolkit::Timers::run);
    desktop::QtPump pump;
    bool hasCome = false;
    bool isLate = false;
    bool hasRun = false;
    QTimer late; // ends a run that would not let it in
    late.setSingleShot(true);
    late.callOnTimeout([&] { isLate = !hasCome; });
    late.start(2000);
    toolkit.post().post([&] {
        while (!hasCome && !isLate)
            pump.turn();
        hasRun = true;
    });
    toolkit.post().post([&] { hasCome = true; });
    CHECK(waitFor([&] { return hasRun; }));
    CHECK(hasCome);
    CHECK_FALSE(isLate);
}
