// SPDX-License-Identifier: GPL-3.0-or-later
// How an ID3v2 tag comes to say something else, with every other byte kept.
#pragma once

#include "engines/tags/field_changes.h"
#include "engines/tags/id3v2_layout.h"

namespace tags
{

// The whole tag, header and padding included, after `changes`: of the same length where they fit, and of the
// same version. Frames that no change names, and what this program does not understand, stay byte for byte.
// Fails with words for a person where that cannot be done.
Text id3v2With(Id3v2Layout& layout, const std::vector<FieldChange>& changes);

// A whole new tag, of the version that the most players read.
Text newId3v2(const std::vector<FieldChange>& changes);

}
