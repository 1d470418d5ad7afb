// SPDX-License-Identifier: GPL-3.0-or-later
// What a disk does that is worn out, pulled out, or far away: whoever asked it is told, and what stood there
// stands there still.
#include "files/byte_source.h"
#include "files/disk_text_files.h"
#include "files/folders.h"
#include "files/input_file.h"
#include "files/lost_parts.h"
#include "files/output_file.h"
#include "files/set_aside.h"
#include "files/state_part_notes.h"
#include "tests/support/child.h"
#include "tests/support/failing_disk.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>

namespace
{

struct Disk {
    TemporaryFolder folder;
    Text list = folder / "list.vlp";
    files::DiskTextFiles files{NoPartNotes::instance()};

    Disk() { putFile(list, oldRows); }

    int writeFailure(const Text& path, std::string_view bytes)
    {
        return failureOf([&] {
            const auto output = files.openForOutput(path);
            output->write(bytes);
            output->finish();
        });
    }
    bool holdsOnly(std::string_view bytes) const
    {
        return fileBytes(list) == bytes && namesInFolder(folder.path()) == std::set<Text>{"list.vlp"};
    }

    inline static const Text oldRows = "/music/old one.mp3\r\n/music/old two.mp3\r\n";
};

struct FailingCall {
    const char* what;
    const char* call;
    int error;
    int number; // with which it is told
};

const Text longRows(300'000, 'r');

// A list in a folder that takes no new file, written by somebody without rights.
struct InPlace : Disk {
    InPlace()
    {
        chmod(list.c_str(), 0666);
        chmod(folder.path().c_str(), 0555);
    }
    int failureOfNobody(std::string_view bytes)
    {
        Child child([&] {
            becomeNobody();
            _exit(writeFailure(list, bytes));
        });
        return child.wait();
    }
};

}

TEST_CASE("A list that the disk cannot read to its end is a failure and not a shorter list")
{
    const struct {
        const char* what;
        const char* call;
        FailingDisk::When when;
    } cases[] = {
        {"at its beginning", "read", {}},
        {"in its middle", "read", {.after = 2}},
        {"before anything is read", "fstat", {}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Disk disk;
        putFile(disk.list, longRows);
        const FailingDisk failing(disk.folder.path(), c.call, EIO, c.when);
        CHECK(failureOf([&] { disk.files.readWhole(disk.list); }) == 57);
        CHECK(failing.failures() == 1);
    }
}

TEST_CASE("A list whose first byte cannot be read has no length")
{
    Disk disk;
    const FailingDisk failing(disk.folder.path(), "pread", EIO);
    CHECK(failureOf([&] { disk.files.length(disk.list); }) == 57);
}

TEST_CASE("What a signal interrupts is asked of the disk again")
{
    constexpr FailingDisk::When twice{.times = 2};
    Disk disk;
    {
        const FailingDisk interrupted(disk.folder.path(), "read", EINTR, twice);
        CHECK(disk.files.readWhole(disk.list) == Disk::oldRows);
        CHECK(interrupted.failures() == 2);
    }
    {
        const FailingDisk interrupted(disk.folder.path(), "pwrite", EINTR, twice);
        CHECK(disk.writeFailure(disk.list, longRows) == 0);
        CHECK(interrupted.failures() == 2);
    }
    {
        const auto file = files::InputFile::openOrFail(disk.list);
        const FailingDisk interrupted(disk.folder.path(), "pread", EINTR, twice);
        Text bytes(longRows.size(), '\0');
        CHECK(file->read(bytes.data(), bytes.size(), 0) == std::ssize(longRows));
        CHECK(bytes == longRows);
        CHECK(interrupted.failures() == 2);
    }
    {
        const FailingDisk interrupted("/dev/full", "write", EINTR, twice);
        CHECK(disk.writeFailure("/dev/full", "row") == 61);
        CHECK(interrupted.failures() == 2);
    }
}

TEST_CASE("A list stays as it was, and nothing beside it, whatever the disk fails at")
{
    const FailingCall cases[] = {
        {"looking at it", "fstat", EIO, 57},
        {"making the new file", "open", EIO, 57},
        {"a name that the system does not take", "open", ENAMETOOLONG, 75},
        {"writing", "pwrite", EIO, 57},
        {"a share of the disk that is used up", "pwrite", EDQUOT, 61},
        {"a share that finds at the end that it is full", "close", EDQUOT, 61},
        {"giving it its mode", "fchmod", EIO, 57},
        {"putting it in its place", "rename", EIO, 57},
        {"putting it in its place, where another holds that", "rename", EBUSY, 70},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Disk disk;
        {
            const FailingDisk failing(disk.folder.path(), c.call, c.error);
            CHECK(disk.writeFailure(disk.list, longRows) == c.number);
            CHECK(failing.failures() > 0);
        }
        CHECK(disk.holdsOnly(Disk::oldRows));
        CHECK(disk.writeFailure(disk.list, longRows) == 0); // when the disk is well again
        CHECK(disk.holdsOnly(longRows));
    }
}

TEST_CASE("A folder whose file system keeps no modes has its lists written in place")
{
    Disk disk;
    const FailingDisk failing(disk.folder.path(), "fchmod", EPERM);
    CHECK(disk.writeFailure(disk.list, longRows) == 0);
    CHECK(disk.holdsOnly(longRows));
    CHECK(failing.failures() == 1);
}

TEST_CASE("A list that is written in place is told of as failed when the disk fails")
{
    const struct {
        const char* what;
        const char* call;
        int error;
        int number;
        Text left;
    } cases[] = {
        {"room for more", "posix_fallocate", ENOSPC, 61, Disk::oldRows},
        {"writing", "pwrite", EIO, 57, Disk::oldRows},
        {"cutting off the end", "ftruncate", EIO, 57, longRows},
        {"a share that finds at the end that it is full", "close", EDQUOT, 61, longRows},
        {"looking at it", "fstat", EIO, 57, Disk::oldRows},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        InPlace disk;
        {
            const FailingDisk failing(disk.folder.path(), c.call, c.error);
            CHECK(disk.failureOfNobody(longRows) == c.number);
        }
        CHECK(fileBytes(disk.list) == c.left);
        CHECK(disk.failureOfNobody(longRows) == 0);
        CHECK(disk.holdsOnly(longRows));
    }
}

TEST_CASE("A file is made whole or not at all, whatever the disk fails at")
{
    const FailingCall cases[] = {
        {"asking for room", "fallocate", ENOSPC, 61},
        {"writing", "pwrite", EIO, 57},
        {"forcing", "fdatasync", EIO, 57},
        {"beginning to force", "close", EDQUOT, 61},
        {"renaming", "rename", EACCES, 70},
        {"renaming, the folder gone", "rename", ENOENT, 76},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Disk disk;
        const FailingDisk failing(disk.folder.path(), c.call, c.error);
        CHECK(failureOf([&] {
                  files::OutputFile file(disk.list, NoPartNotes::instance());
                  file.makeRoom(std::ssize(longRows));
                  file.append(files::bytesOf(longRows));
                  file.startForce();
                  file.finish();
              }) == c.number);
        CHECK(failing.failures() > 0);
        CHECK(disk.holdsOnly(Disk::oldRows));
    }
}

TEST_CASE("A file system that knows no room in advance and no force takes files all the same")
{
    const struct {
        const char* call;
        int error;
    } cases[] = {{"fallocate", EOPNOTSUPP}, {"fdatasync", EINVAL}, {"fdatasync", ENOSYS}};
    for (const auto& c : cases) {
        CAPTURE(c.call);
        Disk disk;
        const FailingDisk lacking(disk.folder.path(), c.call, c.error);
        files::OutputFile file(disk.list, NoPartNotes::instance());
        file.makeRoom(std::ssize(longRows));
        file.append(files::bytesOf(longRows));
        file.finish();
        CHECK(lacking.failures() == 1);
        CHECK(disk.holdsOnly(longRows));
    }
}

TEST_CASE("A share that cannot rename to a free name in one step does so in two")
{
    for (const int error : {EINVAL, ENOSYS}) {
        CAPTURE(error);
        Disk disk;
        const Text song = disk.folder / "song.mp3";
        const FailingDisk old(disk.folder.path(), "renameat2", error);
        putFile(song, "old");
        files::OutputFile file(song, NoPartNotes::instance());
        file.append(files::bytesOf("new"));
        CHECK_FALSE(file.takeFreePlace());
        CHECK(fileBytes(song) == "old");
        CHECK(file.takeFreePlace(disk.folder / "other.mp3"));
        CHECK(fileBytes(disk.folder / "other.mp3") == "new");
        CHECK(namesInFolder(disk.folder.path()).size() == 3);
        CHECK(old.failures() == 2);
    }
}

TEST_CASE("A free place that the disk does not give is a failure, and the part goes")
{
    Disk disk;
    const FailingDisk failing(disk.folder.path(), "renameat2", EIO);
    CHECK(failureOf([&] {
              files::OutputFile file(disk.folder / "song.mp3", NoPartNotes::instance());
              file.takeFreePlace();
          }) == 57);
    CHECK(disk.holdsOnly(Disk::oldRows));
}

TEST_CASE("A target below a folder that may not be looked into is refused")
{
    const Disk disk;
    const Text closed = disk.folder / "closed";
    std::filesystem::create_directory(closed);
    putFile(closed + "/song.mp3", "old");
    chmod(disk.folder.path().c_str(), 0755);
    chmod(closed.c_str(), 0);
    Child child([&] {
        becomeNobody();
        endUnless(failureOf([&] { files::OutputFile(closed + "/song.mp3", NoPartNotes::instance()); }) == 70,
                  1);
    });
    CHECK(child.wait() == 0);
    chmod(closed.c_str(), 0755);
    CHECK(namesInFolder(closed) == std::set<Text>{"song.mp3"});
}

TEST_CASE("A process that may open no more files is told so, and one that needs no more saves")
{
    for (const rlim_t more : {1, 2}) {
        CAPTURE(more);
        Disk disk;
        Child child([&] {
            const auto next = files::Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC)).number();
            const rlimit limit{static_cast<rlim_t>(next) + more, static_cast<rlim_t>(next) + more};
            endUnless(setrlimit(RLIMIT_NOFILE, &limit) == 0, 98);
            endUnless((disk.writeFailure(disk.list, longRows) == 0) == (more == 2), 1);
        });
        CHECK(child.wait() == 0);
        CHECK(disk.holdsOnly(more == 2 ? longRows : Disk::oldRows));
    }
}

