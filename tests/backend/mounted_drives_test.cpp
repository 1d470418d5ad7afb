// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/mounted_drives.h"

#include "desktop/mounts.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

namespace
{

// A computer whose table of mounts, labels and devices lie in a folder of the test's own.
struct Computer {
    TemporaryFolder folder;
    Text home = folder / "home";
    Text table = "27 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n";

    Computer()
    {
        for (const char* name : {"home", "labels"})
            std::filesystem::create_directory(folder / name);
    }

    // A mount at a folder of the test's own, which is made.
    Text mount(const char* name, const Text& device, const Text& type, const Text& source)
    {
        std::filesystem::create_directory(folder / name);
        line(folder / name, device, type, source);
        return folder / name;
    }
    void line(const Text& at, const Text& device, const Text& type, const Text& source)
    {
        table += "30 27 " + device + " / " + at + " rw,nosuid shared:5 master:1 - " + type + " " + source +
                 " rw\n";
    }
    void label(const char* device, const Text& label)
    {
        std::filesystem::create_symlink(device, folder / ("labels/" + label));
    }
    std::vector<Drive> drives()
    {
        putFile(folder / "mountinfo", table);
        return desktop::MountedDrives({home, folder / "mountinfo", folder / "labels"}).all();
    }
    std::vector<Text> paths()
    {
        std::vector<Text> paths;
        for (const Drive& drive : drives())
            paths.push_back(drive.path);
        return paths;
    }
};

}

TEST_CASE("The tree and the home folder are always there")
{
    Computer computer;
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home});
    computer.table = "";
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home});
}

TEST_CASE("Without a home folder of its own there is the tree alone")
{
    Computer computer;
    for (const Text& home : {Text("/"), computer.folder / "none", Text()}) {
        CAPTURE(home);
        computer.home = home;
        CHECK(computer.paths() == std::vector<Text>{"/"});
    }
}

TEST_CASE("Disks, sticks and shares follow by path")
{
    Computer computer;
    const Text stick = computer.mount("stick", "8:17", "vfat", "/dev/sdb1");
    const Text disc = computer.mount("disc", "11:0", "iso9660", "/dev/sr0");
    const Text share = computer.mount("share", "0:50", "nfs4", "nas:/music");
    const Text pool = computer.mount("pool", "0:60", "zfs", "tank/music");
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home, disc, pool, share, stick});
}

TEST_CASE("What no person mounted is left out")
{
    const struct {
        const char* what;
        const char* at; // "" for a folder of the test's own
        const char* type;
        const char* source;
    } cases[] = {
        {"a snap", "", "squashfs", "/dev/loop3"},
        {"memory", "", "tmpfs", "tmpfs"},
        {"layers", "", "overlay", "overlay"},
        {"a trap for shares", "", "autofs", "systemd-1"},
        {"memory among the sticks", "/mnt/x", "tmpfs", "tmpfs"},
        {"a service", "", "cgroup2", "cgroup"},
        {"a service of the desktop", "/run/user/1000/doc", "fuse.portal", "portal"},
        {"the boot disk", "/boot", "ext4", "/dev/sda2"},
        {"the firmware's disk", "/boot/efi", "vfat", "/dev/sda3"},
        {"a disk for the system's data", "/var", "ext4", "/dev/sda4"},
        {"a file", "/etc/hostname", "ext4", "/dev/sdc1"},
        {"a folder that is gone", "/mnt/velmora-none", "ext4", "/dev/sdc1"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Computer computer;
        if (*c.at)
            computer.line(c.at, "7:3", c.type, c.source);
        else
            computer.mount("place", "7:3", c.type, c.source);
        CHECK(computer.paths() == std::vector<Text>{"/", computer.home});
    }
}

TEST_CASE("What a person mounted below one of the system's folders is offered")
{
    Computer computer;
    computer.line("/run/media/alice/share", "0:50", "cifs", "//server/share");
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home, "/run/media/alice/share"});
}

