// SPDX-License-Identifier: GPL-3.0-or-later
// Part files that no note tells of: with the power the note may go and the part stay.
#pragma once

#include "platform/text.h"

namespace files
{

// Removes what an earlier run of the machine left beside `partPath`, made for the same target: all that wrote
// then have ended. Where the folder cannot be listed, nothing.
void removeLostParts(const Text& partPath);

}
