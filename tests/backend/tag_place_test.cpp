// Where and under what rights a tag is written: what becomes of the file, its names and its folder.
#include "platform/tags/tag_file.h"

#include "platform/failure.h"
#include "platform/tags/file_swap.h"
#include "tests/support/child_process.h"
#include "tests/support/mp3_files.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <csignal>

#include <fcntl.h>
#include <linux/fs.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/xattr.h>

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

void giveToNobody(const Text& path)
{
    if (geteuid() == 0)
        REQUIRE(chown(path.c_str(), nobody, nobody) == 0);
}

// What writing says in a folder that does not permit new files, with the file's bytes afterwards.
struct Outcome {
    Text reason;
    Text bytes;
    bool sameFile;
};

Outcome writtenInClosedFolder(const Text& bytes, const Tag& tag)
{
    const TestFolder folder;
    const Text path = folder.put(bytes);
    giveToNobody(path);
    giveToNobody(folder.path(""));
    const auto inode = statusOf(path).st_ino;
    fs::permissions(folder.path(""), fs::perms(0555));
    const Text reason = inChildOfNobody([&] { return writeTag(path, tag); });
    fs::permissions(folder.path(""), fs::perms(0755));
    CHECK(folder.names().size() == 1);
    return {reason, contentOf(path), statusOf(path).st_ino == inode};
}

}

TEST_CASE("Mode, owner and attributes of a file are kept, and its time is new")
{
    const TestFolder folder;
    const Text path = folder.put(withV2);
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
    const TestFolder folder;
    const TestFolder other;
    const Text path = other.put(withV2);
    fs::create_symlink(path, other.path("one.mp3"));
    fs::create_symlink(other.path("one.mp3"), folder.path("two.mp3"));
    CHECK(writeTag(folder.path("two.mp3"), wanted) == "");
    CHECK(fs::is_symlink(folder.path("two.mp3")));
    CHECK(fs::is_symlink(other.path("one.mp3")));
    CHECK_FALSE(fs::is_symlink(path));
    CHECK(readTag(path).title == "New");
    CHECK(folder.names().size() == 1);
    CHECK(other.names().size() == 2);
}

TEST_CASE("A link that leads nowhere, in a circle or to no file is refused and makes no file")
{
    const TestFolder folder;
    fs::create_symlink("missing.mp3", folder.path("dangling.mp3"));
    fs::create_symlink("circle.mp3", folder.path("circle.mp3"));
    fs::create_symlink("/dev/zero", folder.path("device.mp3"));
    fs::create_symlink(".", folder.path("folder.mp3"));
    for (const Text name : {"dangling.mp3", "circle.mp3", "device.mp3", "folder.mp3", "none.mp3", ""}) {
        CAPTURE(name);
        CHECK(writeTag(folder.path(name), wanted) != "");
    }
    CHECK(writeTag("", wanted) != "");
    CHECK(folder.names().size() == 4);
}

TEST_CASE("A pipe is refused at once")
{
    const TestFolder folder;
    REQUIRE(mkfifo(folder.path("pipe.mp3").c_str(), 0600) == 0);
    CHECK(writeTag(folder.path("pipe.mp3"), wanted) != "");
}

TEST_CASE("Another hard link goes on naming the old file, whole")
{
    const TestFolder folder;
    const Text path = folder.put(withV2);
    fs::create_hard_link(path, folder.path("other.mp3"));
    CHECK(writeTag(path, wanted) == "");
    CHECK(readTag(path).title == "New");
    CHECK(contentOf(folder.path("other.mp3")) == withV2);
    CHECK(statusOf(path).st_nlink == 1);
}

TEST_CASE("A write-protected file is refused, also for an administrator")
{
    const TestFolder folder;
    const Text path = folder.put(v1Alone);
    fs::permissions(path, fs::perms(0444));
    CHECK(writeTag(path, wanted) == "The file is write-protected: Permission denied.");
    CHECK(contentOf(path) == v1Alone);
    CHECK(folder.names().size() == 1);
}

TEST_CASE("A file that only others may write is refused")
{
    if (geteuid() != 0)
        return;
    const TestFolder folder;
    fs::permissions(folder.path(""), fs::perms(0777));
    const Text path = folder.put(v1Alone);
    fs::permissions(path, fs::perms(0644));
    CHECK(inChildOfNobody([&] { return writeTag(path, wanted); }) != "");
    CHECK(contentOf(path) == v1Alone);
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
        return;
    const TestFolder folder;
    fs::permissions(folder.path(""), fs::perms(0777));
    for (const Text& bytes : {v1Alone, withV2}) {
        const Text path = folder.put(bytes);
        fs::permissions(path, fs::perms(0666));
        const auto inode = statusOf(path).st_ino;
        const Text reason = inChildOfNobody([&] { return writeTag(path, wanted); });
        CHECK((reason == "") == (bytes == v1Alone));
        CHECK(contentOf(path) == (bytes == v1Alone ? audio + v1Tag({"New"}) : withV2));
        CHECK(statusOf(path).st_ino == inode);
        CHECK(statusOf(path).st_uid == 0);
        CHECK(folder.names().size() == 1);
    }
}

TEST_CASE("A disk without room leaves the old file and no copy")
{
    const TestFolder folder;
    for (const Text& bytes : {withV2, v1Alone}) {
        const Text path = folder.put(bytes);
        const Text reason = inChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{10'000, 10'000};
            setrlimit(RLIMIT_FSIZE, &limit);
            return writeTag(path, wanted);
        });
        CHECK(reason == "The copy could not be written: Disk full.");
        CHECK(contentOf(path) == bytes);
        CHECK(folder.names().size() == 1);
    }
}

