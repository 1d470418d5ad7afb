// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/state_part_notes.h"

#include "files/errand.h"
#include "files/folders.h"
#include "files/lost_parts.h"
#include "files/output_file.h"
#include "platform/paths.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <tuple>

namespace files
{

namespace
{

constexpr std::string_view partEnding = ".part";
constexpr std::string_view wholeMark = "whole"; // before parts and places in turn, which an empty record ends

Text notesFolder(const Text& stateFolder) { return joined(stateFolder, "parts"); }

bool isLinked(const Descriptor& file)
{
    struct stat status;
    return fstat(file.number(), &status) == 0 && status.st_nlink > 0;
}

bool lock(const Descriptor& file, int how) { return file && flock(file.number(), LOCK_EX | how) == 0; }

// One call, so that no kill leaves half a record. A disk that refuses it costs the note, not the part.
void append(const Descriptor& file, const Text& record)
{
    std::ignore = write(file.number(), record.data(), record.size());
}

Text targetOf(const Text& partPath)
{
    return partPath.substr(0, partPath.rfind('.', partPath.rfind('.') - 1));
}

Text recordOf(const std::vector<WholePart>& parts)
{
    Text record = Text(wholeMark) + '\0';
    for (const auto& [part, place] : parts)
        record += part + '\0' + place + '\0';
    return record;
}

// A record without its NUL is one whose file was not made yet.
std::vector<Text> recordsIn(const Text& notes)
{
    std::vector<Text> records;
    std::size_t at = 0;
    for (std::size_t end; (end = notes.find('\0', at)) != Text::npos; at = end + 1)
        records.push_back(notes.substr(at, end - at));
    return records;
}

// Takes those behind each mark out of the records.
std::vector<std::vector<WholePart>> takenWhole(std::vector<Text>& records)
{
    std::vector<std::vector<WholePart>> all;
    auto mark = std::ranges::find(records, wholeMark);
    while (mark != records.end()) {
        const auto end = std::find(mark, records.end(), Text());
        auto& parts = all.emplace_back();
        for (auto at = mark + 1; end != records.end() && end - at >= 2; at += 2)
            parts.push_back({*at, *(at + 1)});
        mark = records.erase(mark, end);
        mark = std::find(mark, records.end(), wholeMark);
    }
    return all;
}

// One that has its place already is as it should be. Where one is lost, the others are whole no more.
bool areStillWhole(const std::vector<WholePart>& parts)
{
    return std::ranges::all_of(parts, [](const WholePart& each) {
        return each.part.ends_with(partEnding) && (isFile(each.part) || isFile(each.place));
    });
}

// The settling of one file of notes, which a disk that does not answer may hold up.
class Settling
{
public:
    explicit Settling(Text path) : path_(std::move(path)) {}

    void run()
    {
        const Descriptor file(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        if (!isFile(path_) || !lock(file, LOCK_NB))
            return;
        Text notes;
        readRest(file, notes);
        settle(recordsIn(notes));
        if (!isGivenUp_)
            unlink(path_.c_str());
    }

    // An answer that comes after this changes nothing any more: the program may use the names again. The
    // notes stay, for the next start.
    void giveUp() { isGivenUp_ = true; }

private:
    bool isThere(const Text& part) const { return isFile(part) && !isGivenUp_; }
    std::vector<Text> unplaced(const std::vector<WholePart>& parts) const;
    void settle(std::vector<Text> records) const;

    const Text path_;
    std::atomic<bool> isGivenUp_{false};
};

// The first that finds its place taken leaves the rest where it is, for a person to find.
std::vector<Text> Settling::unplaced(const std::vector<WholePart>& parts) const
{
    std::vector<Text> left;
    for (const auto& [part, place] : parts)
        if (isThere(part) && (!left.empty() || !renameWithoutReplacing(part, place)))
            left.push_back(part);
    return left;
}

// What was noted last counts: parts that found a place taken were noted again with another.
void Settling::settle(std::vector<Text> records) const
{
    const auto together = takenWhole(records);
    for (auto parts = together.rbegin(); parts != together.rend(); ++parts)
        if (areStillWhole(*parts))
            for (const Text& left : unplaced(*parts))
                std::erase(records, left);
    for (const Text& part : records)
        if (part.ends_with(partEnding) && isThere(part))
            unlink(part.c_str());
}

}

StatePartNotes::StatePartNotes(const Text& stateFolder) : folder_(notesFolder(stateFolder)) {}

StatePartNotes::~StatePartNotes()
{
    const Lock guard(mutex_);
    if (file_)
        unlink(path_.c_str());
}

bool StatePartNotes::isKnown(const Text& target)
{
    const Lock guard(mutex_);
    return targets_.contains(target);
}

// Lost parts are looked for once for each target: lists and settings are written to many times.
void StatePartNotes::note(const Text& partPath)
{
    const Text target = targetOf(partPath);
    const Text record = partPath + '\0';
    if (!isKnown(target))
        removeLostParts(partPath);
    const Lock guard(mutex_);
    targets_.insert(target);
    if (!file_)
        begin();
    open_.insert(partPath);
    if (file_)
        append(file_, record);
}

// Records are only added, and all go when the last one is done: no open part is ever without its record.
void StatePartNotes::done(const Text& partPath)
{
    const Lock guard(mutex_);
    open_.erase(partPath);
    if (file_ && open_.empty())
        std::ignore = ftruncate(file_.number(), 0);
}

// A power cut must find it, too: by then one of the parts may have its place.
void StatePartNotes::whole(const std::vector<WholePart>& parts)
{
    const Lock guard(mutex_);
    if (!file_)
        return;
    append(file_, recordOf(parts) + '\0');
    force(file_);
}

// Another process that starts at this moment may take the file for an abandoned one before it is locked here,
// and remove it: then there is another.
void StatePartNotes::begin()
{
    if (!makeFolders(folder_))
        return;
    for (int tries = 0; tries < 10; ++tries) {
        path_ = joined(folder_, randomName());
        file_ = Descriptor(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0600));
        if (!file_ || (lock(file_, 0) && isLinked(file_)))
            return;
        unlink(path_.c_str());
    }
    file_ = Descriptor(); // without locks, nobody could tell who still runs
}

// The first that does not answer uses up the patience: it is likely that others lie on the same dead share.
void removeNotedParts(const Text& stateFolder)
{
    const Text folder = notesFolder(stateFolder);
    auto limit = patienceForFiles;
    for (const Text& name : namesIn(folder)) {
        const auto settling = std::make_shared<Settling>(joined(folder, name));
        Errand<bool> errand([settling] { return settling->run(), true; });
        if (errand.result(limit))
            continue;
        settling->giveUp();
        limit = patienceForLists;
    }
}

}
