// SPDX-License-Identifier: GPL-3.0-or-later
// The first system call that a piece of work makes in this thread; all of them are carried out.
#pragma once

#include <functional>

namespace systemCalls
{

inline constexpr long none = -1;
inline constexpr long unknown = -2; // this system cannot tell

// Its number. Those are left out by which threads wait for each other.
long firstOf(const std::function<void()>& work);

}
