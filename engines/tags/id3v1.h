// SPDX-License-Identifier: GPL-3.0-or-later
// The ID3v1 tag: the last 128 bytes of a file, fields of fixed length, one byte a character.
#pragma once

#include "engines/tags/tag.h"

#include <cstddef>
#include <string_view>

namespace tags
{

constexpr std::size_t id3v1Size = 128;

bool isId3v1(std::string_view block);

Tag readId3v1(std::string_view block);

// `block`, which may be empty for a file without such a tag, with the fields of `wanted`. Fields are cut to
// their place at a character. A field that reads as it should keeps its bytes; so does one that `shown`, the
// tag as readers see it now, leaves as it was and that could only be written with question marks. The track
// number of ID3v1.1 stays unless the comment needs its bytes.
Text id3v1With(const Tag& wanted, const Tag& shown, std::string_view block);

// Whether ID3v1 can hold every field whole.
bool fitsId3v1(const Tag& tag);

}
