// SPDX-License-Identifier: GPL-3.0-or-later
// A sound at a rate above what an output takes: so many of its frames become one.
#pragma once

#include "engines/audio/opened_sound.h"

namespace audio
{

// `sound` as it is, where its rate can be played.
OpenedSound playable(OpenedSound sound);

}
