// SPDX-License-Identifier: GPL-3.0-or-later
// What file dialogs remember from one run to the next, in the user's state folder: a line "WIDTH HEIGHT",
// then the folder of the last choice. A file that says anything else, or cannot be read, says nothing; what
// cannot be written is lost with the process.
#pragma once

#include "platform/part_notes.h"
#include "platform/text.h"

namespace desktop
{

struct RememberedDialog {
    int width = 0; // 0: none is remembered
    int height = 0;
    Text folder;
};

class DialogMemory
{
public:
    // "": nothing is kept. `notes` outlive it.
    explicit DialogMemory(Text path, PartNotes& notes = NoPartNotes::instance()) :
        path_(std::move(path)), notes_(notes)
    {
    }

    RememberedDialog read() const;
    void write(const RememberedDialog& dialog) const; // replaces the file in one step; makes its folder

private:
    Text path_;
    PartNotes& notes_;
};

}
