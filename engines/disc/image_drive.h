// SPDX-License-Identifier: GPL-3.0-or-later
// Disc images as drives: a CUE sheet and the files it names, always with their disc in.
#pragma once

#include "engines/disc/disc_folders.h"
#include "engines/disc/reader_drive.h"

namespace disc
{

std::shared_ptr<ReaderDrive> makeImageDrive(const Text& sheetPath);

// A drive for each sheet in the folders, the oldest first: a new image changes no other one's number.
ListReaders imagesIn(DiscFolders folders);

}
