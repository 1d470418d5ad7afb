// SPDX-License-Identifier: GPL-3.0-or-later
// What a crash leaves behind: which build it was, the signal, and the stack. It stays on this computer.
#pragma once

#include "platform/shell.h"

namespace desktop
{

// From now on a fatal signal leaves a trace in `folder`, which is made in need, and then ends the process as
// it would have: with a core dump where the system makes them. A signal that somebody handles already stays
// theirs.
void traceCrashes(const Text& folder, const Text& buildName);

// Tells where the trace of an earlier crash is, once: it gets another name by that.
void tellOfCrash(const Text& folder, Shell& shell);

}
