// Reads and writes the tag in an MP3 file.
#pragma once

#include "platform/tags/tag.h"

// ID3v2 first, then APE, then ID3v1, field by field. An empty tag for a file without one, or one that cannot
// be read.
Tag readTag(const Text& path);

// Makes the file's tag say `tag`; a field that says so already stays as it is, byte for byte. "" when that is
// done, otherwise the reason in words, and the file is as it was.
Text writeTag(const Text& path, const Tag& tag);
