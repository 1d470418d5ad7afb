// SPDX-License-Identifier: GPL-3.0-or-later
// A sound file that an engine has opened.
#pragma once

#include "engines/audio/pcm_source.h"
#include "engines/audio/timeline.h"
#include "platform/text.h"

#include <memory>
#include <optional>

namespace audio
{

struct OpenedSound {
    std::shared_ptr<PcmSource> source;
    Timeline timeline;
    std::int32_t bitsPerSecond = 0;
    int stepFrames = 0; // in one MPEG frame, or what stands for one
};

// Nothing when the file is missing, unreadable, or of another kind. What the file is, its content tells.
std::optional<OpenedSound> openMp3Sound(const Text& path);
std::optional<OpenedSound> openWavSound(const Text& path);

}