TEST_CASE("A device is offered once, at the first place where it can be read")
{
    Computer computer;
    const Text stick = computer.mount("stick", "8:17", "vfat", "/dev/sdb1");
    computer.mount("again", "8:17", "vfat", "/dev/sdb1");
    computer.mount("the tree again", "8:1", "ext4", "/dev/sda1");
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home, stick});
}

TEST_CASE("The disk that home lies on is offered as home")
{
    Computer computer;
    computer.line(computer.folder.path(), "8:2", "ext4", "/dev/sda2");
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home});
}

TEST_CASE("A mount that another one hides is not what stands there")
{
    Computer computer;
    computer.mount("place", "8:17", "vfat", "/dev/sdb1");
    computer.mount("place", "0:70", "tmpfs", "tmpfs");
    CHECK(computer.paths() == std::vector<Text>{"/", computer.home});
}

TEST_CASE("A disk that this user may not read is left out")
{
    Computer computer;
    const Text stick = computer.mount("stick", "8:17", "ext4", "/dev/sdb1");
    chmod(stick.c_str(), 0);
    chmod(computer.folder.path().c_str(), 0777);
    Child child([&] {
        becomeNobody();
        endUnless(computer.paths() == std::vector<Text>{"/", computer.home}, 1);
    });
    CHECK(child.wait() == 0);
}

TEST_CASE("Labels stand beside the paths")
{
    Computer computer;
    computer.label("/dev/zero", "OTHER");
    computer.label("/dev/null", "MY\\x20MUSIC\\x2f1");
    computer.label("/dev/none", "GONE");
    computer.mount("a", "8:17", "vfat", "/dev/null");
    computer.mount("b", "8:18", "vfat", "/dev/no-such-device");
    computer.mount("c", "0:50", "cifs", "//nas/my\\040music");
    const auto drives = computer.drives();
    REQUIRE(drives.size() == 5);
    CHECK(drives[0].label.empty());
    CHECK(drives[1].label.empty());
    CHECK(drives[2].label == "MY MUSIC/1");
    CHECK(drives[3].label.empty());
    CHECK(drives[4].label == "//nas/my music");
}

TEST_CASE("Lines of the table are taken apart as they are meant")
{
    const auto mounts = desktop::mountsIn(
        "36 35 98:0 /mnt1 /mnt\\0402\\134\\011x rw master:1 tag:2 - ext3 /dev/root rw,errors=1\n"
        "37 35 98:1 / /no/tags rw - ext4 /dev/sdb1\n"
        "\n"
        "rubbish\n"
        "38 35 98:2 / /cut rw -\n"
        "39 35 98:3 / /short - ext4 x\n"
        "40 35 98:4 / /odd\\09x\\ rw - ext4 none rw");
    REQUIRE(mounts.size() == 3);
    CHECK(mounts[0].device == "98:0");
    CHECK(mounts[0].folder == "/mnt 2\\\tx");
    CHECK(mounts[0].type == "ext3");
    CHECK(mounts[0].source == "/dev/root");
    CHECK(mounts[1].folder == "/no/tags");
    CHECK(mounts[2].folder == "/odd\\09x\\");
    CHECK(desktop::mountsIn("").empty());
}

TEST_CASE("A path lies on the device of the innermost mount, the later of two at one place")
{
    const std::vector<desktop::Mount> mounts = {
        {"1", "/", "", ""}, {"2", "/home", "", ""}, {"3", "/home/bob/x", "", ""}, {"4", "/home", "", ""}};
    CHECK(desktop::deviceOf(mounts, "/") == "1");
    CHECK(desktop::deviceOf(mounts, "/homes") == "1");
    CHECK(desktop::deviceOf(mounts, "/home") == "4");
    CHECK(desktop::deviceOf(mounts, "/home/bob") == "4");
    CHECK(desktop::deviceOf(mounts, "/home/bob/x/y") == "3");
    CHECK(desktop::deviceOf({}, "/").empty());
}

TEST_CASE("This system's own drives begin with the tree and can all be read")
{
    const auto drives = desktop::MountedDrives({.home = "/root"}).all();
    REQUIRE(!drives.empty());
    CHECK(drives.front().path == "/");
    for (const Drive& drive : drives)
        CHECK(std::filesystem::is_directory(drive.path));
}
