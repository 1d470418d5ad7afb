// SPDX-License-Identifier: GPL-3.0-or-later
// The recorder that everybody has: it makes disc images.
#pragma once

#include "engines/disc/disc_folders.h"
#include "engines/disc/writer_drive.h"
#include "platform/part_notes.h"

namespace disc
{

// Each disc becomes a CUE sheet and one file of raw sectors, both named for the time at which its writing
// began. `notes` outlive a folder that does not answer.
std::shared_ptr<WriterDrive> makeImageRecorder(DiscFolders folders, PartNotes& notes);

}
