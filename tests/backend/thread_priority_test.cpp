// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/thread_priority.h"

#include "tests/support/answer_of_child.h"

#include <doctest/doctest.h>

#include <sys/resource.h>

namespace
{

Text asked; // of the system, by this process

}

// In the place of the system's own: few machines let a test be put before other work.
extern "C" int setpriority(__priority_which_t which, id_t who, int value) noexcept
{
    asked += which == PRIO_PROCESS && who == 0 ? std::to_string(value) : "of others";
    return 0;
}

TEST_CASE("A thread that may not run in real time asks to be put before other work, as sound servers are")
{
    const Text said = answerOfChild([] {
        const rlimit never{0, 0};
        endUnless(setrlimit(RLIMIT_RTPRIO, &never) == 0, 98);
        becomeNobody();
        audio::putBeforeOtherWork();
        return asked;
    });
    CHECK(said == "-11");
}
