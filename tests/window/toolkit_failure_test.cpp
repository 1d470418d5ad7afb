// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/face.h"
#include "support/pointer.h"
#include "support/waiting.h"
#include "toolkit/toolkit.h"

#include <doctest/doctest.h>

namespace
{

struct Ending {
    Toolkit toolkit{Toolkit::Timers::run};
    Face face{toolkit};
    std::vector<int> unhandled;

    Ending()
    {
        toolkit.unhandled = [this](const Failure& failure) { unhandled.push_back(failure.number); };
        face.onClick = [] { throw Failure(Trouble::typeMismatch); };
    }
};

}

TEST_CASE("A failure that a click meets is handled nowhere else, and told once")
{
    Ending ending;
    ending.face.Show();
    Pointer pointer(ending.face);
    pointer.click(ending.face.key);
    CHECK(ending.unhandled == std::vector{13});
    pointer.click(ending.face.key);
    CHECK(ending.unhandled == std::vector{13});
}

TEST_CASE("Memory that runs out in a click ends the program with its word, once")
{
    Ending ending;
    ending.face.onClick = [] { throw std::bad_alloc(); };
    ending.face.Show();
    Pointer pointer(ending.face);
    pointer.click(ending.face.key);
    pointer.click(ending.face.key);
    CHECK(ending.unhandled == std::vector{7});
}

TEST_CASE("A failure in an event that code raises reaches the raiser")
{
    Ending ending;
    int met = 0;
    guarded([&](const Failure& failure) { met = failure.number; }, [&] { ending.face.key.Click.raise(); });
    CHECK(met == 13);
    CHECK(ending.unhandled.empty());
}

TEST_CASE("A failure in the activation that Show raises reaches the caller")
{
    Ending ending;
    ending.face.Activate.calls([] { throw Failure(Trouble::overflow); });
    int met = 0;
    guarded([&](const Failure& failure) { met = failure.number; }, [&] { ending.face.Show(); });
    CHECK(met == 6);
    CHECK(ending.unhandled.empty());
}

TEST_CASE("A failure in a drop is told, and the drag still ends with its release")
{
    Ending ending;
    ending.face.Show();
    ending.face.onDrop = [] { throw Failure(Trouble::invalidPropertyValue); };
    ending.face.told();
    Pointer(ending.face).to(ending.face.thumb).press().to({80, 102}).release();
    CHECK(ending.unhandled == std::vector{380});
    CHECK(ending.face.told().ends_with("thumb up 1\n"));
}

TEST_CASE("A failure in a posted call is told")
{
    Ending ending;
    ending.toolkit.post().post([] { throw Failure(Trouble::deviceInputOutput); });
    REQUIRE(waitFor([&] { return !ending.unhandled.empty(); }));
    CHECK(ending.unhandled == std::vector{57});
}

TEST_CASE("A failure in the window manager's close is told")
{
    Ending ending;
    ending.face.Show();
    ending.face.Deactivate.calls([] { throw Failure(Trouble::invalidCall); });
    ending.face.page()->close();
    CHECK(ending.unhandled == std::vector{5});
}

TEST_CASE("An unhandled failure stops every timer before it is told")
{
    Ending ending;
    ctl::IntervalTimer other(ending.face, "other", std::chrono::milliseconds(1));
    int ticks = 0;
    other.Timer.calls([&] { ++ticks; });
    ending.face.timer.Timer.calls([&] {
        if (ticks > 2)
            throw Failure(Trouble::overflow);
    });
    int ticksAtTheEnd = -1;
    ending.toolkit.unhandled = [&](const Failure& failure) {
        ending.unhandled.push_back(failure.number);
        ticksAtTheEnd = ticks;
        // Behind the closing message.
        ctl::IntervalTimer late(ending.face, "late", std::chrono::milliseconds(1));
        late.Timer.calls([&] { ++ticks; });
        ending.face.timer.setEnabled(false);
        ending.face.timer.setEnabled(true);
        const QDeadlineTimer some(100);
        waitFor([&] { return some.hasExpired(); });
    };
    REQUIRE(waitFor([&] { return !ending.unhandled.empty(); }));
    CHECK(ending.unhandled == std::vector{6});
    CHECK(ticks == ticksAtTheEnd);
}

TEST_CASE("Without anybody to tell, a failure still stops the timers")
{
    Toolkit toolkit(Toolkit::Timers::run);
    Face face(toolkit);
    int ticks = 0;
    face.timer.Timer.calls([&] {
        ++ticks;
        throw Failure(Trouble::overflow);
    });
    REQUIRE(waitFor([&] { return ticks > 0; }));
    const QDeadlineTimer some(100);
    waitFor([&] { return some.hasExpired(); });
    CHECK(ticks == 1);
}
