// SPDX-License-Identifier: GPL-3.0-or-later
// The WAV engine on libsndfile.
#pragma once

#include "platform/mm_control.h"

#include <memory>

namespace audio
{

class SoundOutput;
class UnopenedFiles;

// What is given outlives the engine.
std::unique_ptr<MMControl> makeSndfileControl(SoundOutput& output, UnopenedFiles& unopened);

}