TEST_CASE("A full file system leaves the old file and no copy")
{
    const TestFolder folder;
    const Text result = inChild([&]() -> Text {
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", folder.path("").c_str(), "tmpfs", 0, "size=64k") != 0)
            return "no rights";
        const Text path = folder.put(mp3Frames(100) + v1Tag({"Old"}));
        const Text reason = writeTag(path, wanted);
        const bool whole = contentOf(path) == mp3Frames(100) + v1Tag({"Old"});
        return whole && folder.names().size() == 1 ? reason : "the file is damaged";
    });
    const bool expected = result == "no rights" || result == "The copy could not be written: Disk full.";
    CAPTURE(result);
    CHECK(expected);
}

TEST_CASE("A file that is a mount of its own cannot be replaced: ID3v1 in its place, or a reason")
{
    const TestFolder folder;
    for (const Text& bytes : {v1Alone, withV2}) {
        const Text source = folder.put(bytes, "source.mp3");
        const Text path = folder.put("", "mounted.mp3");
        const Text result = inChild([&]() -> Text {
            if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
                mount(source.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
                return "no rights";
            const Text reason = writeTag(path, wanted);
            return folder.names().size() == 2 ? reason : "a copy stayed";
        });
        CAPTURE(result);
        if (result == "no rights")
            return;
        CHECK(result ==
              (bytes == v1Alone ? "" : "The copy could not be put in the file's place: Permission denied."));
        CHECK(contentOf(source) == (bytes == v1Alone ? audio + v1Tag({"New"}) : withV2));
    }
}

TEST_CASE("An immutable file is refused")
{
    const TestFolder folder;
    const Text path = folder.put(v1Alone);
    const OpenFile file = openForReading(path);
    int flags = 0;
    if (ioctl(file.descriptor(), FS_IOC_GETFLAGS, &flags) != 0)
        return;
    const int immutable = flags | FS_IMMUTABLE_FL;
    if (ioctl(file.descriptor(), FS_IOC_SETFLAGS, &immutable) != 0)
        return;
    const Text reason = writeTag(path, wanted);
    ioctl(file.descriptor(), FS_IOC_SETFLAGS, &flags);
    CHECK(reason == "The file could not be opened for writing: Permission denied.");
    CHECK(contentOf(path) == v1Alone);
    CHECK(folder.names().size() == 1);
}

TEST_CASE(
    "A copy that a crash left is removed by the next writing in the folder; one at work and other files stay")
{
    const TestFolder folder;
    const Text path = folder.put(withV2);
    folder.put("half a song", ".velmora-tag-abcdefgh.part");
    const OpenFile atWork = openForReading(folder.put("at work", ".velmora-tag-atworknw.part"));
    REQUIRE(flock(atWork.descriptor(), LOCK_EX) == 0);
    folder.put("a person's", ".velmora-tag-mine.part");
    folder.put("a person's", "velmora-tag-abcdefgh.part");
    REQUIRE(mkfifo(folder.path(".velmora-tag-pipepipe.part").c_str(), 0600) == 0);
    fs::create_directory(folder.path(".velmora-tag-folderxx.part"));

    CHECK(writeTag(path, wanted) == "");
    auto names = folder.names();
    std::sort(names.begin(), names.end());
    CHECK(names == std::vector<Text>{".velmora-tag-atworknw.part", ".velmora-tag-folderxx.part",
                                     ".velmora-tag-mine.part", ".velmora-tag-pipepipe.part", "song.mp3",
                                     "velmora-tag-abcdefgh.part"});
}

TEST_CASE("What another program writes meanwhile is not undone")
{
    const TestFolder folder;
    const Text path = folder.put(withV2);
    const OpenFile file = openForReading(path);
    const struct stat known = file.status();
    folder.put(withV2 + "more");
    Text reason;
    guarded([&](const Failure& failure) { reason = failure.description; },
            [&] {
                swapEnds(file, path, known, {"", 0, 100, ""});
            });
    CHECK(reason == "Another program has changed the file meanwhile.");
    CHECK(contentOf(path) == withV2 + "more");
    CHECK(folder.names().size() == 1);
}

TEST_CASE("The new ends stand around exactly the bytes that were asked for")
{
    const TestFolder folder;
    const Text bytes = mp3Frames(5000);
    const Text path = folder.put(bytes);
    swapEnds(openForReading(path), path, statusOf(path), {"head", 10, bytes.size() - 10, "tail"});
    CHECK(contentOf(path) == "head" + bytes.substr(10, bytes.size() - 20) + "tail");
}

TEST_CASE("Bytes that the system does not copy by itself, as between two file systems, are copied by hand")
{
    const TestFolder folder;
    const Text path = folder.put("old");
    const OpenFile elsewhere(memfd_create("song", MFD_CLOEXEC));
    const Text bytes = mp3Frames(5000);
    REQUIRE(writeAt(elsewhere, bytes, 0));
    swapEnds(elsewhere, path, statusOf(path), {"head", 10, bytes.size() - 10, "tail"});
    CHECK(contentOf(path) == "head" + bytes.substr(10, bytes.size() - 20) + "tail");
}

TEST_CASE("Names of any bytes and of the greatest length are written")
{
    const TestFolder folder;
    for (const Text& name : {Text("caf\xE9 \xFF \n.mp3"), Text(251, 'n') + ".mp3"}) {
        CAPTURE(name);
        CHECK(writeTag(folder.put(withV2, name), wanted) == "");
        CHECK(readTag(folder.path(name)).title == "New");
    }
}
