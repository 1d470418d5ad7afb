// SPDX-License-Identifier: GPL-3.0-or-later
// A disk whose every force takes half a second, as a memory card's may: nobody who writes a list notices.
#include "files/disk_profile_file.h"
#include "files/disk_text_files.h"
#include "files/forces.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/forced_disk.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <linux/magic.h>

#include <algorithm>

using namespace std::chrono_literals;

namespace
{

struct Desk {
    TemporaryFolder folder;
    Text list = folder / "deflist.vlp";
    Text ini = folder / "vlmset.ini";
    files::DiskTextFiles texts{NoPartNotes::instance()};
    files::DiskProfileFile profile{texts};

    void save(const Text& rows, std::uint64_t revision = 0)
    {
        const auto output = texts.openForOutput(list);
        output->write(rows);
        output->finish(revision);
    }
    bool keep(const Text& value) { return profile.write("Playlist Editor", "PlayList", value, ini); }
};

}

TEST_CASE("Who saves a list or a profile waits for no force, and reads what was written")
{
    Desk desk;
    const ForcedDisk slow(500ms);
    const int before = ForcedDisk::forces;
    ForcedDisk::forcesOfThisThread = 0;
    std::vector<double> each;
    for (int i = 0; i < 100; ++i) {
        const auto then = std::chrono::steady_clock::now();
        desk.save("/music/" + std::to_string(i) + ".mp3\r\n", i % 2 == 0 ? 0 : static_cast<std::uint64_t>(i));
        CHECK(desk.keep("/lists/" + std::to_string(i)));
        CHECK(desk.texts.readWhole(desk.list) == "/music/" + std::to_string(i) + ".mp3\r\n");
        each.push_back(millisecondsSince(then));
    }
    CHECK(ForcedDisk::forcesOfThisThread == 0);
    std::ranges::sort(each);
    CHECK(each[50] < 50); // a busy machine takes some of them away
    CHECK(waitUntil([&] { return ForcedDisk::forces > before; }));
}

TEST_CASE("Where a name may be on the disk before its bytes, a list has its name when the disk has it")
{
    struct XfsDisk {
        XfsDisk() { ForcedDisk::fileSystem = XFS_SUPER_MAGIC; }
        ~XfsDisk()
        {
            ForcedDisk::fileSystem = EXT4_SUPER_MAGIC;
            ForcedDisk::beforeForce = nullptr;
        }
    };
    Desk desk;
    desk.save("/music/old.mp3\r\n");
    const XfsDisk xfs;
    std::vector<Text> stoodThen;
    ForcedDisk::beforeForce = [&] { stoodThen.push_back(fileBytes(desk.list)); };
    desk.save("/music/new.mp3\r\n");
    CHECK(stoodThen == std::vector<Text>{"/music/old.mp3\r\n"});
    CHECK(fileBytes(desk.list) == "/music/new.mp3\r\n");
}

TEST_CASE("The end of the program leaves a slow disk to the system")
{
    const auto ending = [] {
        auto desk = std::make_unique<Desk>();
        const ForcedDisk slow(500ms);
        desk->save("/music/a.mp3\r\n");
        const auto then = std::chrono::steady_clock::now();
        desk.reset();
        return millisecondsSince(then);
    };
    CHECK(atBest(400, ending) < 400);
}

TEST_CASE("Files are forced in the order in which they came, one that is written again once")
{
    const TemporaryFolder folder;
    const ForcedDisk slow(200ms);
    files::Forces forces;
    const int before = ForcedDisk::forces;
    for (int i = 0; i < 20; ++i) {
        putFile(folder / "a", std::to_string(i));
        forces.add(folder / "a", files::Descriptor(open((folder / "a").c_str(), O_RDONLY | O_CLOEXEC)));
    }
    forces.finish();
    const int made = ForcedDisk::forces - before;
    CHECK(made >= 2); // the file and its folder
    CHECK(made < 20);
}

TEST_CASE("A file that the disk does not take for good is told of")
{
    Text told;
    files::Forces forces([&](const Text& path) { told = path; });
    forces.add("/music/mine.vlp", files::Descriptor(open("/dev/full", O_PATH | O_CLOEXEC))); // takes no force
    forces.finish();
    CHECK(told == "/music/mine.vlp");
}

TEST_CASE("A kill while the disk is behind leaves the list and the profile that were written last")
{
    const Desk desk;
    const TemporaryFolder ofKilled;
    Child child([&] {
        const ForcedDisk slow(500ms);
        Desk own{.folder = TemporaryFolder(ofKilled.path())};
        own.list = desk.list;
        own.ini = desk.ini;
        for (int i = 0; i < 10; ++i) {
            own.save(std::to_string(i));
            own.keep(std::to_string(i));
        }
        raise(SIGKILL);
    });
    CHECK(child.wait() == 128 + SIGKILL);
    CHECK(fileBytes(desk.list) == "9");
    CHECK(fileBytes(desk.ini) == "[Playlist Editor]\r\nPlayList=9\r\n");
    CHECK(namesInFolder(desk.folder.path()) == std::set<Text>{"deflist.vlp", "vlmset.ini"});
}
