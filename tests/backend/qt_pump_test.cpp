// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/qt_pump.h"

#include "tests/support/child.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace
{

// The words behind a process's name in its line of the system: the first is its state.
std::vector<std::string> stateOf(pid_t process)
{
    std::string line;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/stat"), line);
    std::istringstream words(line.substr(line.rfind(')') + 1));
    return {std::istream_iterator<std::string>(words), {}};
}

bool sleeps(pid_t process)
{
    const auto words = stateOf(process);
    return !words.empty() && words[0] == "S";
}

long ticksOfProcessor(pid_t process)
{
    const auto words = stateOf(process);
    return std::stol(words.at(11)) + std::stol(words.at(12));
}

}

TEST_CASE("Standing still does not come back, also not by a signal, and takes no processor")
{
    Child child([] {
        std::signal(SIGURG, [](int) {}); // wakes it, and it stands on
        desktop::QtPump().standStill();
    });
    CHECK(waitUntil([&] { return sleeps(child.id()); }));
    for (int signals = 0; signals < 20; ++signals) {
        ::kill(child.id(), SIGURG);
        CHECK(waitUntil([&] { return sleeps(child.id()); }));
    }
    const long before = ticksOfProcessor(child.id());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    CHECK(waitUntil([&] { return sleeps(child.id()); }));
    CHECK(ticksOfProcessor(child.id()) - before < 5);
    ::kill(child.id(), SIGTERM);
    CHECK(child.wait() == 128 + SIGTERM);
}
