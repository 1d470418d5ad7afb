// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/ground.h"

#include "tests/support/answer_of_child.h"

#include <doctest/doctest.h>

#include <fcntl.h>

#include <climits>

namespace
{

// What stands under the numbers of the standard streams, in a process that began without some of them.
Text streamsWithout(std::initializer_list<int> closed)
{
    return answerOfChild([&] {
        for (const int stream : closed)
            close(stream);
        desktop::openStandardStreams();
        Text said;
        for (int stream = 0; stream <= 2; ++stream) {
            char name[PATH_MAX] = {};
            const Text link = "/proc/self/fd/" + std::to_string(stream);
            const bool isThere = readlink(link.c_str(), name, sizeof name - 1) > 0;
            said += !isThere ? "nothing " : Text(name) == "/dev/null" ? "null " : "kept ";
        }
        return said;
    });
}

}

TEST_CASE("A standard stream that is closed goes nowhere, so that no file gets its number")
{
    const Text path = "/dev/zero"; // what is open is left as it is
    const int input = open(path.c_str(), O_RDWR | O_CLOEXEC);
    const int before = dup(STDIN_FILENO);
    dup2(input, STDIN_FILENO);
    CHECK(streamsWithout({1, 2}) == "kept null null ");
    CHECK(streamsWithout({0, 1, 2}) == "null null null ");
    CHECK(streamsWithout({}).starts_with("kept "));
    dup2(before, STDIN_FILENO);
    close(before);
    close(input);
}
