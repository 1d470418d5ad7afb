// SPDX-License-Identifier: GPL-3.0-or-later
// peak_memory COMMAND...: runs the command and prints the most memory that it held, in KiB. A program of its
// own, because Linux counts what the caller held when it started the command, too, and this one holds little.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc < 2)
        return EXIT_FAILURE;
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[1], argv + 1);
        _exit(127);
    }
    int status = 0;
    struct rusage usage;
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0)
        return EXIT_FAILURE;
    std::printf("%ld\n", usage.ru_maxrss);
    return EXIT_SUCCESS;
}
