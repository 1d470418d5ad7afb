// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/id3v2_read.h"

#include <algorithm>

namespace tags
{

namespace
{

constexpr std::size_t mostComments = 100;

// The values of the first readable frame of that name.
std::vector<Text> valuesOf(Id3v2Layout& layout, const Text& id)
{
    const auto fits = [&](const Id3v2Frame& frame) { return frame.readable && frame.id == id; };
    const auto frame = std::find_if(layout.frames.begin(), layout.frames.end(), fits);
    return frame == layout.frames.end() ? std::vector<Text>() : textsIn(frameContent(layout, *frame));
}

// A widespread player keeps numbers for itself in comments with such descriptions.
bool isForPeople(const Id3v2Comment& comment) { return !comment.description.starts_with("iTun"); }

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
        comments.push_back({commentIn(frameContent(layout, layout.frames[i])), i});
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

}
