// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/field_changes.h"

#include "engines/tags/genre.h"
#include "engines/tags/tag_text.h"

namespace tags
{

namespace
{

constexpr std::int16_t noName = 80;

struct TextField {
    Field field;
    Text Tag::*text;
};

constexpr TextField textFields[] = {
    {Field::Title, &Tag::title},
    {Field::Artist, &Tag::artist},
    {Field::Album, &Tag::album},
    {Field::Comment, &Tag::comment},
};

std::int16_t genreOf(const std::vector<Text>& values)
{
    for (const Text& value : values)
        if (const std::int16_t genre = genreNumber(value); genre >= 0)
            return genre;
    return -1;
}

Text nameOf(const std::vector<Text>& genres)
{
    std::vector<Text> names;
    for (const Text& genre : genres)
        if (Text name = genreWithoutNumber(genre); !name.empty())
            names.push_back(std::move(name));
    return oneLine(joined(names));
}

// 80 goes by its number: its name here is the program's own, and other programs would show it as a genre. So
// do those above it, whose names stand for no number here.
Text genreText(std::int16_t genre) { return genre >= noName ? std::to_string(genre) : genreName(genre); }

// A genre that only its text can say is 80 or -1 to the program; saving another field must not wipe it.
bool genreStays(const Tag& wanted, const HeldTag& held, const Tag& shown)
{
    const std::int16_t genre = wanted.genreIndex;
    if (keepsGenreName(wanted, shown))
        return true;
    if (held.tag.genreIndex >= 0 || held.genre.empty())
        return held.tag.genreIndex == genre;
    return genre == noName || genre == shown.genreIndex;
}

}

HeldTag heldTag(const std::function<std::vector<Text>(Field)>& valuesOf)
{
    const auto lineOf = [&](Field field) { return oneLine(joined(valuesOf(field))); };
    const auto genres = valuesOf(Field::Genre);
    const std::int16_t genre = genreOf(genres);
    const Tag tag{.title = lineOf(Field::Title),
                  .artist = lineOf(Field::Artist),
                  .album = lineOf(Field::Album),
                  .comment = lineOf(Field::Comment),
                  .year = yearOf(joined(valuesOf(Field::Year))),
                  .genreIndex = genre,
                  .genreName = genre < 0 ? nameOf(genres) : ""};
    return {tag, joined(genres)};
}

std::vector<FieldChange> changesTo(const Tag& wanted, const HeldTag& held, const Tag& shown)
{
    std::vector<FieldChange> changes;
    for (const auto& [field, text] : textFields)
        if (held.tag.*text != wanted.*text)
            changes.push_back({field, wanted.*text});
    if (held.tag.year != wanted.year)
        changes.push_back({Field::Year, yearText(wanted.year)});
    if (!genreStays(wanted, held, shown))
        changes.push_back({Field::Genre, wanted.genreIndex < 0 ? "" : genreText(wanted.genreIndex)});
    return changes;
}

void addMissing(Tag& tag, const Tag& other)
{
    for (const auto& [field, text] : textFields)
        if ((tag.*text).empty())
            tag.*text = other.*text;
    if (tag.year == 0)
        tag.year = other.year;
    if (tag.genreIndex >= 0 || !tag.genreName.empty())
        return;
    tag.genreIndex = other.genreIndex;
    tag.genreName = other.genreName;
}

bool keepsGenreName(const Tag& wanted, const Tag& shown)
{
    return !shown.genreName.empty() && (wanted.genreIndex < 0 || wanted.genreIndex == noName);
}

}
