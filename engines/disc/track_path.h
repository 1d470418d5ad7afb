// SPDX-License-Identifier: GPL-3.0-or-later
// Where a track's file goes when its title is too long for a name.
#pragma once

#include "platform/text.h"

#include <cstdint>

namespace disc
{

// The path that the file system takes: a name that begins with the track's number ("03 - Artist - Title.wav")
// loses the end of its title. One that does not is left as it is: cut, it might be another track's.
Text fittingTrackPath(const Text& path, std::int16_t track);

}
