// SPDX-License-Identifier: GPL-3.0-or-later
// The texts in the contents of an ID3v2 frame: a byte for the encoding, then texts with zeros between them.
#pragma once

#include "platform/text.h"

#include <string_view>
#include <vector>

namespace tags
{

// Of a text frame: its values, but for empty ones. Nothing in it can be so damaged that this fails.
std::vector<Text> textsIn(std::string_view content);

struct CommentText {
    Text language; // three letters
    Text description;
    Text text;
};

// Of a comment frame; all empty when it is too short to be one.
CommentText commentIn(std::string_view content);

}
