// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/disk_text_files.h"

#include "files/state_part_notes.h"
#include "tests/support/child.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/small_disk.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace
{

// A folder for lists, and the state folder beside it.
struct Desk {
    TemporaryFolder folder;
    Text lists = folder / "lists";
    Text list = lists + "/deflist.vlp";
    files::StatePartNotes notes{folder / "state"};
    files::Trust::TimePoint now = std::chrono::steady_clock::now();
    files::Trust trust{[this] { return now; }};
    files::DiskTextFiles files{notes, [](const Text&) {}, trust};

    Desk() { std::filesystem::create_directory(lists); }

    void write(const Text& path, std::string_view bytes, std::uint64_t revision = 0)
    {
        const auto output = files.openForOutput(path);
        output->write(bytes);
        output->finish(revision);
    }
    int writeFailure(const Text& path, std::string_view bytes)
    {
        return failureOf([&] { write(path, bytes); });
    }
    // A second later, when the file is looked at again.
    bool stillHolds(const Text& path, std::uint64_t revision) { return stillHolds(files, path, revision); }
    bool stillHolds(files::DiskTextFiles& asked, const Text& path, std::uint64_t revision)
    {
        now += std::chrono::seconds(1);
        return asked.stillHolds(path, revision);
    }
    mode_t mode(const Text& path) const { return status(path).st_mode & 07777; }
    struct stat status(const Text& path) const
    {
        struct stat status = {};
        stat(path.c_str(), &status);
        return status;
    }
};

const Text oldRows = "/music/old one.mp3\r\n/music/old two.mp3\r\n";

}

