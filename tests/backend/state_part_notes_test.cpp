// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/state_part_notes.h"

#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/hung_share.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <thread>
#include <vector>

namespace
{

struct State {
    TemporaryFolder folder;
    Text state = folder / "state";
    Text part = folder / "song.mp3.part";

    // A process that notes `path`, makes the file, and is killed.
    void abandon(const Text& path) const
    {
        Child([&] {
            files::StatePartNotes notes(state);
            notes.note(path);
            putFile(path, "half a song");
            _exit(0);
        }).wait();
    }
};

}

TEST_CASE("A part that a process left behind is removed at the next start")
{
    const State state;
    state.abandon(state.part);
    REQUIRE(std::filesystem::exists(state.part));
    files::removeNotedParts(state.state);
    CHECK_FALSE(std::filesystem::exists(state.part));
    CHECK(namesInFolder(state.state + "/parts").empty());
}

TEST_CASE("Parts on a share that does not answer are left to a later start, soon, and others are removed")
{
    const State state;
    const Text share = state.folder / "share";
    const Text far = share + "/song.mp3.part";
    std::filesystem::create_directory(share);
    constexpr int notes = 20; // of which each, asked with the patience of the first, would make it late
    for (int i = 1; i < notes; ++i)
        state.abandon(far);
    state.abandon(far);
    state.abandon(state.part);
    {
        const HungShare hung(share.c_str());
        const auto then = std::chrono::steady_clock::now();
        files::removeNotedParts(state.state);
        CHECK(millisecondsSince(then) < 30'000); // what hangs here hangs for a minute
        CHECK(holdsUp(hung, notes));
        CHECK_FALSE(std::filesystem::exists(state.part));
        CHECK(namesInFolder(state.state + "/parts").size() == notes);
    }
    CHECK(std::filesystem::exists(far));
    CHECK(waitUntil(
        [&] {
            files::removeNotedParts(state.state);
            return !std::filesystem::exists(far);
        },
        std::chrono::seconds(30)));
    CHECK(namesInFolder(state.state + "/parts").empty());
}

TEST_CASE("A part of a process that still runs stays")
{
    const State state;
    files::StatePartNotes notes(state.state);
    notes.note(state.part);
    putFile(state.part, "half a song");
    Child([&] { files::removeNotedParts(state.state); }).wait();
    files::removeNotedParts(state.state);
    CHECK(std::filesystem::exists(state.part));
}

TEST_CASE(
    "A part whose note went with the power goes when its target is written again, and nothing else does")
{
    const State state;
    const auto putLongAgo = [&](const Text& name) {
        putFile(state.folder / name, "half a song");
        const auto now = std::filesystem::file_time_type::clock::now();
        std::filesystem::last_write_time(state.folder / name, now - std::chrono::years(10));
    };
    const std::set<Text> others{"song.mp3.part",
                                "song.mp3.0123456789abcde.part",
                                "song.mp3.0123456789abcdex.part",
                                "song.mp3.0123456789abcdef.part.txt",
                                "other.mp3.0123456789abcdef.part",
                                ".0123456789abcdef.part"};
    for (const Text& name : others)
        putLongAgo(name);
    putLongAgo("song.mp3.0123456789abcdef.part");
    putFile(state.folder / "song.mp3.fedcba9876543210.part", "another program is at work");
    files::StatePartNotes notes(state.state);
    notes.note(state.folder / "song.mp3.00000000000000ff.part");
    auto wanted = others;
    wanted.insert({"state", "song.mp3.fedcba9876543210.part"});
    CHECK(namesInFolder(state.folder.path()) == wanted);
}

TEST_CASE("What was done is not removed, what was noted beside it is")
{
    const State state;
    const Text other = state.folder / "other.mp3.part";
    Child([&] {
        files::StatePartNotes notes(state.state);
        notes.note(other);
        notes.note(state.part);
        notes.done(other);
        putFile(state.part, "half a song");
        _exit(0);
    }).wait();
    files::removeNotedParts(state.state);
    CHECK_FALSE(std::filesystem::exists(state.part));
}

TEST_CASE("A name that comes again after it was done is somebody else's file")
{
    const State state;
    Child([&] {
        files::StatePartNotes notes(state.state);
        notes.note(state.part);
        notes.done(state.part);
        _exit(0);
    }).wait();
    putFile(state.part, "not ours");
    files::removeNotedParts(state.state);
    CHECK(std::filesystem::exists(state.part));
}

TEST_CASE("Nothing but a part file is ever removed")
{
    const State state;
    const Text song = state.folder / "song.mp3";
    state.abandon(song);
    const Text folder = state.folder / "folder.part";
    std::filesystem::create_directory(folder);
    Child([&] {
        files::StatePartNotes notes(state.state);
        notes.note(folder);
        _exit(0);
    }).wait();
    files::removeNotedParts(state.state);
    CHECK(std::filesystem::exists(song));
    CHECK(std::filesystem::exists(folder));
}

TEST_CASE("Names with line ends and bytes of any kind are noted whole")
{
    const State state;
    const Text odd = state.folder / "a\nb\xFF \".part";
    state.abandon(odd);
    files::removeNotedParts(state.state);
    CHECK_FALSE(std::filesystem::exists(odd));
}

TEST_CASE("A cut note and rubbish in the folder do no harm")
{
    const State state;
    std::filesystem::create_directories(state.state + "/parts/folder");
    putFile(state.part, "ours?");
    putFile(state.state + "/parts/cut", state.part);
    files::removeNotedParts(state.state);
    CHECK(std::filesystem::exists(state.part));
    CHECK(namesInFolder(state.state + "/parts") == std::set<Text>{"folder"});
}

TEST_CASE("Parts that are said to be whole are moved nowhere when one of them is no part file")
{
    const State state;
    const Text song = state.folder / "song.mp3";
    Child([&] {
        files::StatePartNotes notes(state.state);
        notes.note(state.part);
        putFile(state.part, "a song");
        putFile(song, "a person's own");
        notes.whole({{song, state.folder / "elsewhere.mp3"}, {state.part, state.folder / "new.mp3"}});
        _exit(0);
    }).wait();
    files::removeNotedParts(state.state);
    CHECK(fileBytes(song) == "a person's own");
    CHECK(namesInFolder(state.folder.path()) == std::set<Text>{"song.mp3", "state"});
}

TEST_CASE("A start without a state folder has nothing to do")
{
    const State state;
    files::removeNotedParts(state.state);
    CHECK(namesInFolder(state.folder.path()).empty());
}

TEST_CASE("A state folder that cannot be made costs the notes and nothing else")
{
    const State state;
    putFile(state.state, "a file");
    files::StatePartNotes notes(state.state);
    notes.note(state.part);
    notes.done(state.part);
    CHECK(fileBytes(state.state) == "a file");
}

TEST_CASE("Threads note at the same time, and an orderly end leaves no notes")
{
    const State state;
    {
        files::StatePartNotes notes(state.state);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&, i] {
                for (int j = 0; j < 200; ++j) {
                    const Text path = state.folder / (std::to_string(i) + "-" + std::to_string(j) + ".part");
                    notes.note(path);
                    notes.done(path);
                }
            });
        for (auto& thread : threads)
            thread.join();
        CHECK(namesInFolder(state.state + "/parts").size() == 1);
    }
    CHECK(namesInFolder(state.state + "/parts").empty());
}

