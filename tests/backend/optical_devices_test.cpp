// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/optical_devices.h"

#include "tests/support/simulated_drive.h"

#include <doctest/doctest.h>

TEST_CASE("The system's list of drives is read column by column")
{
    struct Case {
        const char* list;
        const char* text;
        std::vector<disc::ListedDrive> drives;
    };
    const Case cases[] = {
        {"two drives, the newer first",
         "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\ndrive name:\t\tsr1\tsr0\ndrive "
         "speed:\t\t48\t24\n"
         "Can write CD-R:\t\t0\t1\nCan write CD-RW:\t1\t0\n\n",
         {{"sr0", true}, {"sr1", false}}},
        {"ten and more",
         "drive name:\tsr10\tsr9\tsr2\nCan write CD-R:\t1\t0\t1\n",
         {{"sr2", true}, {"sr9", false}, {"sr10", true}}},
        {"no drive", "CD-ROM information\n\ndrive name:\t\ndrive speed:\t\n\n", {}},
        {"nothing", "", {}},
        {"a column too few", "drive name:\tsr1\tsr0\nCan write CD-R:\t1\n", {{"sr0", false}, {"sr1", true}}},
        {"nothing about recording", "drive name:\tsr0\n", {{"sr0", false}}},
        {"names that lead elsewhere", "drive name:\t../sda\tsr0\t.\n", {{"sr0", false}}},
        {"without an end of line", "drive name: sr0", {{"sr0", false}}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.list);
        CHECK(disc::drivesIn(c.text) == c.drives);
    }
}

TEST_CASE("Without a drive there is none") { CHECK(disc::opticalDevices().empty()); }

TEST_CASE("Drives are named by what they say of themselves and their device, and none is touched")
{
    SimulatedDrive second(1, "MAKER", "DVD-ROM");
    SimulatedDrive first(0, "ACME", "CD-RW 4224");
    second.change([](simulated::Drive& drive) { drive.canWrite = false; });
    CHECK(disc::opticalDevices() ==
          std::vector<disc::OpticalDevice>{{"/dev/sr0", "ACME CD-RW 4224 (/dev/sr0)", true},
                                           {"/dev/sr1", "MAKER DVD-ROM (/dev/sr1)", false}});
    CHECK(first.now().opened == 0);
    CHECK(second.now().opened == 0);
}

TEST_CASE("A drive that says nothing of itself still has a name")
{
    SimulatedDrive drive(3, "", "");
    REQUIRE(disc::opticalDevices().size() == 1);
    CHECK(disc::opticalDevices().front().name == "CD drive (/dev/sr3)");
    SimulatedDrive other(4, "", "Model");
    CHECK(disc::opticalDevices().back().name == "Model (/dev/sr4)");
}

TEST_CASE("Drives appear and vanish")
{
    const auto first = std::make_unique<SimulatedDrive>(0);
    {
        SimulatedDrive second(1);
        CHECK(disc::opticalDevices().size() == 2);
    }
    CHECK(disc::opticalDevices().size() == 1);
}
