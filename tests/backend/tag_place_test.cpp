// SPDX-License-Identifier: GPL-3.0-or-later
// Where and under what rights a tag is written: what becomes of the file, its names and its folder.
#include "engines/tags/tag_file.h"

#include "files/descriptor.h"
#include "files/file_swap.h"
#include "tests/support/answer_of_child.h"
#include "tests/support/failing_disk.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/forced_disk.h"
#include "tests/support/mp3_files.h"
#include "tests/support/skip.h"
#include "tests/support/small_disk.h"

#include <doctest/doctest.h>

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <future>

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/sendfile.h>
#include <sys/syscall.h>
#include <sys/xattr.h>

using namespace tags;

namespace
{

namespace fs = std::filesystem;

const Text audio = mp3Frames(40);
const Text v1Alone = audio + v1Tag({"Old"});
const Text withV2 = v2Tag(3, v2Frame(3, "TIT2", latin1Text("Old"))) + audio + v1Tag({"Old"});
const Tag wanted{"New", "", "", "", 0, -1};
const Tag notForV1{"\xD0\x9F", "", "", "", 0, -1};

struct stat statusOf(const Text& path)
{
    struct stat status = {};
    stat(path.c_str(), &status);
    return status;
}

constexpr uid_t nobody = 65534;

void giveToNobody(const Text& path)
{
    if (geteuid() == 0)
        REQUIRE(chown(path.c_str(), nobody, nobody) == 0);
}

const auto approved = [](const Text&) {};
PartNotes& noNotes = NoPartNotes::instance();

std::atomic<int> clones = 0;
std::atomic<bool> isCloning = false;

// A file system that can share bytes between files, as long as this lives.
struct Cloning {
    Cloning()
    {
        clones = 0;
        isCloning = true;
    }
    ~Cloning() { isCloning = false; }
    Cloning(const Cloning&) = delete;
    Cloning& operator=(const Cloning&) = delete;
};

int clone(int to, int from)
{
    ++clones;
    off_t at = 0;
    return sendfile(to, from, &at, static_cast<std::size_t>(lseek(from, 0, SEEK_END))) < 0 ? -1 : 0;
}

Text answerOfNobody(const std::function<Text()>& work)
{
    return answerOfChild([&] {
        becomeNobody();
        return work();
    });
}

// What writing says in a folder that does not permit new files, with the file's bytes afterwards.
struct Outcome {
    Text reason;
    Text bytes;
    bool sameFile;
};

Outcome writtenInClosedFolder(const Text& bytes, const Tag& tag)
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, bytes);
    giveToNobody(path);
    giveToNobody(folder.path());
    const auto inode = statusOf(path).st_ino;
    fs::permissions(folder.path(), fs::perms(0555));
    const Text reason = answerOfNobody([&] { return writeTag(path, tag); });
    fs::permissions(folder.path(), fs::perms(0755));
    CHECK(holdsOnlyTheSong(folder));
    return {reason, fileBytes(path), statusOf(path).st_ino == inode};
}

}

// In the place of the system's own.
extern "C" int ioctl(int file, unsigned long request, ...) noexcept
{
    va_list more;
    va_start(more, request);
    void* const argument = va_arg(more, void*);
    va_end(more);
    if (request == FICLONE && isCloning)
        return clone(file, static_cast<int>(reinterpret_cast<std::intptr_t>(argument)));
    static const auto next = reinterpret_cast<int (*)(int, unsigned long, ...)>(dlsym(RTLD_NEXT, "ioctl"));
    return next(file, request, argument);
}

