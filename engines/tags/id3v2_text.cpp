// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/id3v2_text.h"

#include "engines/tags/tag_text.h"

#include <algorithm>

namespace tags
{

namespace
{

constexpr char utf16 = 1;
constexpr char utf16WithoutMark = 2;
constexpr char utf8 = 3;

constexpr std::size_t languageSize = 3;

char16_t unitOf(char high, char low)
{
    return static_cast<char16_t>(static_cast<unsigned char>(high) << 8 | static_cast<unsigned char>(low));
}

// One text after the other. A text without a mark of its byte order has that of the one before it.
class Texts
{
public:
    Texts(char encoding, std::string_view bytes) :
        encoding_(encoding), bigEndian_(encoding == utf16WithoutMark), bytes_(bytes)
    {
    }

    bool areAllTaken() const { return bytes_.empty(); }
    bool hasNoZero() const { return endOfFirst() >= bytes_.size(); }

    Text next()
    {
        const std::size_t end = endOfFirst();
        const std::string_view first = bytes_.substr(0, end);
        bytes_.remove_prefix(std::min(end + unitSize(), bytes_.size()));
        return decoded(first);
    }

private:
    bool isWide() const { return encoding_ == utf16 || encoding_ == utf16WithoutMark; }
    std::size_t unitSize() const { return isWide() ? 2 : 1; }

    std::size_t endOfFirst() const
    {
        if (!isWide())
            return std::min(bytes_.find('\0'), bytes_.size());
        std::size_t at = 0;
        while (at + 1 < bytes_.size() && (bytes_[at] != '\0' || bytes_[at + 1] != '\0'))
            at += 2;
        return at + 1 < bytes_.size() ? at : bytes_.size();
    }

    Text decoded(std::string_view text)
    {
        if (isWide())
            return utf8OfUtf16(unitsOf(text));
        return encoding_ == utf8 ? validUtf8(text) : utf8OfLatin1(text);
    }

    std::u16string unitsOf(std::string_view text)
    {
        const bool isMarked = text.starts_with("\xFE\xFF") || text.starts_with("\xFF\xFE");
        if (isMarked)
            bigEndian_ = text.front() == '\xFE';
        std::u16string units;
        for (std::size_t at = isMarked ? 2 : 0; at + 1 < text.size(); at += 2)
            units += bigEndian_ ? unitOf(text[at], text[at + 1]) : unitOf(text[at + 1], text[at]);
        return units;
    }

    char encoding_;
    bool bigEndian_;
    std::string_view bytes_;
};

}

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

CommentText commentIn(std::string_view content)
{
    if (content.size() <= 1 + languageSize)
        return {};
    CommentText comment{Text(content.substr(1, languageSize)), {}, {}};
    Texts texts(content.front(), content.substr(1 + languageSize));
    if (texts.hasNoZero())
        return comment;
    comment.description = texts.next();
    comment.text = texts.next();
    return comment;
}

}
