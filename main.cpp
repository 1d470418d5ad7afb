#include "platform/system/desktop.h"
#include "platform/system/stack_limit.h"
#include "program.h"

int main(int argc, char** argv)
{
    raiseStackLimit();
    Desktop desktop(argc, argv); // toolkit, sound, discs, store: the real parts
    Program program(desktop);
    return desktop.run([&] { program.start(); });
}
