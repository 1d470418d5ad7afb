// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/out_of_memory.h"

#include <cstdio>

void leavingOut(const std::function<void()>& work)
{
    try {
        work();
    } catch (const std::bad_alloc&) {
        std::fputs("Velmora: Out of memory\n", stderr);
    }
}