namespace
{

// Two parts that were noted as whole before their process was killed, and their places.
struct WholeParts : State {
    std::vector<WholePart> parts{{folder / "a.1.part", folder / "a"}, {folder / "b.2.part", folder / "b"}};

    WholeParts()
    {
        Child([&] {
            files::StatePartNotes notes(state);
            for (const auto& each : parts) {
                notes.note(each.part);
                putFile(each.part, each.place);
            }
            notes.whole(parts);
            _exit(0);
        }).wait();
    }

    std::set<Text> atNextStart() const
    {
        files::removeNotedParts(state);
        auto names = namesInFolder(folder.path());
        names.erase("state");
        return names;
    }
};

}

TEST_CASE("Parts that were whole together take their places at the next start")
{
    const WholeParts both;
    CHECK(both.atNextStart() == std::set<Text>{"a", "b"});
    CHECK(fileBytes(both.parts[0].place) == both.parts[0].place);
    CHECK(fileBytes(both.parts[1].place) == both.parts[1].place);
}

TEST_CASE("What one of the parts was given before the kill, the other gets")
{
    const WholeParts both;
    std::filesystem::rename(both.parts[0].part, both.parts[0].place);
    CHECK(both.atNextStart() == std::set<Text>{"a", "b"});
}

TEST_CASE("Where one of the parts is lost the other goes")
{
    const WholeParts both;
    std::filesystem::remove(both.parts[0].part);
    CHECK(both.atNextStart().empty());
}

TEST_CASE("A place that is taken meanwhile stays as it is, and nothing that is whole is removed")
{
    const WholeParts both;
    putFile(both.parts[0].place, "somebody else's");
    CHECK(both.atNextStart() == std::set<Text>{"a", "a.1.part", "b.2.part"});
    CHECK(fileBytes(both.parts[0].place) == "somebody else's");
}
