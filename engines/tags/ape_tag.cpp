// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/ape_tag.h"

#include "engines/tags/tag_text.h"
#include "platform/byte_order.h"

#include <algorithm>
#include <utility>

namespace tags
{

namespace
{

// clang-format off
constexpr std::size_t endSize      = 32; // of the header and of the footer, which are alike
constexpr std::size_t sizeAt       = 12;
constexpr std::size_t countAt      = 16;
constexpr std::size_t flagsAt      = 20;
constexpr std::size_t itemHeadSize = 8;
// clang-format on

constexpr std::uint32_t hasHeader = 1u << 31;
constexpr std::uint32_t isHeader = 1u << 29;
constexpr std::uint32_t kindOfItem = 3u << 1;
constexpr std::uint32_t mostItems = 10'000;
constexpr std::size_t longestKey = 255;
constexpr std::uint64_t longestText = 64 * 1024;

// In the order of `Field`.
constexpr const char* keys[] = {"Title", "Artist", "Album", "Year", "Genre", "Comment"};

Text keyOf(Field field) { return keys[static_cast<std::size_t>(field)]; }

std::uint32_t numberAt(std::string_view bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(fromLittleEndian(bytes.substr(at, 4)));
}

std::optional<ApeItem> itemAt(files::ByteSource& tag, std::uint64_t at, std::uint64_t end)
{
    const Text head = tag.read(at, itemHeadSize + longestKey + 1);
    const auto keyEnd = head.find('\0', std::min(itemHeadSize, head.size()));
    if (keyEnd == Text::npos)
        return {};
    ApeItem item{head.substr(itemHeadSize, keyEnd - itemHeadSize), at};
    item.valueSize = numberAt(head, 0);
    item.isText = (numberAt(head, 4) & kindOfItem) == 0;
    item.size = keyEnd + 1 + item.valueSize;
    return item.size <= end - at ? std::optional(item) : std::nullopt;
}

// False when the items do not fill their place exactly.
bool takeItems(ApeTag& tag, std::uint32_t count)
{
    const std::uint64_t end = tag.size - endSize;
    std::uint64_t at = tag.itemsBegin;
    for (std::uint32_t i = 0; i < count; ++i) {
        auto item = itemAt(*tag.bytes, at, end);
        if (!item)
            return false;
        at += item->size;
        tag.items.push_back(std::move(*item));
    }
    return at == end;
}

bool isEnd(std::string_view bytes) { return bytes.size() == endSize && bytes.substr(0, 8) == "APETAGEX"; }

std::vector<Text> valuesOf(ApeTag& tag, Field field)
{
    const auto fits = [&](const ApeItem& item) {
        return item.isText && item.valueSize <= longestText && equalWithoutCase(item.key, keyOf(field));
    };
    const auto item = std::find_if(tag.items.begin(), tag.items.end(), fits);
    if (item == tag.items.end())
        return {};
    Text value = tag.bytes->read(item->at + item->size - item->valueSize, item->valueSize);
    std::vector<Text> values;
    for (std::size_t at = 0; at < value.size(); at = std::min(value.find('\0', at), value.size() - 1) + 1)
        if (const auto one = upToZero(std::string_view(value).substr(at)); !one.empty())
            values.push_back(utf8OfUnstated(one));
    return values;
}

Text makeItem(const Text& key, const Text& value)
{
    return toLittleEndian(value.size()) + Text(4, '\0') + key + '\0' + value;
}

const FieldChange* changeOf(const ApeItem& item, const std::vector<FieldChange>& changes)
{
    const auto isItsOwn = [&](const FieldChange& change) {
        return equalWithoutCase(item.key, keyOf(change.field));
    };
    const auto change = std::find_if(changes.begin(), changes.end(), isItsOwn);
    return change == changes.end() ? nullptr : &*change;
}

// A header or footer for items of that many bytes.
Text renewed(Text end, std::size_t bytes, std::size_t count)
{
    end.replace(sizeAt, 4, toLittleEndian(bytes + endSize));
    end.replace(countAt, 4, toLittleEndian(count));
    return end;
}

struct Items {
    Text bytes;
    std::size_t count = 0;

    void add(const Text& item)
    {
        bytes += item;
        ++count;
    }
};

// The items that no change names, in their order; the changed ones behind them.
Items itemsWith(ApeTag& tag, const std::vector<FieldChange>& changes)
{
    Items items;
    for (const auto& item : tag.items)
        if (!changeOf(item, changes))
            items.add(tag.bytes->readAll(item.at, item.size));
    for (const auto& change : changes)
        if (!change.text.empty())
            items.add(makeItem(keyOf(change.field), change.text));
    return items;
}

}

std::optional<ApeTag> apeTagEndingAt(files::ByteSource& file, std::uint64_t end, std::uint64_t earliest)
{
    const std::uint64_t room = end < earliest ? 0 : end - earliest;
    const Text footer = room < endSize ? "" : file.read(end - endSize, endSize);
    if (!isEnd(footer) || (numberAt(footer, flagsAt) & isHeader) != 0)
        return {};
    ApeTag tag;
    tag.itemsBegin = (numberAt(footer, flagsAt) & hasHeader) != 0 ? endSize : 0;
    tag.size = tag.itemsBegin + numberAt(footer, sizeAt);
    if (tag.size < tag.itemsBegin + endSize || tag.size > room)
        return {};
    tag.at = end - tag.size;
    tag.bytes = std::make_unique<files::StretchOfBytes>(file, tag.at, tag.size);
    const bool hasItsHeader = tag.itemsBegin == 0 || isEnd(tag.bytes->read(0, endSize));
    const std::uint32_t count = numberAt(footer, countAt);
    if (!hasItsHeader || count > mostItems || !takeItems(tag, count))
        return {};
    return tag;
}

HeldTag readApe(ApeTag& tag)
{
    return heldTag([&](Field field) { return valuesOf(tag, field); });
}

Text apeWith(ApeTag& tag, const std::vector<FieldChange>& changes)
{
    const Items items = itemsWith(tag, changes);
    const Text header = tag.bytes->readAll(0, tag.itemsBegin);
    const Text footer = tag.bytes->readAll(tag.size - endSize, endSize);
    return (header.empty() ? "" : renewed(header, items.bytes.size(), items.count)) + items.bytes +
           renewed(footer, items.bytes.size(), items.count);
}

}
