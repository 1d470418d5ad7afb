// SPDX-License-Identifier: GPL-3.0-or-later
// Reads and writes the tag in an MP3 file.
#pragma once

#include "engines/tags/tag.h"
#include "platform/part_notes.h"

#include <functional>

namespace tags
{

// ID3v2 first, then APE, then ID3v1, field by field. An empty tag for a file without one, for one that cannot
// be read, and for what is no MP3 file.
Tag readTag(const Text& path);

// Makes the file's tag say `tag`; a field that says so already stays as it is, byte for byte. "" when that is
// done, otherwise the reason in words, and the file is as it was. ID3v1 is always written, the other formats
// where they are present; ID3v2 is made where ID3v1 cannot hold a field. The file is replaced by a changed
// copy, whole at every moment, so it takes as long as copying it to the disk, unless the file system shares
// the bytes of both; other hard links keep the old file. `step` is called as it comes on, and ends it by
// failing.
Text writeTag(
    const Text& path, const Tag& tag, PartNotes& notes = NoPartNotes::instance(),
    const std::function<void()>& step = [] {});

}
