// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/mutation/mutant.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

int number()
{
    const char* text = std::getenv("VELMORA_MUTANT");
    return text ? std::atoi(text) : 0;
}

// Shared, so that what was reached before a kill stands there as well.
unsigned char* marks()
{
    const char* path = std::getenv("VELMORA_REACHED");
    const int file = path ? ::open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0)
        return nullptr;
    struct stat about {
    };
    fstat(file, &about);
    void* bytes =
        mmap(nullptr, static_cast<std::size_t>(about.st_size), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return bytes == MAP_FAILED ? nullptr : static_cast<unsigned char*>(bytes);
}

}

namespace mutation
{

int chosen = 0;
unsigned char* reached = nullptr;

// Before everything else that runs before main.
__attribute__((constructor(101))) static void choose()
{
    chosen = number();
    reached = marks();
}

}
