// SPDX-License-Identifier: GPL-3.0-or-later
// How the CDDB tells discs apart: by where their tracks begin. Every track counts, data tracks and those of
// later sessions too.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/text.h"

namespace disc
{

// The disc's eight hexadecimal digits (the freedb "CDDB DISCID" algorithm).
Text discId(const DiscContents& disc);

// The command that asks for the disc's entries: "cddb query ID TRACKS START... SECONDS".
Text queryCommand(const DiscContents& disc);

}
