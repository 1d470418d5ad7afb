// SPDX-License-Identifier: GPL-3.0-or-later
// The output levels in the user's state folder: one line, "LEFT RIGHT". They are 100 until the file says
// otherwise, also when it cannot be read; what cannot be written is lost with the process.
#pragma once

#include "engines/audio/levels.h"
#include "platform/complaint.h"
#include "platform/part_notes.h"

namespace audio
{

class LevelFile
{
public:
    LevelFile(Text path, PartNotes& notes) : path_(std::move(path)), notes_(notes) {}

    Levels::Pair read() const;
    void write(Levels::Pair levels); // replaces the file in one step; makes its folder

private:
    Text path_;
    PartNotes& notes_;
    Complaint complaint_{"The volume cannot be kept"};
};

}
