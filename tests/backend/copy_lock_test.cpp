// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/copy_lock.h"

#include "desktop/programs.h"
#include "tests/support/answer_of_child.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

#include <csignal>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;

// Two users' places, with copies of the program in folders of their own.
struct Places {
    TemporaryFolder folder;
    Text runtime = folder / "run";
    desktop::Environment first = copyIn("first", "alice");

    desktop::Environment copyIn(const Text& program, const Text& user)
    {
        fs::create_directories(folder / program);
        fs::create_directories(runtime);
        return {.executable = folder / program + "/velmora", .home = folder / user, .runtimeFolder = runtime};
    }
};

// Who is in the way of another process that starts there: "nobody", "first" or something wrong.
Text inTheWayOf(const desktop::Environment& environment)
{
    const pid_t first = getpid();
    return answerOfChild([&]() -> Text {
        const pid_t holder = desktop::CopyLock(environment).holder();
        return holder == 0 ? "nobody" : holder == first ? "first" : std::to_string(holder);
    });
}

}

TEST_CASE("The second copy on one store and in one folder finds the first by its number")
{
    Places places;
    const desktop::CopyLock lock(places.first);
    CHECK(lock.holder() == 0);
    CHECK(inTheWayOf(places.first) == "first");
}

TEST_CASE("Copies are in each other's way where they share the store or the folder, and nowhere else")
{
    Places places;
    const desktop::CopyLock lock(places.first);
    CHECK(inTheWayOf(places.copyIn("second", "alice")) == "first");
    CHECK(inTheWayOf(places.copyIn("first", "bob")) == "first");
    CHECK(inTheWayOf(places.copyIn("second", "bob")) == "nobody");
    desktop::Environment elsewhere = places.copyIn("second", "alice");
    elsewhere.configHome = places.folder / "config";
    CHECK(inTheWayOf(elsewhere) == "nobody");
}

TEST_CASE("A folder under another name is the same folder")
{
    Places places;
    const desktop::CopyLock lock(places.first);
    fs::create_directory_symlink(places.folder / "first", places.folder / "link");
    CHECK(inTheWayOf(places.copyIn("link", "bob")) == "first");
}

TEST_CASE("The lock ends with its process, however that ends, and a new one takes it")
{
    Places places;
    int ends[2];
    REQUIRE(pipe(ends) == 0);
    Child holder([&] {
        const desktop::CopyLock lock(places.first);
        endUnless(lock.holder() == 0 && write(ends[1], "x", 1) == 1, 1);
        pause();
    });
    char told = 0;
    REQUIRE(read(ends[0], &told, 1) == 1);
    close(ends[0]);
    close(ends[1]);
    CHECK(desktop::CopyLock(places.first).holder() == holder.id());
    holder.kill();
    CHECK(desktop::CopyLock(places.first).holder() == 0);
}

TEST_CASE("A copy that has the lock is in the way before it has written its number, too")
{
    Places places;
    const desktop::CopyLock lock(places.first);
    for (const Text& name : namesInFolder(places.runtime))
        fs::resize_file(places.runtime + '/' + name, 0);
    CHECK(inTheWayOf(places.first) == "-1");
}

TEST_CASE("A program that was started holds no lock of the one that started it")
{
    Places places;
    const Text pipe = places.folder / "pipe";
    REQUIRE(mkfifo(pipe.c_str(), 0600) == 0);
    {
        const desktop::CopyLock lock(places.first);
        REQUIRE(desktop::startDetached({"/bin/sh", "-c", "read line < " + pipe}, std::nullopt) == 0);
    }
    CHECK(inTheWayOf(places.first) == "nobody");
    std::ofstream(pipe) << "end\n";
}

TEST_CASE("Without a runtime folder that can be used the lock lies in the state folder")
{
    Places places;
    for (const Text& runtime : {Text(), Text("relative"), places.folder / "none"}) {
        CAPTURE(runtime);
        places.first.runtimeFolder = runtime;
        const desktop::CopyLock lock(places.first);
        CHECK(lock.holder() == 0);
        CHECK(namesInFolder(desktop::stateFolder(places.first)).size() == 2);
        CHECK(inTheWayOf(places.first) == "first");
    }
}

TEST_CASE("Where no lock can be kept nobody is in the way")
{
    Places places;
    putFile(places.folder / "no folder", "");
    places.first.runtimeFolder.clear();
    places.first.stateHome = places.folder / "no folder";
    CHECK(desktop::CopyLock(places.first).holder() == 0);
}
