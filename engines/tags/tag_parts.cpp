// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/tag_parts.h"

#include "engines/formats/mp3_tags.h"
#include "engines/tags/id3v1.h"

namespace tags
{

TagParts tagPartsOf(files::ByteSource& file)
{
    TagParts parts;
    parts.id3v2 = id3v2HeaderAt(file, 0);
    parts.audioBegin = static_cast<std::uint64_t>(formats::endOfLeadingTags(file));
    parts.audioEnd = file.size();
    if (file.size() >= parts.audioBegin + id3v1Size)
        parts.id3v1 = file.read(file.size() - id3v1Size, id3v1Size);
    if (isId3v1(parts.id3v1))
        parts.audioEnd -= id3v1Size;
    else
        parts.id3v1.clear();
    parts.ape = apeTagEndingAt(file, parts.audioEnd, parts.audioBegin);
    if (parts.ape)
        parts.audioEnd = parts.ape->at;
    return parts;
}

}
