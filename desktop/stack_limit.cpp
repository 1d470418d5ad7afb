// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/stack_limit.h"

#include <algorithm>

namespace desktop
{

rlimit raiseStackLimit()
{
    constexpr rlim_t wanted = 256UL << 20;
    rlimit before{};
    getrlimit(RLIMIT_STACK, &before);
    rlimit raised = before;
    raised.rlim_cur = std::max(before.rlim_cur, std::min(wanted, before.rlim_max));
    setrlimit(RLIMIT_STACK, &raised);
    return before;
}

}