TEST_CASE("Mode, owner and attributes of a file are kept, and its time is new")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, withV2);
    if (geteuid() == 0)
        REQUIRE(chown(path.c_str(), 1234, 2345) == 0);
    fs::permissions(path, fs::perms(0640));
    const bool hasAttributes = setxattr(path.c_str(), "user.rating", "5", 1, 0) == 0;
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
    const struct stat before = statusOf(path);

    REQUIRE(writeTag(path, wanted) == "");
    const struct stat after = statusOf(path);
    CHECK(after.st_mode == before.st_mode);
    CHECK(after.st_uid == before.st_uid);
    CHECK(after.st_gid == before.st_gid);
    CHECK(after.st_mtim.tv_sec > before.st_mtim.tv_sec);
    char value = 0;
    CHECK((!hasAttributes || (getxattr(path.c_str(), "user.rating", &value, 1) == 1 && value == '5')));
}

TEST_CASE("A symbolic link stays one, and the file that it leads to is written")
{
    const TemporaryFolder folder;
    const TemporaryFolder other;
    const Text path = putSong(other, withV2);
    fs::create_symlink(path, other / "one.mp3");
    fs::create_symlink(other / "one.mp3", folder / "two.mp3");
    CHECK(writeTag(folder / "two.mp3", wanted) == "");
    CHECK(fs::is_symlink(folder / "two.mp3"));
    CHECK(fs::is_symlink(other / "one.mp3"));
    CHECK_FALSE(fs::is_symlink(path));
    CHECK(readTag(path).title == "New");
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"two.mp3"});
    CHECK(namesInFolder(other.path()).size() == 2);
}

TEST_CASE("A link that leads nowhere, in a circle or to no file is refused and makes no file")
{
    const TemporaryFolder folder;
    fs::create_symlink("missing.mp3", folder / "dangling.mp3");
    fs::create_symlink("circle.mp3", folder / "circle.mp3");
    fs::create_symlink("/dev/zero", folder / "device.mp3");
    fs::create_symlink(".", folder / "folder.mp3");
    for (const Text name : {"dangling.mp3", "circle.mp3", "device.mp3", "folder.mp3", "none.mp3", ""}) {
        CAPTURE(name);
        CHECK(writeTag(folder / name, wanted) != "");
    }
    CHECK(writeTag("", wanted) != "");
    CHECK(namesInFolder(folder.path()).size() == 4);
}

TEST_CASE("A song that may not be read is refused with the reason, and stays")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, withV2);
    {
        const FailingDisk refusing(folder.path(), "open", EACCES);
        CHECK(writeTag(path, wanted) == "The file could not be opened: Permission denied.");
        CHECK(readTag(path) == Tag());
    }
    CHECK(fileBytes(path) == withV2);
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("A pipe is refused at once")
{
    const TemporaryFolder folder;
    REQUIRE(mkfifo((folder / "pipe.mp3").c_str(), 0600) == 0);
    CHECK(writeTag(folder / "pipe.mp3", wanted) != "");
}

TEST_CASE("Another hard link goes on naming the old file, whole")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, withV2);
    fs::create_hard_link(path, folder / "other.mp3");
    CHECK(writeTag(path, wanted) == "");
    CHECK(readTag(path).title == "New");
    CHECK(fileBytes(folder / "other.mp3") == withV2);
    CHECK(statusOf(path).st_nlink == 1);
}

TEST_CASE("A write-protected file is refused, also for an administrator")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, v1Alone);
    fs::permissions(path, fs::perms(0444));
    CHECK(writeTag(path, wanted) == "The file is write-protected: Permission denied.");
    CHECK(fileBytes(path) == v1Alone);
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("A file that only others may write is refused")
{
    if (geteuid() != 0)
        return skipCase("files of two users are needed, which only root can make");
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0777));
    const Text path = putSong(folder, v1Alone);
    fs::permissions(path, fs::perms(0644));
    CHECK(answerOfNobody([&] { return writeTag(path, wanted); }) != "");
    CHECK(fileBytes(path) == v1Alone);
}

TEST_CASE("In a folder that permits no copy, ID3v1 is written in its place where no other tag speaks")
{
    const auto overwritten = writtenInClosedFolder(v1Alone, wanted);
    CHECK(overwritten.reason == "");
    CHECK(overwritten.bytes == audio + v1Tag({"New"}));
    CHECK(overwritten.sameFile);

    const auto appended = writtenInClosedFolder(audio, wanted);
    CHECK(appended.reason == "");
    CHECK(appended.bytes == audio + v1Tag({"New"}));
}

