// SPDX-License-Identifier: GPL-3.0-or-later
// What the text formats of tags (ID3v2, APE) share: six fields, each a text, changed one by one.
#pragma once

#include "engines/tags/tag.h"

#include <functional>
#include <vector>

namespace tags
{

enum class Field { Title, Artist, Album, Year, Genre, Comment };

// A tag as one format holds it in a file.
struct HeldTag {
    Tag tag;
    Text genre; // the genre's own text, which may stand for no number
};

// `valuesOf` gives the values that the format holds for a field; most often one or none.
HeldTag heldTag(const std::function<std::vector<Text>(Field)>& valuesOf);

struct FieldChange {
    Field field;
    Text text; // empty: the field goes
};

// What must change in `held` for it to say `wanted`. `shown` is the file's tag as it was read, all formats
// together.
std::vector<FieldChange> changesTo(const Tag& wanted, const HeldTag& held, const Tag& shown);

// Whether `shown` has a genre without a number, which the program shows as 80, and `wanted` leaves it so:
// then its name stays where it stands.
bool keepsGenreName(const Tag& wanted, const Tag& shown);

// Fields that `tag` does not have are taken from `other`.
void addMissing(Tag& tag, const Tag& other);

}
