// SPDX-License-Identifier: GPL-3.0-or-later
// Tags and lists while memory runs out at any one place of the way.
#include "engines/tags/edited_tag.h"
#include "files/disk_text_files.h"
#include "files/patient_text_files.h"
#include "files/state_part_notes.h"
#include "tests/support/mp3_files.h"
#include "tests/support/scarce_memory.h"

#include <doctest/doctest.h>

namespace
{

struct ScarceDesk {
    TemporaryFolder folder{memoryFolder()};
    Text state = folder / "state";
    files::StatePartNotes notes{state};

    ScarceDesk() { std::filesystem::create_directory(state); }

    // What a note tells of, the next start removes.
    bool hasOpenNotes() const
    {
        const Text parts = state + "/parts";
        return std::filesystem::exists(parts) &&
               std::ranges::any_of(namesInFolder(parts),
                                   [&](const Text& each) { return !fileBytes(parts + "/" + each).empty(); });
    }
};

// One file that a person has, and what is done with it.
struct ScarceFile {
    ScarceDesk desk;
    Text path = desk.folder / "song.mp3";
    Text before;
    Text after; // where the work was done
    std::function<void()> run;

    // For each piece of memory that the work asks for: it is done, or its end is told; the file is the old or
    // the new one and nothing lies beside it; and with memory it is done at once.
    long tryAll()
    {
        return tryEach([this](long nth) {
            CAPTURE(nth);
            putFile(path, before);
            const auto work = tried(nth, run);
            const Text& end = work.end;
            const bool wasRefused = work.wasRefused;
            CAPTURE(end);
            REQUIRE((end.empty() || (wasRefused && end.find("Out of memory") != Text::npos)));
            const Text bytes = fileBytes(path);
            REQUIRE((bytes == after || (!end.empty() && bytes == before)));
            REQUIRE(namesInFolder(desk.folder.path()) == std::set<Text>{"song.mp3", "state"});
            REQUIRE_FALSE(desk.hasOpenNotes());
            REQUIRE(endOf(run) == "");
            REQUIRE(fileBytes(path) == after);
            return wasRefused;
        });
    }
};

const tags::Tag usual{"Title of more than thirty letters and none", "Artist", "Album", "Comment", 1987, 17};
const tags::Tag other{"Another title that is too long for short tags", "Somebody", "Else", "", 2001, 9};

void change(ScarceFile& work, const tags::Tag& to)
{
    tags::EditedTag tag(work.desk.notes);
    tag.open(work.path);
    tag.change() = to;
    if (const Text reason = tag.write(); !reason.empty())
        throw Failure(Trouble::pathOrFileAccess, reason);
}

Text taggedSong(ScarceFile& work, const tags::Tag& tag)
{
    putFile(work.path, mp3Frames(40));
    change(work, tag);
    return fileBytes(work.path);
}

const Text rows = "a song whose name is longer than fifteen letters.mp3\r\nanother such song.mp3\r\n";

struct ScarceList : ScarceFile {
    std::shared_ptr<files::DiskTextFiles> onDisk = std::make_shared<files::DiskTextFiles>(desk.notes);
    files::PatientTextFiles lists{onDisk};
};

}

TEST_CASE("A tag is read, or the end is told")
{
    ScarceFile work;
    work.before = work.after = taggedSong(work, usual);
    work.run = [&] {
        tags::EditedTag tag(work.desk.notes);
        tag.open(work.path);
        const bool isRead = tag.fields() == usual;
        REQUIRE(isRead);
    };
    CHECK(work.tryAll() > 20);
}

TEST_CASE("A tag is written, or the file is as it was and the end is told")
{
    ScarceFile work;
    work.before = taggedSong(work, usual);
    change(work, other);
    work.after = fileBytes(work.path);
    work.run = [&] { change(work, other); };
    CHECK(work.tryAll() > 50);
}

TEST_CASE("A list is opened, or the end is told")
{
    ScarceList work;
    work.before = work.after = rows;
    work.run = [&] {
        const bool isRead =
            work.lists.length(work.path) == std::ssize(rows) && work.lists.readWhole(work.path) == rows;
        REQUIRE(isRead);
    };
    CHECK(work.tryAll() > 10);
}

TEST_CASE("A list is saved, or the old one stands and the end is told")
{
    ScarceList work;
    work.before = rows;
    for (int row = 0; row < 2000; ++row)
        work.after += "a song whose name is longer than fifteen letters.mp3\r\n";
    work.run = [&] {
        const auto output = work.lists.openForOutput(work.path);
        for (std::size_t at = 0; at < work.after.size(); at += 54)
            output->write(work.after.substr(at, 54));
        output->finish();
    };
    CHECK(work.tryAll() > 50);
}