TEST_CASE("In a folder that permits no copy, a file with other tags, or with need of one, is refused")
{
    const Text withApe = audio + apeTag({apeItem("Title", "Old")}) + v1Tag({"Old"});
    for (const Text& bytes : {withV2, withApe}) {
        const auto outcome = writtenInClosedFolder(bytes, wanted);
        CHECK(outcome.reason == "A copy could not be made in the file's folder: Permission denied.");
        CHECK(outcome.bytes == bytes);
    }
    const auto outcome = writtenInClosedFolder(v1Alone, notForV1);
    CHECK(outcome.reason != "");
    CHECK(outcome.bytes == v1Alone);
}

TEST_CASE("Where the owner cannot be kept, ID3v1 is written in its place, and anything more is refused")
{
    if (geteuid() != 0)
        return skipCase("files of two users are needed, which only root can make");
    const TemporaryFolder folder;
    fs::permissions(folder.path(), fs::perms(0777));
    for (const Text& bytes : {v1Alone, withV2}) {
        const Text path = putSong(folder, bytes);
        fs::permissions(path, fs::perms(0666));
        const auto inode = statusOf(path).st_ino;
        const Text reason = answerOfNobody([&] { return writeTag(path, wanted); });
        CHECK((reason == "") == (bytes == v1Alone));
        CHECK(fileBytes(path) == (bytes == v1Alone ? audio + v1Tag({"New"}) : withV2));
        CHECK(statusOf(path).st_ino == inode);
        CHECK(statusOf(path).st_uid == 0);
        CHECK(holdsOnlyTheSong(folder));
    }
}

TEST_CASE("A disk without room leaves the old file and no copy")
{
    const TemporaryFolder folder;
    for (const Text& bytes : {withV2, v1Alone}) {
        const Text path = putSong(folder, bytes);
        const Text reason = answerOfChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{10'000, 10'000};
            setrlimit(RLIMIT_FSIZE, &limit);
            return writeTag(path, wanted);
        });
        CHECK(reason == "The copy could not be written: Disk full.");
        CHECK(fileBytes(path) == bytes);
        CHECK(holdsOnlyTheSong(folder));
    }
}

TEST_CASE("A full file system leaves the old file and no copy")
{
    const TemporaryFolder folder;
    const Text disk = folder / "disk";
    const SmallDisk small(disk, 64);
    const Text whole = mp3Frames(100) + v1Tag({"Old"});
    const Text path = disk + "/song.mp3";
    putFile(path, whole);
    CHECK(writeTag(path, wanted) == "The copy could not be written: Disk full.");
    CHECK(fileBytes(path) == whole);
    CHECK(namesInFolder(disk) == std::set<Text>{"song.mp3"});
}

