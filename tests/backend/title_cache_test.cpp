// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/title_cache.h"

#include "files/folders.h"
#include "files/state_part_notes.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

using namespace disc;

namespace
{

const DiscContents inserted{{{true, 0, 28465}, {true, 28465, 22412}}, 50877};

// Never ends by itself.
[[noreturn]] void keepForEver(const Text& folder, const Text& stateFolder)
{
    const auto notes = std::make_shared<files::StatePartNotes>(stateFolder);
    for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1))
        TitleCache(folder, notes).keep(inserted, Text(3000000, letter));
}

int partsIn(const Text& folder)
{
    const auto names = files::namesIn(folder);
    return static_cast<int>(
        std::count_if(names.begin(), names.end(), [](const Text& name) { return name.ends_with(".part"); }));
}

bool isOneAnswer(const std::optional<Text>& answer)
{
    return !answer || (answer->size() == 3000000 && answer->find_first_not_of(answer->front()) == Text::npos);
}

}

TEST_CASE("What is kept is the answer, and another one takes its place")
{
    const TemporaryFolder folder;
    const TitleCache cache(folder / "titles");
    CHECK_FALSE(cache.answer(inserted));
    for (const char* answer : {"first\n", "second\n", "second\n"}) {
        cache.keep(inserted, answer);
        CHECK(cache.answer(inserted) == Text(answer));
    }
    CHECK(files::namesIn(folder / "titles").size() == 1);
}

TEST_CASE("An answer that is kept already is not written again")
{
    const TemporaryFolder folder;
    const TitleCache cache(folder / "titles");
    const auto fileOf = [&](const char* answer) {
        cache.keep(inserted, answer);
        struct stat status = {};
        stat((folder / "titles/" + files::namesIn(folder / "titles").front()).c_str(), &status);
        return status.st_ino;
    };
    const auto first = fileOf("answer\n");
    CHECK(fileOf("answer\n") == first);
    CHECK(fileOf("another\n") != first);
}

TEST_CASE("A folder that cannot be made keeps nothing, and nothing fails")
{
    const TemporaryFolder folder;
    putFile(folder / "titles", "a file");
    const TitleCache cache(folder / "titles");
    cache.keep(inserted, "answer");
    CHECK_FALSE(cache.answer(inserted));
    CHECK(files::namesIn(folder.path()) == std::vector<Text>{"titles"});
}

TEST_CASE("A killed program leaves a whole answer, and the next start removes the unfinished one")
{
    const TemporaryFolder folder;
    const TemporaryFolder state;
    std::minstd_rand random(1);
    int unfinished = 0;
    for (int time = 0; time < 200 && (unfinished < 3 || time < 10); ++time) {
        Child keeper([&] { keepForEver(folder.path(), state.path()); });
        REQUIRE(waitUntil([&] { return partsIn(folder.path()) > 0; })); // a busy machine begins late
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
        kill(keeper.id(), SIGKILL);
        CHECK(keeper.wait() == 128 + SIGKILL);
        unfinished += partsIn(folder.path());
        files::removeNotedParts(state.path());
        CHECK(partsIn(folder.path()) == 0);
        CHECK(isOneAnswer(TitleCache(folder.path()).answer(inserted)));
    }
    MESSAGE("killed with one unfinished: ", unfinished);
    CHECK(unfinished > 0);
}