TEST_CASE("A list of a folder that may not be looked into has no length, and says why")
{
    Disk disk;
    const FailingDisk failing(disk.folder.path(), "stat", EACCES);
    CHECK(failureOf([&] { disk.files.length(disk.list); }) == 70);
}

TEST_CASE("A list that nobody can compare with is written")
{
    const struct {
        const char* what;
        const char* call;
        FailingDisk::When when;
    } cases[] = {
        {"its size cannot be asked", "fstat", {.after = 2}},
        {"its name cannot be asked", "stat", {}},
        {"its bytes cannot be read", "pread", {}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Disk disk;
        struct stat before, after;
        REQUIRE(stat(disk.list.c_str(), &before) == 0);
        {
            const FailingDisk failing(disk.folder.path(), c.call, EIO, c.when);
            CHECK(disk.writeFailure(disk.list, Disk::oldRows) == 0);
            CHECK(failing.failures() > 0);
        }
        REQUIRE(stat(disk.list.c_str(), &after) == 0);
        CHECK(after.st_ino != before.st_ino);
        CHECK(disk.holdsOnly(Disk::oldRows));
    }
}

TEST_CASE("Equal content is written all the same where the file has gone or become another meanwhile")
{
    const struct {
        const char* what;
        std::function<void(const Text&)> meanwhile;
    } cases[] = {
        {"gone", [](const Text& list) { std::filesystem::remove(list); }},
        {"a copy in its place",
         [](const Text& list) {
             std::filesystem::copy_file(list, list + "2");
             std::filesystem::rename(list + "2", list);
         }},
        {"a link to another disk in its place",
         [](const Text& list) {
             std::filesystem::remove(list);
             std::filesystem::create_symlink("/proc/self/status", list);
         }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Disk disk;
        const auto output = disk.files.openForOutput(disk.list);
        output->write(Disk::oldRows);
        c.meanwhile(disk.list);
        output->finish();
        CHECK(disk.holdsOnly(Disk::oldRows));
        CHECK(std::filesystem::is_regular_file(std::filesystem::symlink_status(disk.list)));
    }
}

TEST_CASE("Content whose time cannot be asked is not taken to have stood long enough")
{
    Disk disk;
    const auto holdsWhenSavedAgain = [&](int fstats) {
        const auto output = disk.files.openForOutput(disk.list);
        output->write(Disk::oldRows);
        const FailingDisk failing(disk.folder.path(), "fstat", EIO, {.after = fstats});
        output->finish(7);
        return disk.files.stillHolds(disk.list, 7);
    };
    CHECK(waitUntil([&] { return holdsWhenSavedAgain(1000); }));
    CHECK_FALSE(holdsWhenSavedAgain(1));
}

TEST_CASE("A change that leaves no trace but its bytes is seen by them")
{
    const TemporaryFolder memory(memoryFolder());
    const Text list = memory / "list.vlp";
    auto now = std::chrono::steady_clock::now();
    files::DiskTextFiles files(
        NoPartNotes::instance(), [](const Text&) {}, files::Trust([&] { return now; }));
    const auto output = files.openForOutput(list);
    output->write(longRows);
    const Text part = memory / *namesInFolder(memory.path()).begin();
    const files::Descriptor file(open(part.c_str(), O_RDWR | O_CLOEXEC));
    // Who has written to the memory before is not asked when he does so again.
    void* const bytes = mmap(nullptr, longRows.size(), PROT_READ | PROT_WRITE, MAP_SHARED, file.number(), 0);
    REQUIRE(bytes != MAP_FAILED);
    char& last = static_cast<char*>(bytes)[longRows.size() - 1];
    last = 'r';
    output->finish(7);
    now += std::chrono::seconds(1);
    CHECK(files.stillHolds(list, 7));
    last = 'X';
    now += std::chrono::seconds(1);
    CHECK_FALSE(files.stillHolds(list, 7));
    munmap(bytes, longRows.size());
}

TEST_CASE("A song whose end cannot be read is not opened as a whole one")
{
    Disk disk;
    const FailingDisk failing(disk.folder.path(), "fstat", EIO);
    CHECK(files::InputFile::open(disk.list) == nullptr);
    CHECK(failureOf([&] { files::InputFile::openOrFail(disk.list); }) != 0);
}

TEST_CASE("A stretch of a file that cannot be read whole is a failure")
{
    Disk disk;
    files::FileBytes bytes(files::InputFile::openOrFail(disk.list));
    CHECK(bytes.readAll(0, 6) == "/music");
    CHECK(failureOf([&] { bytes.readAll(0, Disk::oldRows.size() + 1); }) == 57);
    const FailingDisk failing(disk.folder.path(), "pread", EIO);
    files::FileBytes again(files::InputFile::openOrFail(disk.list));
    CHECK(failureOf([&] { again.readAll(0, 6); }) == 57);
}

TEST_CASE("A folder that another program makes at the same moment is there")
{
    const TemporaryFolder folder;
    const FailingDisk quicker(folder.path(), "mkdir", EEXIST);
    CHECK(files::makeFolders(folder / "a/b"));
    CHECK(quicker.failures() == 2);
    CHECK(files::isFolder(folder / "a/b"));
}

TEST_CASE("A folder below one that is not there any more cannot be made")
{
    const FailingDisk gone(".", "stat", ESTALE);
    CHECK_FALSE(files::makeFolders("here"));
    CHECK_FALSE(files::makeFolders(""));
}

TEST_CASE("Files on two disks are two, whatever their numbers")
{
    const Disk disk;
    CHECK_FALSE(files::isSameFile(disk.list, "/proc/self/status"));
}

TEST_CASE("A part file that cannot be looked at stays")
{
    Disk disk;
    const Text lost = "list.vlp.0123456789abcdef.part";
    putFile(disk.folder / lost, "half a list");
    const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::years(10);
    std::filesystem::last_write_time(disk.folder / lost, longAgo);
    {
        const FailingDisk failing(disk.folder.path(), "lstat", EIO);
        files::removeLostParts(disk.folder / "list.vlp.00000000000000ff.part");
        CHECK(failing.failures() > 0);
    }
    CHECK(namesInFolder(disk.folder.path()).contains(lost));
    files::removeLostParts(disk.folder / "list.vlp.00000000000000ff.part");
    CHECK(disk.holdsOnly(Disk::oldRows));
}

TEST_CASE("A damaged database on a share without locks is left where it is")
{
    Disk disk;
    const auto damaged = files::identityOf(disk.list);
    {
        const FailingDisk noLocks(disk.folder.path(), "flock", ENOLCK);
        files::setAside(disk.list, damaged);
        CHECK(noLocks.failures() == 1);
    }
    CHECK(disk.holdsOnly(Disk::oldRows));
    files::setAside(disk.list, damaged);
    CHECK(namesInFolder(disk.folder.path()) == std::set<Text>{"list.vlp.damaged"});
}

TEST_CASE("Where the system has no locks, no note is kept and none is left")
{
    Disk disk;
    const Text state = disk.folder / "state";
    const FailingDisk noLocks(disk.folder.path(), "flock", ENOLCK);
    files::StatePartNotes notes(state);
    notes.note(disk.folder / "song.mp3.0123456789abcdef.part");
    notes.whole({});
    notes.done(disk.folder / "song.mp3.0123456789abcdef.part");
    CHECK(noLocks.failures() > 0);
    CHECK(namesInFolder(state + "/parts").empty());
}

TEST_CASE("Notes that another start takes for abandoned, before they are locked, are begun anew")
{
    Disk disk;
    const Text state = disk.folder / "state";
    const FailingDisk failing(disk.folder.path(), "fstat", EIO, {.times = 1});
    files::StatePartNotes notes(state);
    notes.note(disk.folder / "song.mp3.0123456789abcdef.part");
    CHECK(failing.failures() == 1);
    CHECK(namesInFolder(state + "/parts").size() == 1);
}

TEST_CASE("Starts that clear up all the time cost no note")
{
    const Disk disk;
    const Text state = disk.folder / "state";
    const Text part = disk.folder / "song.mp3.0123456789abcdef.part";
    Child starts([&] {
        for (;;)
            files::removeNotedParts(state);
    });
    for (int round = 0; round < 200; ++round) {
        files::StatePartNotes notes(state);
        notes.note(part);
        putFile(part, "half a song");
        const auto kept = namesInFolder(state + "/parts");
        CHECK(kept.size() == 1);
        CHECK(std::filesystem::exists(part));
        notes.done(part);
    }
}
