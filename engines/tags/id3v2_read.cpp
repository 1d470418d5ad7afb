// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/id3v2_read.h"

#include "engines/tags/tag_text.h"
#include "platform/byte_order.h"

#include <algorithm>

namespace tags
{

namespace
{

constexpr std::size_t mostComments = 100;
constexpr std::size_t languageSize = 3;

// The first byte of a frame's content.
constexpr char utf16 = 1;
constexpr char utf16WithoutMark = 2;
constexpr char utf8 = 3;

// The texts in a frame's content, with zeros between them. Nothing in them can be so damaged that this fails.
class Texts
{
public:
    Texts(char encoding, std::string_view bytes) :
        encoding_(encoding), isBigEndian_(encoding == utf16WithoutMark), bytes_(bytes)
    {
    }

    bool areAllTaken() const { return bytes_.empty(); }
    bool hasNoZero() const { return endOfFirst() == bytes_.size(); }

    Text next()
    {
        const std::size_t end = endOfFirst();
        const std::string_view first = bytes_.substr(0, end);
        bytes_.remove_prefix(std::min(end + unitSize(), bytes_.size()));
        if (unitSize() == 2)
            return utf8OfUtf16(unitsOf(first));
        return encoding_ == utf8 ? validUtf8(first) : utf8OfLatin1(first);
    }

private:
    std::size_t unitSize() const { return encoding_ == utf16 || encoding_ == utf16WithoutMark ? 2 : 1; }

    // Where its zero stands; the end of all where there is none.
    std::size_t endOfFirst() const
    {
        const std::string_view zero("\0\0", unitSize());
        std::size_t at = 0;
        while (at < bytes_.size() && bytes_.substr(at, zero.size()) != zero)
            at += zero.size();
        return std::min(at, bytes_.size());
    }

    // A text without a mark of its byte order has that of the one before it.
    std::u16string unitsOf(std::string_view text)
    {
        const bool isMarked = text.starts_with("\xFE\xFF") || text.starts_with("\xFF\xFE");
        if (isMarked)
            isBigEndian_ = text.front() == '\xFE';
        std::u16string units;
        for (std::size_t at = isMarked ? 2 : 0; at + 1 < text.size(); at += 2) {
            const auto unit = text.substr(at, 2);
            units += static_cast<char16_t>(isBigEndian_ ? fromBigEndian(unit) : fromLittleEndian(unit));
        }
        return units;
    }

    char encoding_;
    bool isBigEndian_;
    std::string_view bytes_;
};

// Its values, but for empty ones.
std::vector<Text> textsIn(std::string_view content)
{
    std::vector<Text> values;
    if (content.empty())
        return values;
    Texts texts(content.front(), content.substr(1));
    while (!texts.areAllTaken())
        if (Text text = texts.next(); !text.empty())
            values.push_back(std::move(text));
    return values;
}

Id3v2Comment commentIn(std::size_t frame, std::string_view content)
{
    Id3v2Comment comment{.frame = frame};
    if (content.size() <= 1 + languageSize)
        return comment;
    comment.language = content.substr(1, languageSize);
    Texts texts(content.front(), content.substr(1 + languageSize));
    if (texts.hasNoZero())
        return comment;
    comment.description = texts.next();
    comment.text = texts.next();
    return comment;
}

// The values of the first readable frame of that name.
std::vector<Text> valuesOf(Id3v2Layout& layout, const Text& id)
{
    const auto fits = [&](const Id3v2Frame& frame) { return frame.readable && frame.id == id; };
    const auto frame = std::find_if(layout.frames.begin(), layout.frames.end(), fits);
    return frame == layout.frames.end() ? std::vector<Text>() : textsIn(frameContent(layout, *frame));
}

// A widespread player keeps numbers for itself in comments with such descriptions.
bool isForPeople(const Id3v2Comment& comment) { return !comment.description.starts_with("iTun"); }

std::vector<Text> commentsFor(Id3v2Layout& layout)
{
    const auto comments = id3v2Comments(layout);
    auto found = std::find_if(comments.begin(), comments.end(), isPlain);
    if (found == comments.end())
        found = std::find_if(comments.begin(), comments.end(), isForPeople);
    return found == comments.end() ? std::vector<Text>() : std::vector<Text>{found->text};
}

// Of several names for a field, the first whose frame says something.
std::vector<Text> valuesOf(Id3v2Layout& layout, Field field)
{
    if (field == Field::Comment)
        return commentsFor(layout);
    for (const Text& id : id3v2Names(field, layout.header.version))
        if (auto values = valuesOf(layout, id); !values.empty())
            return values;
    return {};
}

}

HeldTag readId3v2(Id3v2Layout& layout)
{
    return heldTag([&](Field field) { return valuesOf(layout, field); });
}

std::vector<Id3v2Comment> id3v2Comments(Id3v2Layout& layout)
{
    std::vector<Id3v2Comment> comments;
    for (std::size_t i = 0; i < layout.frames.size() && comments.size() < mostComments; ++i) {
        const auto& frame = layout.frames[i];
        if (frame.id == "COMM" && frame.readable)
            comments.push_back(commentIn(i, frameContent(layout, frame)));
    }
    return comments;
}

bool isPlain(const Id3v2Comment& comment) { return comment.description.empty(); }

std::vector<Text> id3v2Names(Field field, int version)
{
    // In the order of `Field`.
    static constexpr const char* names[] = {"TIT2", "TPE1", "TALB", "TYER", "TCON", "COMM"};
    if (field != Field::Year)
        return {names[static_cast<std::size_t>(field)]};
    return version == 4 ? std::vector<Text>{"TDRC", "TYER"} : std::vector<Text>{"TYER", "TDRC"};
}

}
