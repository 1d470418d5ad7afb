// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/resource.h>

namespace desktop
{

// Runs of a list nest without limit, each with an event loop's worth of stack: the main thread may use 256
// MiB. Returns the limit as it was, for the programs that this one starts.
rlimit raiseStackLimit();

}
