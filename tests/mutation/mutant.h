// SPDX-License-Identifier: GPL-3.0-or-later
// Compiled before each source that holds mutants: which of them this process is.
#pragma once

namespace mutation
{

extern int chosen;             // none: 0
extern unsigned char* reached; // a byte a mutant, where somebody wants to know

inline bool mutant(int number) noexcept
{
    if (reached) [[unlikely]]
        reached[number] = 1;
    return number == chosen;
}

}
