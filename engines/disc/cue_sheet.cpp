// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/cue_sheet.h"

#include "engines/disc/disc_contents.h"

#include <algorithm>
#include <charconv>

namespace disc
{

namespace
{

constexpr std::int32_t highestNumber = 99; // of tracks and of indexes
constexpr std::size_t mostFiles = 200;     // each is looked for in its folder
constexpr std::string_view blanks = " \t";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

struct NamedKind {
    std::string_view name;
    CueSheet::Kind kind;
};

struct Mode {
    std::string_view name;
    bool isAudio;
    std::int32_t bytesOfSector;
};

// clang-format off
constexpr NamedKind kinds[] = {
    {"BINARY",   CueSheet::Kind::binary},
    {"MOTOROLA", CueSheet::Kind::motorola},
    {"WAVE",     CueSheet::Kind::wave},
};

constexpr Mode modes[] = {
    {"AUDIO",      true,  2352},
    {"CDG",        true,  2448},
    {"MODE1/2048", false, 2048},
    {"MODE1/2352", false, 2352},
    {"MODE2/2048", false, 2048},
    {"MODE2/2324", false, 2324},
    {"MODE2/2336", false, 2336},
    {"MODE2/2352", false, 2352},
    {"CDI/2336",   false, 2336},
    {"CDI/2352",   false, 2352},
};
// clang-format on

template <typename Row, std::size_t size>
const Row* rowNamed(const Row (&rows)[size], std::string_view name)
{
    const auto found =
        std::ranges::find_if(rows, [&](const Row& row) { return equalWithoutCase(row.name, name); });
    return found == std::end(rows) ? nullptr : found;
}

// The text up to one of `ends`, which goes too, and what follows it.
std::string_view takenTo(std::string_view ends, std::string_view& rest)
{
    const std::size_t end = std::min(rest.find_first_of(ends), rest.size());
    const auto taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

std::string_view takenWord(std::string_view& rest)
{
    const auto word = takenTo(blanks, rest);
    rest = withoutBlanks(rest, blanks);
    return word;
}

// Up to three digits and nothing else.
std::optional<std::int32_t> numberIn(std::string_view text)
{
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (text.empty() || text.size() > 3 || read.ec != std::errc() || read.ptr != end || number < 0)
        return std::nullopt;
    return number;
}

// "minutes:seconds:frames", in sectors.
std::optional<std::int32_t> timeIn(std::string_view text)
{
    const auto minutes = numberIn(takenTo(":", text));
    const auto seconds = numberIn(takenTo(":", text));
    const auto frames = numberIn(text);
    if (!minutes || !seconds || !frames || *seconds >= 60 || *frames >= sectorsPerSecond)
        return std::nullopt;
    return (*minutes * 60 + *seconds) * sectorsPerSecond + *frames;
}

// "NAME KIND": a name in quotes may hold quotes itself, one without them may hold blanks.
struct NameAndKind {
    std::string_view name;
    std::string_view kind;
};

NameAndKind nameAndKindIn(std::string_view text)
{
    if (text.starts_with('"')) {
        const std::size_t end = text.rfind('"');
        return {text.substr(1, std::max<std::size_t>(end, 1) - 1),
                withoutBlanks(text.substr(end + 1), blanks)};
    }
    const std::size_t end = text.find_last_of(blanks);
    if (end == text.npos)
        return {};
    return {withoutBlanks(text.substr(0, end), blanks), text.substr(end + 1)};
}

// Follows a sheet line by line. Each line of a word that it knows must be one that it can follow.
class SheetReader
{
public:
    bool take(std::string_view line);
    std::optional<CueSheet> finished() &&;

private:
    bool takeFile(std::string_view rest);
    bool takeTrack(std::string_view rest);
    bool takePregap(std::string_view rest);
    bool takeIndex(std::string_view rest);
    bool takePostgap(std::string_view rest);

    bool follows(const CueSheet::Index& index) const;
    CueSheet::Track* track() { return sheet_.tracks.empty() ? nullptr : &sheet_.tracks.back(); }

    CueSheet sheet_;
    std::int32_t place_ = 0; // of the last index in the current file
};

bool SheetReader::take(std::string_view line)
{
    struct Command {
        std::string_view name;
        bool (SheetReader::*take)(std::string_view);
    };
    static constexpr Command commands[] = {
        {"FILE", &SheetReader::takeFile},       {"TRACK", &SheetReader::takeTrack},
        {"PREGAP", &SheetReader::takePregap},   {"INDEX", &SheetReader::takeIndex},
        {"POSTGAP", &SheetReader::takePostgap},
    };
    std::string_view rest = withoutBlanks(line, blanks);
    const Command* const command = rowNamed(commands, takenWord(rest));
    return command == nullptr || (this->*command->take)(rest);
}

// Some writers repeat the file before each of its tracks.
bool SheetReader::takeFile(std::string_view rest)
{
    const auto [name, kindName] = nameAndKindIn(rest);
    const NamedKind* const kind = rowNamed(kinds, kindName);
    if (name.empty() || name.find('\0') != name.npos || kind == nullptr)
        return false;
    if (!sheet_.files.empty() && sheet_.files.back().name == name)
        return true;
    sheet_.files.push_back({Text(name), kind->kind});
    place_ = 0;
    return sheet_.files.size() <= mostFiles;
}

bool SheetReader::takeTrack(std::string_view rest)
{
    const auto number = numberIn(takenWord(rest));
    const Mode* const mode = rowNamed(modes, rest);
    const std::int32_t last = track() == nullptr ? 0 : track()->number;
    if (!number || *number <= last || *number > highestNumber || mode == nullptr)
        return false;
    sheet_.tracks.push_back({*number, mode->isAudio, mode->bytesOfSector, 0, 0, {}});
    return true;
}

bool SheetReader::takePregap(std::string_view rest)
{
    const auto time = timeIn(rest);
    if (!time || track() == nullptr || !track()->indexes.empty())
        return false;
    track()->pregap = *time;
    return true;
}

bool SheetReader::takeIndex(std::string_view rest)
{
    const auto number = numberIn(takenWord(rest));
    const auto time = timeIn(rest);
    if (!number || !time || track() == nullptr || sheet_.files.empty())
        return false;
    const CueSheet::Index index{*number, sheet_.files.size() - 1, *time};
    if (!follows(index))
        return false;
    track()->indexes.push_back(index);
    place_ = index.sector;
    return true;
}

bool SheetReader::follows(const CueSheet::Index& index) const
{
    const auto& before = sheet_.tracks.back().indexes;
    return index.number <= highestNumber && index.sector >= place_ &&
           (before.empty() || index.number > before.back().number);
}

bool SheetReader::takePostgap(std::string_view rest)
{
    const auto time = timeIn(rest);
    if (!time || track() == nullptr)
        return false;
    track()->postgap = *time;
    return true;
}

std::optional<CueSheet> SheetReader::finished() &&
{
    const auto begins = [](const CueSheet::Track& each) {
        return std::ranges::count(each.indexes, 1, &CueSheet::Index::number) == 1;
    };
    if (sheet_.tracks.empty() || !std::ranges::all_of(sheet_.tracks, begins))
        return std::nullopt;
    return std::move(sheet_);
}

}

std::optional<CueSheet> cueSheetIn(std::string_view text)
{
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    SheetReader reader;
    while (!text.empty())
        if (!reader.take(takenTo("\r\n", text)))
            return std::nullopt;
    return std::move(reader).finished();
}

}
