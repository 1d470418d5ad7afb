// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/crash_trace.h"
#include "desktop/ground.h"
#include "desktop/places.h"
#include "desktop/stack_limit.h"
#include "files/module.h"
#include "main/desktop.h"
#include "program.h"

#include <csignal>
#include <unistd.h>

namespace
{

int run(char* program, const rlimit& stackLimit)
{
    Desktop desktop(program, stackLimit); // toolkit, sound, discs, store: the real parts
    Program parts(desktop);
    desktop.SecondStart.calls([&] { parts.raise(); });
    return desktop.run([&] { parts.start(); });
}

}

// A server that hangs may hold a thread, and what the libraries do at the end of a process would wait for it.
int main(int, char** argv)
{
    desktop::openStandardStreams();
    desktop::traceCrashes(desktop::stateFolder(desktop::environmentOfProcess()), files::buildName());
    desktop::requireThreads();
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is a failed write, not the end
    _exit(run(argv[0], desktop::raiseStackLimit()));
}
