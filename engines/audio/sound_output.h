// SPDX-License-Identifier: GPL-3.0-or-later
// The sound output of the process, which all engines share and which outlives them: its two levels are the
// volume of whichever plays. It is silent, and touches no sound server, until an engine plays.
#pragma once

#include "engines/audio/level_file.h"
#include "engines/audio/levels.h"
#include "engines/audio/sound_device.h"
#include "platform/activity.h"

#include <memory>

namespace audio
{

class SoundOutput
{
public:
    // `levelFile` keeps the levels between runs. `activity` counts the engines that sound.
    SoundOutput(Text levelFile, Activity& activity, PartNotes& notes = NoPartNotes::instance());

    Levels::Pair levels() const { return levels_->get(); }
    void setLevels(Levels::Pair levels); // held to 0 and 100

    Activity& activity() { return activity_; }
    SoundDevice& device() { return device_; }
    std::shared_ptr<const Levels> sharedLevels() const { return levels_; }

private:
    LevelFile file_;
    Activity& activity_;
    std::shared_ptr<Levels> levels_ = std::make_shared<Levels>();
    SoundDevice device_;
};

}