TEST_CASE("A disk without room for the copy is told before anything is copied")
{
    const TemporaryFolder folder;
    const Text disk = folder / "disk";
    const SmallDisk small(disk, 11'000);
    const Text path = disk + "/song.mp3";
    const Text whole(6'000'000, 's');
    putFile(path, whole);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    int pieces = 0;
    const auto count = [&] { ++pieces; };
    CHECK(failureOf([&] {
              files::swapEnds({path, file, statusOf(path)}, {"", 0, whole.size(), ""}, noNotes, approved,
                              count);
          }) == 61);
    CHECK(pieces == 0);
    CHECK(fileBytes(path) == whole);
    CHECK(namesInFolder(disk) == std::set<Text>{"song.mp3"});
}

TEST_CASE("A file that is a mount of its own cannot be replaced: ID3v1 in its place, or a reason")
{
    const TemporaryFolder folder;
    for (const Text& bytes : {v1Alone, withV2}) {
        const Text source = putSong(folder, bytes, "source.mp3");
        const Text path = putSong(folder, "", "mounted.mp3");
        const Text result = answerOfChild([&]() -> Text {
            if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                mount(source.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
                return "no rights";
            const Text reason = writeTag(path, wanted);
            return namesInFolder(folder.path()).size() == 2 ? reason : "a copy stayed";
        });
        CAPTURE(result);
        if (result == "no rights")
            return skipCase("this process may not mount a file");
        CHECK(result ==
              (bytes == v1Alone ? "" : "The copy could not be put in the file's place: Permission denied."));
        CHECK(fileBytes(source) == (bytes == v1Alone ? audio + v1Tag({"New"}) : withV2));
    }
}

TEST_CASE("An immutable file is refused")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, v1Alone);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    int flags = 0;
    const bool hasFlags = ioctl(file.number(), FS_IOC_GETFLAGS, &flags) == 0;
    const int immutable = flags | FS_IMMUTABLE_FL;
    if (!hasFlags || ioctl(file.number(), FS_IOC_SETFLAGS, &immutable) != 0)
        return skipCase("no file can be made immutable here");
    const Text reason = writeTag(path, wanted);
    ioctl(file.number(), FS_IOC_SETFLAGS, &flags);
    CHECK(reason == "The file could not be opened for writing: Permission denied.");
    CHECK(fileBytes(path) == v1Alone);
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("A copy is noted before it is made, until it stands in the file's place or is gone")
{
    struct Book : PartNotes {
        void note(const Text& path) override
        {
            CHECK_FALSE(fs::exists(path));
            CHECK(path.ends_with(".part"));
            open.insert(path);
            ++noted;
        }
        void done(const Text& path) override
        {
            CHECK_FALSE(fs::exists(path));
            open.erase(path);
        }
        std::set<Text> open;
        int noted = 0;
    };
    const TemporaryFolder folder;
    const Text path = putSong(folder, withV2);
    Book book;
    CHECK(writeTag(path, wanted, book) == "");
    CHECK(book.noted == 1);
    CHECK(book.open.empty());

    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    const auto refuse = [&](const Text& copy) {
        CHECK(book.open == std::set<Text>{copy});
        throw Failure(Trouble::pathOrFileAccess);
    };
    CHECK(failureOf([&] {
              files::swapEnds({path, file, statusOf(path)}, {"", 0, 100, ""}, book, refuse);
          }) == 75);
    CHECK(book.noted == 2);
    CHECK(book.open.empty());
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("A writing costs one force to the disk")
{
    const TemporaryFolder folder;
    const Text roomy = v2Tag(3, v2Frame(3, "TIT2", latin1Text("Old")), 500) + mp3Frames(5000);
    for (const Text& bytes : {roomy, v1Alone, audio}) {
        const Text path = putSong(folder, bytes);
        ForcedDisk::forces = 0;
        CHECK(writeTag(path, wanted) == "");
        CHECK(ForcedDisk::forces == 1);
    }
}

TEST_CASE("Where the file system can, the copy shares the file's bytes, also where the tag behind them goes "
          "or grows")
{
    const TemporaryFolder folder;
    const Text bytes = mp3Frames(5000);
    const Text path = putSong(folder, bytes);
    for (const Text tail : {"", "longer than what was cut off"}) {
        const files::Descriptor file(open(path.c_str(), O_RDONLY));
        const Cloning system;
        files::swapEnds({path, file, statusOf(path)}, {"head", 4, bytes.size() - 10, tail}, noNotes,
                        approved);
        CHECK(clones == 1);
        CHECK(fileBytes(path) == "head" + bytes.substr(4, bytes.size() - 14) + tail);
        putSong(folder, bytes);
    }
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    const Cloning system;
    files::swapEnds({path, file, statusOf(path)}, {"head", 10, bytes.size(), ""}, noNotes, approved);
    CHECK(clones == 0); // the bytes have another place in the copy
    CHECK(fileBytes(path) == "head" + bytes.substr(10));
}

TEST_CASE("Writers of two files in one folder leave each other's copies alone")
{
    const TemporaryFolder folder(memoryFolder());
    const auto refusals = [&](const Text& name) {
        const Text path = putSong(folder, withV2, name);
        int count = 0;
        for (int i = 0; i < 200; ++i)
            count += writeTag(path, {std::to_string(i), "", "", "", 0, -1}) == "" ? 0 : 1;
        return count;
    };
    auto other = std::async(std::launch::async, refusals, "other.mp3");
    CHECK(refusals("song.mp3") == 0);
    CHECK(other.get() == 0);
    CHECK(namesInFolder(folder.path()) == std::set<Text>{"other.mp3", "song.mp3"});
}

TEST_CASE("What another program writes meanwhile is not undone")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, withV2);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    const files::StandingFile standing{path, file, statusOf(path)};
    putSong(folder, withV2 + "more");
    CHECK(failureOf([&] { files::swapEnds(standing, {"", 0, 100, ""}, noNotes, approved); }) == 75);
    CHECK(failureOf([&] { files::overwriteEnd(standing, 0, "TAG"); }) == 75);
    CHECK(fileBytes(path) == withV2 + "more");
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("However little another program changes meanwhile, it is not undone")
{
    const struct {
        const char* what;
        std::function<void(const Text&)> change;
    } cases[] = {
        {"a file of the same size in its place",
         [](const Text& path) {
             const auto time = fs::last_write_time(path);
             fs::copy_file(path, path + ".copy");
             fs::last_write_time(path + ".copy", time);
             fs::rename(path + ".copy", path);
         }},
        {"the same file, an hour later",
         [](const Text& path) {
             fs::last_write_time(path, fs::last_write_time(path) + std::chrono::hours(1));
         }},
        {"the same file, a moment later",
         [](const Text& path) {
             fs::last_write_time(path, fs::last_write_time(path) + std::chrono::nanoseconds(1));
         }},
        {"a link to another disk in its place",
         [](const Text& path) {
             fs::remove(path);
             fs::create_symlink("/proc/self/status", path);
         }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const TemporaryFolder folder;
        const Text path = putSong(folder, withV2);
        const files::Descriptor file(open(path.c_str(), O_RDONLY));
        const auto status = statusOf(path);
        c.change(path);
        CHECK(failureOf([&] {
                  files::swapEnds({path, file, status}, {"", 0, 100, ""}, noNotes, approved);
              }) == 75);
        CHECK(holdsOnlyTheSong(folder));
    }
}

TEST_CASE("A disk that fails under an ID3v1 tag which is written in its place")
{
    const struct {
        const char* what;
        const char* calls;
        FailingDisk::When when;
        const char* words;
        bool stands; // what stood there
    } cases[] = {
        {"at the writing", "pwrite", {.times = 1}, "The tag could not be written: Device I/O error.", true},
        {"at the forcing", "fdatasync", {}, "The tag could not be written: Device I/O error.", true},
        {"at every writing", "pwrite", {}, "The tag was written in part: Device I/O error.", true},
        {"at the forcing, and at cutting it off again",
         "fdatasync ftruncate",
         {},
         "The tag was written in part: Device I/O error.",
         true},
        {"at the reading of what stands there",
         "pread",
         {},
         "The file could not be read: Device I/O error.",
         true},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const TemporaryFolder folder;
        const Text path = putSong(folder, v1Alone);
        const files::Descriptor file(open(path.c_str(), O_RDONLY));
        Text words;
        {
            const FailingDisk failing(folder.path(), c.calls, EIO, c.when);
            guarded([&](const Failure& failure) { words = failure.description; },
                    [&] {
                        files::overwriteEnd({path, file, statusOf(path)}, audio.size(), v1Tag({"New"}));
                    });
            CHECK(failing.failures() > 0);
        }
        CHECK(words == c.words);
        CHECK((fileBytes(path) == v1Alone) == c.stands);
    }
}

TEST_CASE("A copy that shares the file's bytes and cannot be cut to its length does not take its place")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, v1Alone);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    const Cloning system;
    const FailingDisk failing(folder.path(), "ftruncate", EIO);
    CHECK(failureOf([&] {
              files::swapEnds({path, file, statusOf(path)}, {"", 0, audio.size(), ""}, noNotes, approved);
          }) == 57);
    CHECK(clones == 1);
    CHECK(fileBytes(path) == v1Alone);
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("An attribute that cannot be read is left out")
{
    const TemporaryFolder folder(memoryFolder());
    const Text path = putSong(folder, withV2);
    if (setxattr(path.c_str(), "user.rating", "5", 1, 0) != 0)
        return skipCase("this file system keeps no attributes");
    const FailingDisk failing(folder.path(), "fgetxattr", EIO);
    CHECK(writeTag(path, wanted) == "");
    CHECK(readTag(path).title == "New");
    char value = 0;
    CHECK(getxattr(path.c_str(), "user.rating", &value, 1) < 0);
}

TEST_CASE("What another program writes while the copy is looked at is not undone")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, withV2);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    const auto lookMeanwhile = [&](const Text&) { putSong(folder, withV2 + "more"); };
    CHECK(failureOf([&] {
              files::swapEnds({path, file, statusOf(path)}, {"", 0, 100, ""}, noNotes, lookMeanwhile);
          }) == 75);
    CHECK(fileBytes(path) == withV2 + "more");
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("A copy that is not approved does not take the file's place")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, "old");
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    Text seen;
    const auto refuse = [&](const Text& copy) {
        seen = fileBytes(copy);
        throw Failure(Trouble::pathOrFileAccess);
    };
    CHECK(failureOf([&] {
              files::swapEnds({path, file, statusOf(path)}, {"new ", 0, 3, ""}, noNotes, refuse);
          }) == 75);
    CHECK(seen == "new old");
    CHECK(fileBytes(path) == "old");
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("The new ends stand around exactly the bytes that were asked for")
{
    const TemporaryFolder folder;
    const Text bytes = mp3Frames(5000);
    const Text path = putSong(folder, bytes);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    files::swapEnds({path, file, statusOf(path)}, {"head", 10, bytes.size() - 10, "tail"}, noNotes, approved);
    CHECK(fileBytes(path) == "head" + bytes.substr(10, bytes.size() - 20) + "tail");
}

