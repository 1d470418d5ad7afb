// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/output_file.h"

#include "files/folders.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/skip.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

class NotedParts final : public PartNotes
{
public:
    void note(const Text& path) override { noted.insert(path); }
    void done(const Text& path) override { noted.erase(path); }

    std::set<Text> noted;
};

void write(files::OutputFile& file, std::string_view text, std::int64_t at)
{
    file.write(std::as_bytes(std::span(text)), at);
}

}

TEST_CASE("A file has its name when it is finished, and not before")
{
    TemporaryFolder folder;
    NotedParts notes;
    {
        files::OutputFile part(folder / "a.mp3", notes);
        write(part, "world", 6);
        write(part, "hello ", 0);
        const auto names = namesInFolder(folder.path());
        REQUIRE(names.size() == 1);
        CHECK(names.begin()->ends_with(".part"));
        CHECK(notes.noted == std::set<Text>{folder / *names.begin()});
        part.finish();
        CHECK(namesInFolder(folder.path()) == std::set<Text>{"a.mp3"});
        CHECK(notes.noted.empty());
    }
    CHECK(fileBytes(folder / "a.mp3") == "hello world");
}

TEST_CASE("A file that is not finished leaves nothing, and the old one stands")
{
    TemporaryFolder folder;
    NotedParts notes;
    putFile(folder / "a.mp3", "old");
    {
        files::OutputFile part(folder / "a.mp3", notes);
        write(part, "new", 0);
    }
    CHECK(fileBytes(folder / "a.mp3") == "old");
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"a.mp3"});
    CHECK(notes.noted.empty());
}

TEST_CASE("Two files for one target do not meet")
{
    TemporaryFolder folder;
    files::OutputFile one(folder / "a.mp3", NoPartNotes::instance());
    files::OutputFile other(folder / "a.mp3", NoPartNotes::instance());
    write(one, "one", 0);
    write(other, "other", 0);
    one.finish();
    CHECK(fileBytes(folder / "a.mp3") == "one");
    other.finish();
    CHECK(fileBytes(folder / "a.mp3") == "other");
}

TEST_CASE("A target with the longest possible name can be made")
{
    TemporaryFolder folder;
    const Text name = Text(125, 'x') + Text("ä").append(Text(120, 'y')) + ".mp3";
    const Text longest = name + Text(255 - name.size(), 'z');
    files::OutputFile part(folder / longest, NoPartNotes::instance());
    write(part, "x", 0);
    part.finish();
    CHECK(namesInFolder(folder.path()) == std::set<Text>{longest});
}

TEST_CASE("A link is written through, and the mode of the old file stays")
{
    TemporaryFolder folder;
    putFile(folder / "real.mp3", "old");
    chmod((folder / "real.mp3").c_str(), 0640);
    REQUIRE(symlink("real.mp3", (folder / "link.mp3").c_str()) == 0);
    files::OutputFile part(folder / "link.mp3", NoPartNotes::instance());
    write(part, "new", 0);
    part.finish();
    CHECK(fileBytes(folder / "real.mp3") == "new");
    CHECK(std::filesystem::is_symlink(folder / "link.mp3"));
    struct stat status;
    REQUIRE(stat((folder / "real.mp3").c_str(), &status) == 0);
    CHECK((status.st_mode & 0777) == 0640);
}

TEST_CASE("A link that names its target from the root is written through, too")
{
    TemporaryFolder folder;
    TemporaryFolder other;
    putFile(other / "real.mp3", "old");
    REQUIRE(symlink((other / "real.mp3").c_str(), (folder / "link.mp3").c_str()) == 0);
    files::OutputFile part(folder / "link.mp3", NoPartNotes::instance());
    write(part, "new", 0);
    part.finish();
    CHECK(fileBytes(other / "real.mp3") == "new");
    CHECK(std::filesystem::is_symlink(folder / "link.mp3"));
}

TEST_CASE("A file of another group keeps it")
{
    TemporaryFolder folder;
    putFile(folder / "a.mp3", "old");
    if (chown((folder / "a.mp3").c_str(), geteuid(), getegid() + 1) != 0)
        return skipCase("this user may not give files to another group");
    files::OutputFile part(folder / "a.mp3", NoPartNotes::instance());
    part.finish();
    struct stat status;
    REQUIRE(stat((folder / "a.mp3").c_str(), &status) == 0);
    CHECK(status.st_gid == getegid() + 1);
}

TEST_CASE("What is no plain file is never replaced")
{
    TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder.mp3");
    REQUIRE(mkfifo((folder / "pipe.mp3").c_str(), 0600) == 0);
    const auto make = [&](const Text& target) {
        return failureOf([&] { files::OutputFile(target, NoPartNotes::instance()).finish(); });
    };
    CHECK(make(folder / "folder.mp3") == 75);
    CHECK(make(folder / "pipe.mp3") == 75);
    CHECK(make("/dev/null") == 75);
    CHECK(make(folder / "missing/a.mp3") == 76);
    CHECK(make("") != 0);
    CHECK(std::filesystem::is_fifo(folder / "pipe.mp3"));
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"folder.mp3", "pipe.mp3"});
}

TEST_CASE("Two names of one file are known as one")
{
    TemporaryFolder folder;
    putFile(folder / "a", "a");
    putFile(folder / "b", "a");
    REQUIRE(link((folder / "a").c_str(), (folder / "hard").c_str()) == 0);
    REQUIRE(symlink("a", (folder / "soft").c_str()) == 0);
    CHECK(files::isSameFile(folder / "a", folder / "a"));
    CHECK(files::isSameFile(folder / "a", folder / "hard"));
    CHECK(files::isSameFile(folder / "soft", folder / "a"));
    CHECK(files::isSameFile(folder / "a", folder.path() + "/./a"));
    CHECK_FALSE(files::isSameFile(folder / "a", folder / "b"));
    CHECK_FALSE(files::isSameFile(folder / "a", folder / "missing"));
    CHECK_FALSE(files::isSameFile(folder / "missing", folder / "missing"));
}
