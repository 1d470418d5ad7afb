// SPDX-License-Identifier: GPL-3.0-or-later
// Sound that comes too late is a gap.
#pragma once

namespace audio
{

// Puts the calling thread, and those that it starts, before ordinary work, where the system allows it.
void putBeforeOtherWork();

}
