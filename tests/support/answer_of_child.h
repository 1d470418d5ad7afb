// SPDX-License-Identifier: GPL-3.0-or-later
// Work in a process of its own whose outcome is checked in this one.
#pragma once

#include "platform/text.h"
#include "tests/support/child.h"

#include <doctest/doctest.h>

// What `work` says there. It must not throw: the tests would go on in both processes.
inline Text answerOfChild(const std::function<Text()>& work)
{
    int ends[2];
    REQUIRE(pipe(ends) == 0);
    Child child([&] {
        const Text answer = work();
        endUnless(write(ends[1], answer.data(), answer.size()) >= 0, 1);
    });
    close(ends[1]);
    Text answer;
    char buffer[512];
    for (ssize_t got; (got = read(ends[0], buffer, sizeof buffer)) > 0;)
        answer.append(buffer, static_cast<std::size_t>(got));
    close(ends[0]);
    CHECK(child.wait() == 0);
    return answer;
}
