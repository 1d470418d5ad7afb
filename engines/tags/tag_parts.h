// SPDX-License-Identifier: GPL-3.0-or-later
// Where the tags in an MP3 file lie: ID3v2 at its head, then the audio, then APE, then ID3v1.
#pragma once

#include "engines/tags/ape_tag.h"
#include "engines/tags/id3v2_layout.h"
#include "files/byte_source.h"

#include <optional>

namespace tags
{

struct TagParts {
    std::optional<Id3v2Header> id3v2;
    std::uint64_t audioBegin = 0;
    std::optional<ApeTag> ape;
    std::uint64_t audioEnd = 0;
    Text id3v1; // the tag's bytes; empty when there is none
};

// `file` must outlive the result.
TagParts tagPartsOf(files::ByteSource& file);

}