TEST_CASE("Bytes that the system does not copy by itself, as between two file systems, are copied by hand")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, "old");
    const files::Descriptor elsewhere(memfd_create("song", MFD_CLOEXEC));
    const Text bytes = mp3Frames(5000);
    REQUIRE(write(elsewhere.number(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    files::swapEnds({path, elsewhere, statusOf(path)}, {"head", 10, bytes.size() - 10, "tail"}, noNotes,
                    approved);
    CHECK(fileBytes(path) == "head" + bytes.substr(10, bytes.size() - 20) + "tail");
}

TEST_CASE("A file whose end cannot be read is not replaced by a shorter one")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, audio);
    const files::Descriptor file(open(path.c_str(), O_RDONLY));
    CHECK(failureOf([&] {
              files::swapEnds({path, file, statusOf(path)}, {"", 0, audio.size() + 1, ""}, noNotes, approved);
          }) == 57);
    CHECK(fileBytes(path) == audio);
    CHECK(holdsOnlyTheSong(folder));
}

TEST_CASE("Names of any bytes and of the greatest length are written")
{
    const TemporaryFolder folder;
    for (const Text& name : {Text("caf\xE9 \xFF \n.mp3"), Text(251, 'n') + ".mp3"}) {
        CAPTURE(name);
        CHECK(writeTag(putSong(folder, withV2, name), wanted) == "");
        CHECK(readTag(folder / name).title == "New");
    }
}
