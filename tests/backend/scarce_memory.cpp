// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/scarce_memory.h"

#include <atomic>
#include <cstdlib>

namespace
{

std::atomic<long> before = 0; // those asked for until the one that is refused; 0: none will be
std::atomic<bool> refused = false;

bool isRefused()
{
    if (before <= 0 || before.fetch_sub(1) != 1)
        return false;
    refused = true;
    return true;
}

void* taken(std::size_t size) { return isRefused() ? nullptr : std::malloc(std::max<std::size_t>(size, 1)); }

}

ScarceMemory::ScarceMemory(long nth)
{
    refused = false;
    before = nth;
}

ScarceMemory::~ScarceMemory() { before = 0; }

bool ScarceMemory::hasRefused() const { return refused; }

// In the place of the library's own; those for memory of a given alignment stay its.
void* operator new(std::size_t size)
{
    void* const memory = taken(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return taken(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return taken(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
