#include "engines/tags/id3v2_read.h"

#include "engines/tags/tag_text.h"

#include <algorithm>

#include <commentsframe.h>
#include <id3v2framefactory.h>
#include <textidentificationframe.h>

namespace
{

constexpr std::size_t mostComments = 100;

Text textOf(const TagLib::String& string)
{
    std::u16string units;
    for (const wchar_t unit : string)
        units += static_cast<char16_t>(unit);
    return Text(upToZero(utf8OfUtf16(units)));
}

TagLib::ByteVector vectorOf(const Text& bytes) { return {bytes.data(), static_cast<unsigned>(bytes.size())}; }

std::unique_ptr<TagLib::ID3v2::Frame> parsed(Id3v2Layout& layout, const Id3v2Frame& frame)
{
    const TagLib::ID3v2::Header header(vectorOf(layout.header.bytes));
    const auto* factory = TagLib::ID3v2::FrameFactory::instance();
    return std::unique_ptr<TagLib::ID3v2::Frame>(
        factory->createFrame(vectorOf(frameBytes(layout, frame)), &header));
}

// The values of the first readable frame of that name.
std::vector<Text> valuesOf(Id3v2Layout& layout, const Text& id)
{
    const auto fits = [&](const Id3v2Frame& frame) { return frame.readable && frame.id == id; };
    const auto frame = std::find_if(layout.frames.begin(), layout.frames.end(), fits);
    if (frame == layout.frames.end())
        return {};
    std::vector<Text> values;
    const auto contents = parsed(layout, *frame);
    if (const auto* text = dynamic_cast<TagLib::ID3v2::TextIdentificationFrame*>(contents.get()))
        for (const auto& value : text->fieldList())
            values.push_back(textOf(value));
    return values;
}

// A widespread player keeps numbers for itself in comments with such descriptions.
bool isForPeople(const Id3v2Comment& comment) { return comment.description.substr(0, 4) != "iTun"; }

std::vector<Text> commentIn(Id3v2Layout& layout)
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
        return commentIn(layout);
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
        if (layout.frames[i].id != "COMM" || !layout.frames[i].readable)
            continue;
        const auto contents = parsed(layout, layout.frames[i]);
        const auto* comment = dynamic_cast<TagLib::ID3v2::CommentsFrame*>(contents.get());
        if (!comment)
            continue;
        const auto language = comment->language();
        comments.push_back({i, Text(language.data(), language.size()), textOf(comment->description()),
                            textOf(comment->text())});
    }
    return comments;
}

bool isPlain(const Id3v2Comment& comment) { return comment.description.empty(); }

std::vector<Text> id3v2Names(Field field, int version)
{
    switch (field) {
    case Field::Title:
        return {"TIT2"};
    case Field::Artist:
        return {"TPE1"};
    case Field::Album:
        return {"TALB"};
    case Field::Genre:
        return {"TCON"};
    case Field::Comment:
        return {"COMM"};
    case Field::Year:
        return version == 4 ? std::vector<Text>{"TDRC", "TYER"} : std::vector<Text>{"TYER", "TDRC"};
    }
    return {};
}
