// SPDX-License-Identifier: GPL-3.0-or-later
// An APE tag (APEv1 and APEv2) near the end of a file, item by item.
#pragma once

#include "engines/tags/field_changes.h"
#include "files/byte_source.h"

#include <memory>
#include <optional>
#include <vector>

namespace tags
{

struct ApeItem {
    Text key;
    std::uint64_t at = 0; // in the tag
    std::uint64_t size = 0;
    std::uint64_t valueSize = 0; // the value is the item's end
    bool isText = true;
};

struct ApeTag {
    std::uint64_t at = 0; // in the file
    std::uint64_t size = 0;
    std::unique_ptr<files::ByteSource> bytes;
    std::uint64_t itemsBegin = 0; // after its header, which it may have
    std::vector<ApeItem> items;
};

// The whole and sound tag that ends at `end` and does not begin before `earliest`; none otherwise.
// `file` must outlive it.
std::optional<ApeTag> apeTagEndingAt(files::ByteSource& file, std::uint64_t end, std::uint64_t earliest);

// The first item of each name answers.
HeldTag readApe(ApeTag& tag);

// The whole tag after `changes`; every other item stays byte for byte.
Text apeWith(ApeTag& tag, const std::vector<FieldChange>& changes);

}
