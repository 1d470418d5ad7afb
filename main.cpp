#include "platform/system/desktop.h"
#include "platform/system/stack_limit.h"
#include "program.h"

int main(int argc, char** argv)
{
    const rlimit stackLimit = raiseStackLimit();
    Desktop desktop(argc, argv, stackLimit); // toolkit, sound, discs, store: the real parts
    Program program(desktop);
    return desktop.run([&] { program.start(); });
}
