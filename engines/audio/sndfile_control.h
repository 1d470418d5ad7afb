// The WAV engine on libsndfile.
#pragma once

#include "platform/mm_control.h"

#include <memory>

class SoundOutput;

std::unique_ptr<MMControl> makeSndfileControl(SoundOutput& output);
