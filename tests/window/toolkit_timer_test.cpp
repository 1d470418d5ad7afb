// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/face.h"
#include "support/pointer.h"
#include "support/waiting.h"
#include "toolkit/toolkit.h"

#include <QElapsedTimer>
#include <doctest/doctest.h>

namespace
{

void runFor(int milliseconds)
{
    const QDeadlineTimer end(milliseconds);
    waitFor([&] { return end.hasExpired(); });
}

// The last time from one tick to the next, in milliseconds.
struct Gaps {
    QElapsedTimer clock;
    qint64 last = 0;
    int ticks = 0;
    int quickInARow = 0;

    explicit Gaps(ctl::IntervalTimer& timer)
    {
        clock.start();
        timer.Timer.calls([this] {
            last = clock.restart();
            ++ticks;
            quickInARow = last < 100 ? quickInARow + 1 : 0;
        });
    }
};

}

TEST_CASE("A timer ticks from the moment its window exists, shown or not")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    CHECK(face.timer.Enabled());
    Gaps gaps(face.timer);
    CHECK(waitFor([&] { return gaps.ticks > 3; }));
}

TEST_CASE("A timer that is switched off is silent until it is switched on again")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    Gaps gaps(face.timer);
    face.timer.setEnabled(false);
    CHECK_FALSE(face.timer.Enabled());
    runFor(100);
    CHECK(gaps.ticks == 0);
    face.timer.setEnabled(true);
    CHECK(waitFor([&] { return gaps.ticks > 1; }));
}

TEST_CASE("A timer does not tick inside its own handler; the others do")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    ctl::IntervalTimer other(face, "other", std::chrono::milliseconds(1));
    Gaps gaps(other);
    int inside = 0;
    int deepest = 0;
    bool waited = false;
    face.timer.Timer.calls([&] {
        deepest = std::max(deepest, ++inside);
        if (!std::exchange(waited, true)) {
            const int before = gaps.ticks;
            CHECK(waitFor([&] { return gaps.ticks > before + 5; }));
        }
        --inside;
    });
    CHECK(waitFor([&] { return waited && inside == 0; }));
    CHECK(deepest == 1);
}

TEST_CASE("A timer of a long interval keeps to it while the others run at the rate of all")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    ctl::IntervalTimer hourly(face, "hourly", std::chrono::hours(1));
    Gaps gaps(face.timer);
    Gaps rare(hourly);
    CHECK(waitFor([&] { return gaps.ticks > 3; }));
    CHECK(rare.ticks == 0);
}

TEST_CASE("Timers that run by hand never tick by themselves")
{
    Toolkit toolkit(Toolkit::Timers::byHand);
    Face face(toolkit);
    Gaps gaps(face.timer);
    face.timer.setEnabled(false);
    face.timer.setEnabled(true);
    runFor(100);
    CHECK(gaps.ticks == 0);
    face.timer.Timer.raise();
    CHECK(gaps.ticks == 1);
}

TEST_CASE("In a still program the timers slow down, and any input wakes them at once")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    face.Show();
    Gaps gaps(face.timer);
    REQUIRE(waitFor([&] { return gaps.last > 200; }));
    gaps.quickInARow = 0;
    Pointer(face).to({5, 5});
    CHECK(waitFor([&] { return gaps.quickInARow > 5; }));
}

TEST_CASE(
    "The timers keep a smooth rate while something sounds, and the start and the end of sound wake them")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    Gaps gaps(face.timer);
    toolkit.activity().begin();
    runFor(2300); // longer than a still program keeps the rate
    gaps.quickInARow = 0;
    CHECK(waitFor([&] { return gaps.quickInARow > 5; })); // a still one's would never be
    toolkit.activity().end();
    REQUIRE(waitFor([&] { return gaps.last > 200; }));
    toolkit.activity().begin();
    gaps.quickInARow = 0;
    CHECK(waitFor([&] { return gaps.quickInARow > 5; }));
    toolkit.activity().end();
}
