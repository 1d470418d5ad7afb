// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/sound_output.h"

namespace audio
{

SoundOutput::SoundOutput(Text levelFile, Activity& activity, PartNotes& notes) :
    file_(std::move(levelFile), notes), activity_(activity)
{
    levels_->set(file_.read());
}

void SoundOutput::setLevels(Levels::Pair levels)
{
    const Levels::Pair before = levels_->get();
    levels_->set(levels);
    if (levels_->get() != before)
        file_.write(levels_->get());
}

}