TEST_CASE("A written file holds what was written, and nothing stands beside it")
{
    const struct {
        const char* what;
        Text bytes;
    } cases[] = {
        {"nothing", ""},
        {"two rows", "/a.mp3\r\n/b.mp3\r\n"},
        {"bytes of any kind", Text("\0\xFF\xFE\n\r", 5)},
        {"more than a buffer", Text(200'001, 'x')},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Desk desk;
        desk.write(desk.list, c.bytes);
        CHECK(fileBytes(desk.list) == c.bytes);
        desk.write(desk.list, c.bytes + "more");
        CHECK(desk.files.readWhole(desk.list) == c.bytes + "more");
        CHECK(desk.files.length(desk.list) == static_cast<std::int64_t>(c.bytes.size() + 4));
        CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
    }
}

TEST_CASE("Many small writes make one file")
{
    Desk desk;
    const auto output = desk.files.openForOutput(desk.list);
    Text expected;
    for (int i = 0; i < 10'000; ++i) {
        output->write("/music/" + std::to_string(i) + ".mp3\r\n");
        expected += "/music/" + std::to_string(i) + ".mp3\r\n";
    }
    output->finish();
    CHECK(fileBytes(desk.list) == expected);
}

TEST_CASE("Until it is finished the old file stands, and an output given up leaves nothing")
{
    Desk desk;
    putFile(desk.list, oldRows);
    {
        const auto output = desk.files.openForOutput(desk.list);
        CHECK(namesInFolder(desk.lists).size() == 2);
        output->write(Text(500'000, 'x'));
        CHECK(fileBytes(desk.list) == oldRows);
    }
    CHECK(fileBytes(desk.list) == oldRows);
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
}

TEST_CASE("A new file that is given up never appears")
{
    Desk desk;
    desk.files.openForOutput(desk.list)->write("row");
    CHECK(namesInFolder(desk.lists).empty());
}

TEST_CASE("Mode and owner of a file stay, and a new one gets the usual mode")
{
    Desk desk;
    putFile(desk.list, oldRows);
    chmod(desk.list.c_str(), 0640);
    const bool given = chown(desk.list.c_str(), 1234, 4321) == 0;
    desk.write(desk.list, "new");
    CHECK(fileBytes(desk.list) == "new");
    CHECK(desk.mode(desk.list) == 0640);
    if (given) {
        CHECK(desk.status(desk.list).st_uid == 1234);
        CHECK(desk.status(desk.list).st_gid == 4321);
    }
    const mode_t mask = umask(022);
    desk.write(desk.lists + "/new.vlp", "new");
    CHECK(desk.mode(desk.lists + "/new.vlp") == 0644);
    umask(mask);
}

TEST_CASE("A link keeps leading to the file that is written")
{
    const struct {
        const char* what;
        const char* target;
    } cases[] = {
        {"a relative link", "real.vlp"},
        {"a link to another link", "hop"},
        {"a link through another folder", "../lists/real.vlp"},
        {"a link to a file that does not exist yet", "new.vlp"},
        {"a link to a name of one letter", "r"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Desk desk;
        putFile(desk.lists + "/real.vlp", oldRows);
        std::filesystem::create_symlink("real.vlp", desk.lists + "/hop");
        std::filesystem::create_symlink(c.target, desk.list);
        desk.write(desk.list, "new");
        CHECK(std::filesystem::is_symlink(desk.list));
        CHECK(fileBytes(desk.list) == "new");
    }
}

TEST_CASE("Opening for output fails where plain output would, and touches nothing")
{
    Desk desk;
    std::filesystem::create_directory(desk.lists + "/folder");
    std::filesystem::create_symlink("ring", desk.lists + "/ring");
    putFile(desk.list, oldRows);
    const auto before = namesInFolder(desk.lists);
    const struct {
        const char* what;
        Text path;
        int number;
    } cases[] = {
        {"no name", "", 75},
        {"a folder", desk.lists + "/folder", 75},
        {"a name that ends like a folder's", desk.lists + "/folder/", 75},
        {"in a folder that does not exist", desk.lists + "/none/list.vlp", 76},
        {"below a file", desk.list + "/list.vlp", 76},
        {"links in a ring", desk.lists + "/ring", 75},
        {"a NUL in the name", desk.list + Text("\0x", 2), 75},
        {"a name that is too long", desk.lists + "/" + Text(300, 'x'), 75},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(desk.writeFailure(c.path, "new") == c.number);
    }
    CHECK(namesInFolder(desk.lists) == before);
    CHECK(fileBytes(desk.list) == oldRows);
}

TEST_CASE("A title as long as the file system allows can be written")
{
    Desk desk;
    for (const Text& title : {Text(255, 'x'), Text(251, 'x') + ".vlp"}) {
        desk.write(desk.lists + "/" + title, "new");
        CHECK(fileBytes(desk.lists + "/" + title) == "new");
    }
}

TEST_CASE("A file that may not be written is refused and stays")
{
    Desk desk;
    putFile(desk.list, oldRows);
    chmod(desk.list.c_str(), 0444);
    for (const Text& path : {desk.folder.path(), desk.lists})
        chmod(path.c_str(), 0777);
    Child child([&] {
        becomeNobody();
        endUnless(desk.writeFailure(desk.list, "new") == 70, 1);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(desk.list) == oldRows);
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
}

TEST_CASE("A folder that takes no new file refuses one, but a file in it is written in place")
{
    Desk desk;
    putFile(desk.list, oldRows);
    chmod(desk.list.c_str(), 0666);
    const ino_t number = desk.status(desk.list).st_ino;
    chmod(desk.folder.path().c_str(), 0755);
    chmod(desk.lists.c_str(), 0555);
    Child child([&] {
        becomeNobody();
        endUnless(desk.writeFailure(desk.lists + "/new.vlp", "new") == 70, 1);
        endUnless(!std::filesystem::exists(desk.folder / "state"), 5); // a refusal writes nothing elsewhere
        endUnless(desk.writeFailure(desk.list, Text(100'000, 'x')) == 0, 2);
        endUnless(fileBytes(desk.list) == Text(100'000, 'x'), 3);
        endUnless(desk.writeFailure(desk.list, "short") == 0, 4);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(desk.list) == "short");
    CHECK(desk.status(desk.list).st_ino == number);
}

TEST_CASE("Somebody else's file that everybody may write keeps its owner")
{
    Desk desk;
    putFile(desk.list, oldRows);
    chmod(desk.list.c_str(), 0666);
    chmod(desk.folder.path().c_str(), 0755);
    chmod(desk.lists.c_str(), 01777);
    Child child([&] {
        becomeNobody();
        endUnless(desk.writeFailure(desk.list, "new") == 0, 1);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(desk.list) == "new");
    CHECK(desk.status(desk.list).st_uid == geteuid());
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
}

TEST_CASE("On a medium that may only be read everything is refused")
{
    Desk desk;
    const Text disk = desk.folder / "disk";
    SmallDisk small(disk, 64);
    putFile(disk + "/list.vlp", oldRows);
    small.becomeReadOnly();
    CHECK(desk.writeFailure(disk + "/list.vlp", "new") == 70);
    CHECK(desk.writeFailure(disk + "/new.vlp", "new") == 70);
    CHECK(fileBytes(disk + "/list.vlp") == oldRows);
}

TEST_CASE("A full disk fails with its own number and keeps the old file")
{
    Desk desk;
    const Text disk = desk.folder / "disk";
    const SmallDisk small(disk, 64);
    putFile(disk + "/list.vlp", oldRows);
    CHECK(desk.writeFailure(disk + "/list.vlp", Text(1 << 20, 'x')) == 61);
    CHECK(desk.writeFailure(disk + "/new.vlp", Text(1 << 20, 'x')) == 61);
    CHECK(fileBytes(disk + "/list.vlp") == oldRows);
    CHECK(namesInFolder(disk) == std::set<Text>{"list.vlp"});
}

TEST_CASE("A disk that was full for a while keeps the old file, too: rows would be missing or doubled")
{
    Desk desk;
    const Text disk = desk.folder / "disk";
    const SmallDisk small(disk, 512);
    putFile(disk + "/list.vlp", oldRows);
    putFile(disk + "/film", Text(400'000, 'f'));
    {
        const auto output = desk.files.openForOutput(disk + "/list.vlp");
        CHECK(failureOf([&] { output->write(Text(200'000, 'x')); }) == 61);
        std::filesystem::remove(disk + "/film");
        CHECK(failureOf([&] { output->write(Text(100'000, 'y')); }) == 61);
        CHECK(failureOf([&] { output->finish(); }) == 61);
    }
    CHECK(fileBytes(disk + "/list.vlp") == oldRows);
    CHECK(namesInFolder(disk) == std::set<Text>{"list.vlp"});
}

TEST_CASE("What the system takes in pieces is written whole, also in place")
{
    Desk desk;
    const Text disk = desk.folder / "disk";
    SmallDisk small(disk, 64);
    small.takePieces();
    Text rows;
    for (int row = 0; row < 500; ++row)
        rows += "/music/" + std::to_string(row) + ".mp3\r\n";
    putFile(disk + "/list.vlp", oldRows);
    chmod((disk + "/list.vlp").c_str(), 0666);
    chmod(disk.c_str(), 0555);
    chmod(desk.folder.path().c_str(), 0755);
    Child child([&] { // while this process has no thread yet that forces
        becomeNobody();
        endUnless(desk.writeFailure(disk + "/list.vlp", rows) == 0, 1);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(disk + "/list.vlp") == rows);
    desk.write(disk + "/list.vlp", "/one more.mp3\r\n" + rows);
    CHECK(fileBytes(disk + "/list.vlp") == "/one more.mp3\r\n" + rows);
}

TEST_CASE("A full disk keeps the old file also where it is written in place")
{
    Desk desk;
    const Text disk = desk.folder / "disk";
    const SmallDisk small(disk, 64);
    putFile(disk + "/list.vlp", oldRows);
    chmod((disk + "/list.vlp").c_str(), 0666);
    chmod(disk.c_str(), 0555);
    chmod(desk.folder.path().c_str(), 0755);
    Child child([&] {
        becomeNobody();
        endUnless(desk.writeFailure(disk + "/list.vlp", Text(1 << 20, 'x')) == 61, 1);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(disk + "/list.vlp") == oldRows);
}

TEST_CASE("A limit on the size of files is a full disk")
{
    Desk desk;
    putFile(desk.list, oldRows);
    Child child([&] {
        const rlimit limit{4096, 4096};
        signal(SIGXFSZ, SIG_IGN);
        endUnless(setrlimit(RLIMIT_FSIZE, &limit) == 0, 98);
        endUnless(desk.writeFailure(desk.list, Text(1 << 20, 'x')) == 61, 1);
    });
    CHECK(child.wait() == 0);
    CHECK(fileBytes(desk.list) == oldRows);
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
}

TEST_CASE("Devices take what is written")
{
    Desk desk;
    CHECK(desk.writeFailure("/dev/null", "new") == 0);
    CHECK(desk.writeFailure("/dev/full", "new") == 61);
    CHECK(std::filesystem::is_character_file("/dev/full"));
}

TEST_CASE("A pipe that nobody reads keeps nobody waiting")
{
    Desk desk;
    const Text pipe = desk.lists + "/pipe";
    REQUIRE(mkfifo(pipe.c_str(), 0666) == 0);
    CHECK(desk.writeFailure(pipe, Text(1 << 20, 'x')) == 75);
    CHECK(failureOf([&] { desk.files.readWhole(pipe); }) == 75);
    CHECK(std::filesystem::is_fifo(pipe));
}

TEST_CASE("Reading fails for what is no file")
{
    Desk desk;
    putFile(desk.list, oldRows);
    const struct {
        const char* what;
        Text path;
        int readNumber;
        int lengthNumber;
    } cases[] = {
        {"a missing file", desk.lists + "/none", 53, 53},
        {"a missing folder", desk.lists + "/none/list.vlp", 53, 53},
        {"below a file", desk.list + "/list.vlp", 53, 53},
        {"no name", "", 53, 53},
        {"a folder", desk.lists, 75, 53},
        {"a device without end", "/dev/zero", 75, 53},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(failureOf([&] { desk.files.readWhole(c.path); }) == c.readNumber);
        CHECK(failureOf([&] { desk.files.length(c.path); }) == c.lengthNumber);
    }
}

TEST_CASE("A file that may not be read is refused, one of a film's size too, and neither has a length")
{
    Desk desk;
    putFile(desk.list, oldRows);
    chmod(desk.list.c_str(), 0);
    for (const Text& path : {desk.folder.path(), desk.lists})
        chmod(path.c_str(), 0755);
    Child child([&] {
        becomeNobody();
        endUnless(failureOf([&] { desk.files.readWhole(desk.list); }) == 70, 1);
        endUnless(failureOf([&] { desk.files.length(desk.list); }) == 70, 2);
    });
    CHECK(child.wait() == 0);
    putFile(desk.lists + "/film", "");
    std::filesystem::resize_file(desk.lists + "/film", 5'000'000'000);
    CHECK(failureOf([&] { desk.files.readWhole(desk.lists + "/film"); }) == 75);
    CHECK(failureOf([&] { desk.files.length(desk.lists + "/film"); }) == 75);
}

TEST_CASE("A file is still what was left there until anything about it changes")
{
    using Change = std::function<void(const Text&)>;
    const struct {
        const char* what;
        Change change;
        bool holds;
    } cases[] = {
        {"nothing", [](const Text&) {}, true},
        {"it was read", [](const Text& path) { fileBytes(path); }, true},
        {"one byte at the start, at once",
         [](const Text& path) { std::fstream(path, std::ios::in | std::ios::out).put('X'); }, false},
        {"the same bytes written anew", [](const Text& path) { putFile(path, fileBytes(path)); }, false},
        {"emptied", [](const Text& path) { std::filesystem::resize_file(path, 0); }, false},
        {"a byte longer", [](const Text& path) { std::ofstream(path, std::ios::app).put('x'); }, false},
        {"removed", [](const Text& path) { std::filesystem::remove(path); }, false},
        {"replaced by a copy",
         [](const Text& path) {
             std::filesystem::copy_file(path, path + "2");
             std::filesystem::rename(path + "2", path);
         },
         false},
        {"a changed byte behind a forged time",
         [](const Text& path) {
             const auto time = std::filesystem::last_write_time(path);
             std::fstream(path, std::ios::in | std::ios::out).put('X');
             std::filesystem::last_write_time(path, time);
         },
         false},
        {"a forged time of long ago",
         [](const Text& path) {
             std::filesystem::last_write_time(path,
                                              std::filesystem::last_write_time(path) - std::chrono::hours(1));
         },
         false},
        {"another mode", [](const Text& path) { chmod(path.c_str(), 0600); }, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Desk desk;
        desk.write(desk.list, oldRows, 7);
        REQUIRE(desk.stillHolds(desk.list, 7));
        c.change(desk.list);
        CHECK(desk.stillHolds(desk.list, 7) == c.holds);
        CHECK(waitUntil([&] {
            desk.write(desk.list, oldRows, 7);
            return desk.stillHolds(desk.list, 7);
        }));
    }
}

TEST_CASE("A file that is asked for many times a second is looked at once")
{
    Desk desk;
    desk.write(desk.list, oldRows, 7);
    CHECK(desk.stillHolds(desk.list, 7));
    putFile(desk.list, "another program's\r\n");
    CHECK(desk.files.stillHolds(desk.list, 7));
    CHECK_FALSE(desk.files.stillHolds(desk.list, 8));
    desk.now += files::Trust::length;
    CHECK_FALSE(desk.files.stillHolds(desk.list, 7));
    desk.write(desk.list, oldRows, 7);
    CHECK(fileBytes(desk.list) == oldRows);
}

TEST_CASE("Equal content is not written again, whoever wrote it")
{
    const struct {
        const char* what;
        Text standing, written;
        bool stays;
    } cases[] = {
        {"the same rows", oldRows, oldRows, true},
        {"nothing, and nothing again", "", "", true},
        {"more than a buffer", Text(200'001, 'x'), Text(200'001, 'x'), true},
        {"another last byte", Text(200'001, 'x'), Text(200'000, 'x') + 'y', false},
        {"another first byte", 'y' + Text(200'000, 'x'), Text(200'001, 'x'), false},
        {"a byte more than stands", oldRows, oldRows + 'x', false},
        {"a byte less than stands", oldRows + 'x', oldRows, false},
        {"nothing where rows stood", oldRows, "", false},
        {"rows where nothing stood", "", oldRows, false},
    };
    for (const auto& c : cases)
        for (const std::uint64_t revision : {0, 5}) {
            CAPTURE(c.what);
            CAPTURE(revision);
            Desk desk;
            putFile(desk.list, c.standing);
            const struct stat before = desk.status(desk.list);
            desk.write(desk.list, c.written, revision);
            const struct stat after = desk.status(desk.list);
            const bool untouched = after.st_ino == before.st_ino &&
                                   after.st_ctim.tv_nsec == before.st_ctim.tv_nsec &&
                                   after.st_ctim.tv_sec == before.st_ctim.tv_sec;
            CHECK(untouched == c.stays);
            CHECK(fileBytes(desk.list) == c.written);
            CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
        }
}

TEST_CASE("Equal content that another wrote is held, once its time would show a later change")
{
    Desk desk;
    const Text rows(1000, 'r');
    desk.write(desk.list, rows, 7);
    putFile(desk.list, 'x' + rows.substr(1));
    CHECK_FALSE(desk.stillHolds(desk.list, 7));
    putFile(desk.list, rows);
    CHECK(waitUntil([&] {
        desk.write(desk.list, rows, 7);
        return desk.stillHolds(desk.list, 7);
    }));
    putFile(desk.list, 'x' + rows.substr(1));
    CHECK_FALSE(desk.stillHolds(desk.list, 7));
}

TEST_CASE("Equal content is not written again where a file is written in place")
{
    Desk desk;
    putFile(desk.list, oldRows);
    chmod(desk.list.c_str(), 0666);
    chmod(desk.folder.path().c_str(), 0755);
    chmod(desk.lists.c_str(), 0555);
    const struct stat before = desk.status(desk.list);
    Child child([&] {
        becomeNobody();
        desk.write(desk.list, oldRows, 3);
    });
    CHECK(child.wait() == 0);
    CHECK(desk.status(desk.list).st_ctim.tv_nsec == before.st_ctim.tv_nsec);
    CHECK(fileBytes(desk.list) == oldRows);
}

TEST_CASE("Two writers of equal content come to rest")
{
    Desk desk;
    files::DiskTextFiles other(
        desk.notes, [](const Text&) {}, desk.trust);
    desk.write(desk.list, oldRows, 1);
    const auto number = desk.status(desk.list).st_ino;
    CHECK(waitUntil([&] {
        for (files::DiskTextFiles* files : {&desk.files, &other}) {
            const auto output = files->openForOutput(desk.list);
            output->write(oldRows);
            output->finish(1);
        }
        return desk.stillHolds(desk.list, 1) && desk.stillHolds(other, desk.list, 1);
    }));
    CHECK(desk.status(desk.list).st_ino == number);
}

TEST_CASE("Only the revision that was written is held")
{
    Desk desk;
    CHECK_FALSE(desk.stillHolds(desk.list, 0));
    CHECK_FALSE(desk.stillHolds(desk.list, 1));
    desk.write(desk.list, oldRows, 1);
    CHECK_FALSE(desk.stillHolds(desk.list, 2));
    CHECK_FALSE(desk.stillHolds(desk.lists + "/other", 1));
    desk.write(desk.list, oldRows);
    CHECK_FALSE(desk.stillHolds(desk.list, 1));
    CHECK_FALSE(desk.stillHolds(desk.list, 0));
}

TEST_CASE("A file written in place is held too")
{
    Desk desk;
    putFile(desk.list, "");
    chmod(desk.list.c_str(), 0666);
    chmod(desk.folder.path().c_str(), 0755);
    chmod(desk.lists.c_str(), 0555);
    Child child([&] {
        becomeNobody();
        desk.write(desk.list, oldRows, 3);
        endUnless(desk.stillHolds(desk.list, 3), 1);
        std::fstream(desk.list, std::ios::in | std::ios::out).put('X');
        endUnless(!desk.stillHolds(desk.list, 3), 2);
    });
    CHECK(child.wait() == 0);
}

TEST_CASE("A backup stands beside its file, and one that cannot be kept is no failure")
{
    Desk desk;
    desk.files.keepBackup(desk.list, oldRows);
    CHECK(fileBytes(desk.list + ".bak") == oldRows);
    desk.files.keepBackup(desk.list, "new");
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp.bak"});
    CHECK(fileBytes(desk.list + ".bak") == "new");
    desk.files.keepBackup(desk.lists + "/none/deflist.vlp", "new");
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp.bak"});
}

TEST_CASE("A backup of what this process did not write is told of, and no other")
{
    Desk desk;
    std::vector<Text> told;
    files::DiskTextFiles files(desk.notes, [&](const Text& backup) { told.push_back(backup); });
    files.keepBackup(desk.lists + "/none/deflist.vlp", oldRows);
    CHECK(told.empty());
    putFile(desk.list, oldRows);
    files.keepBackup(desk.list, oldRows);
    CHECK(told == std::vector<Text>{desk.list + ".bak"});
    const auto output = files.openForOutput(desk.list);
    output->write("a row of this run");
    output->finish(1);
    files.keepBackup(desk.list, "a row of this run");
    CHECK(told.size() == 1);
}

TEST_CASE("A kill at any instant leaves a whole list, and the next start clears up")
{
    Desk desk;
    const auto rows = [](int number) {
        return Text(static_cast<std::size_t>(number) * 3001, char('a' + number % 26));
    };
    for (int round = 0; round < 40; ++round) {
        CAPTURE(round);
        int pipes[2];
        REQUIRE(pipe2(pipes, O_CLOEXEC) == 0);
        Child writer([&] {
            files::StatePartNotes notes(desk.folder / "state");
            files::DiskTextFiles files(notes);
            for (int i = 0;; ++i) {
                const auto output = files.openForOutput(desk.list);
                output->write(rows(i % 100));
                output->finish(static_cast<std::uint64_t>(i) + 1);
                std::ignore = write(pipes[1], &i, sizeof i);
            }
        });
        close(pipes[1]);
        int number = 0;
        for (int i = 0; i < 1 + round * 2; ++i)
            REQUIRE(read(pipes[0], &number, sizeof number) == sizeof number);
        writer.kill();
        close(pipes[0]);
        const Text found = fileBytes(desk.list);
        CHECK(found == rows(static_cast<int>(found.size() / 3001)));
        files::removeNotedParts(desk.folder / "state");
        CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
        CHECK(namesInFolder(desk.folder / "state/parts").empty());
    }
}

TEST_CASE("What a kill in the middle of writing leaves is found by its note")
{
    Desk desk;
    putFile(desk.list, oldRows);
    int pipes[2];
    REQUIRE(pipe2(pipes, O_CLOEXEC) == 0);
    Child writer([&] {
        files::StatePartNotes notes(desk.folder / "state");
        files::DiskTextFiles files(notes);
        const auto output = files.openForOutput(desk.list);
        output->write(Text(200'000, 'x'));
        std::ignore = write(pipes[1], "x", 1);
        pause();
    });
    close(pipes[1]);
    char told = 0;
    REQUIRE(read(pipes[0], &told, 1) == 1);
    close(pipes[0]);
    files::removeNotedParts(desk.folder / "state");
    CHECK(namesInFolder(desk.lists).size() == 2); // its writer still lives
    writer.kill();
    CHECK(namesInFolder(desk.lists).size() == 2);
    CHECK(fileBytes(desk.list) == oldRows);
    files::removeNotedParts(desk.folder / "state");
    CHECK(namesInFolder(desk.lists) == std::set<Text>{"deflist.vlp"});
    CHECK(fileBytes(desk.list) == oldRows);
}
