// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/ground.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <latch>
#include <system_error>
#include <thread>

namespace desktop
{

namespace
{

// As many as a start takes, and some to spare.
constexpr int neededThreads = 16;

// All at once: it is their number that the system may refuse.
bool makesThreads()
{
    std::latch end(1);
    std::array<std::jthread, neededThreads> threads;
    try {
        for (auto& thread : threads)
            thread = std::jthread([&end] { end.wait(); });
    } catch (const std::system_error&) {
        end.count_down();
        return false;
    }
    end.count_down();
    return true;
}

}

void openStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDWR); // the lowest number that is free is this one
}

void requireThreads()
{
    if (makesThreads())
        return;
    std::cerr << "Velmora cannot start: the system makes no more threads. End some programs first.\n";
    _exit(1);
}

}
