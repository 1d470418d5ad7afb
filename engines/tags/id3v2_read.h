// SPDX-License-Identifier: GPL-3.0-or-later
// What an ID3v2 tag says.
#pragma once

#include "engines/tags/field_changes.h"
#include "engines/tags/id3v2_layout.h"

namespace tags
{

// The first readable frame of each kind answers; of the comments, the first without a description.
HeldTag readId3v2(Id3v2Layout& layout);

// All empty but its frame when that is too short to hold one.
struct Id3v2Comment {
    std::size_t frame = 0; // its place among the layout's frames
    Text language = {};    // three letters
    Text description = {};
    Text text = {};
};

// The readable comments in their order; the first hundred, for a file that was made to keep its reader busy.
std::vector<Id3v2Comment> id3v2Comments(Id3v2Layout& layout);

bool isPlain(const Id3v2Comment& comment);

// The names of the frames that hold a field; the one that a tag of that version should have comes first.
std::vector<Text> id3v2Names(Field field, int version);

}
