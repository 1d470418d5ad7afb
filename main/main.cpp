// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/ground.h"
#include "desktop/stack_limit.h"
#include "main/desktop.h"
#include "program.h"

#include <csignal>

int main(int, char** argv)
{
    desktop::openStandardStreams();
    desktop::requireThreads();
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is a failed write, not the end
    const rlimit stackLimit = desktop::raiseStackLimit();
    Desktop desktop(argv[0], stackLimit); // toolkit, sound, discs, store: the real parts
    Program program(desktop);
    desktop.SecondStart.calls([&] { program.raise(); });
    return desktop.run([&] { program.start(); });
}
