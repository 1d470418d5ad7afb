// SPDX-License-Identifier: GPL-3.0-or-later
// What a file system that does not answer leaves of the rest of the program. Whatever waits for it takes a
// minute here: the bounds stand far below that and far above what a busy machine needs.
#include "tests/support/hung_share.h"

#include "desktop/folder_scan.h"
#include "desktop/mounted_drives.h"
#include "engines/codec/encode_jobs.h"
#include "files/account.h"
#include "files/disk_text_files.h"
#include "files/errand.h"
#include "files/file_to_open.h"
#include "files/patient_text_files.h"
#include "tests/support/answer_of_child.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/recordings.h"
#include "tests/support/skip.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

using namespace std::chrono_literals;

namespace
{

constexpr double bound = 30'000; // milliseconds
constexpr double atOnce = 1'000;

// A share with a song, next to a folder that answers.
struct Shares {
    SoundParts parts;
    Text share = parts.folder / "share";

    Shares()
    {
        std::filesystem::create_directory(share);
        putFile(share + "/song.mp3", mp3Bytes(noise(22050)));
        putFile(parts.folder / "song.mp3", mp3Bytes(noise(22050)));
    }
};

template <typename Work>
double timeOf(Work&& work)
{
    const auto then = std::chrono::steady_clock::now();
    work();
    return millisecondsSince(then);
}

// Of what is refused as often as it is tried: a busy machine adds to any single time, but not to every one.
template <typename Work>
double refusal(Work&& work)
{
    return atBest(atOnce, [&] { return timeOf(work); });
}

}

TEST_CASE("A look-up on a share that does not answer finds nothing, soon")
{
    Shares s;
    desktop::FolderScan scan;
    FoundFile found;
    DirectoryScan::Handle handle = 0;
    {
        const HungShare hung(s.share.c_str());
        CHECK(timeOf([&] { handle = scan.FindFirstFile(s.share + "/*.*", found); }) < bound);
        CHECK(handle == DirectoryScan::invalid);
        CHECK(holdsUp(hung, 1));
        CHECK(refusal([&] { handle = scan.FindFirstFile(s.share + "/song.mp3", found); }) < atOnce);
        CHECK(handle == DirectoryScan::invalid);
        CHECK(holdsUp(hung, 1));
        CHECK(scan.FindFirstFile(s.parts.folder / "*.*", found) != DirectoryScan::invalid);
    }
    const auto answers = [&] {
        return scan.FindFirstFile(s.share + "/*.*", found) != DirectoryScan::invalid;
    };
    CHECK(waitUntil(answers));
}

TEST_CASE("A link to a share that does not answer hides nothing but itself")
{
    Shares s;
    std::filesystem::create_directory(s.parts.folder / "here");
    putFile(s.parts.folder / "here/song.mp3", "");
    std::filesystem::create_directory_symlink(s.share, s.parts.folder / "here/far");
    const HungShare hung((s.parts.folder / "here/far").c_str());
    desktop::FolderScan scan;
    FoundFile found;
    CHECK(scan.FindFirstFile(s.parts.folder / "here/far", found) == DirectoryScan::invalid);
    CHECK(refusal([&] {
              CHECK(scan.FindFirstFile(s.parts.folder / "here/*.*", found) != DirectoryScan::invalid);
              CHECK(scan.FindFirstFile(s.parts.folder / "here/song.mp3", found) != DirectoryScan::invalid);
          }) < atOnce);
    CHECK(holdsUp(hung, 1));
}

TEST_CASE("A file on a share that does not answer is not open, soon; tried again it is refused at once")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    {
        const HungShare hung(s.share.c_str());
        CHECK(timeOf([&] { CHECK(s.parts.mp3->Open(song, "") != 0); }) < bound);
        CHECK(holdsUp(hung, 1));
        CHECK(refusal([&] { CHECK(s.parts.mp3->Open(song, "") != 0); }) < atOnce);
        CHECK(refusal([&] { s.parts.openWav(song); }) < atOnce);
        CHECK(refusal([&] { CHECK(s.parts.mp3->Open(song, s.parts.folder / "out.wav") != 0); }) < atOnce);
        CHECK(holdsUp(hung, 1));
        CHECK(s.parts.mp3->Open(s.parts.folder / "song.mp3", "") == 0);
    }
    CHECK(waitUntil([&] { return s.parts.mp3->Open(song, "") == 0; }));
}

TEST_CASE("A drive that does not answer is left out, and the others are listed")
{
    Shares s;
    const Text stick = s.parts.folder / "stick";
    std::filesystem::create_directory(stick);
    putFile(s.parts.folder / "mountinfo", "27 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                                          "30 27 8:17 / " +
                                              s.share +
                                              " rw - ext4 /dev/sdb1 rw\n"
                                              "31 27 8:18 / " +
                                              stick + " rw - vfat /dev/sdc1 rw\n");
    desktop::MountedDrives drives({.home = s.share, .mounts = s.parts.folder / "mountinfo", .labels = ""});
    std::vector<Drive> listed;
    {
        const HungShare hung(s.share.c_str());
        CHECK(timeOf([&] { listed = drives.all(); }) < bound);
        CHECK(listed == std::vector<Drive>{{"/", ""}, {stick, ""}});
        CHECK(holdsUp(hung, 1));
    }
    CHECK(waitUntil([&] { return drives.all().size() == 3; }));
}

TEST_CASE("An answer that comes late is told of, and the question may then be asked again")
{
    std::atomic<bool> answers{false};
    std::atomic<int> late{0};
    const std::function<int()> ask = [&] {
        while (!answers)
            std::this_thread::sleep_for(1ms);
        return 7;
    };
    const auto asked = [&] {
        return files::answerWithin<int>(10ms, "test", ask, [&](int answer) { late = answer; });
    };
    CHECK_FALSE(asked());
    CHECK_FALSE(asked());
    answers = true;
    REQUIRE(waitUntil([&] { return late == 7; }));
    CHECK(files::answerWithin<int>(30s, "test", ask) == 7);
}

TEST_CASE("A file whose share falls silent after its first bytes is not open, soon, and another is")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    {
        const HungShare hung(s.share.c_str(), HungShare::Holds::secondReads);
        CHECK(timeOf([&] { CHECK(s.parts.mp3->Open(song, "") != 0); }) < bound);
        CHECK(holdsUp(hung, 1));
        CHECK(refusal([&] { CHECK(s.parts.mp3->Open(song, "") != 0); }) < atOnce);
        CHECK(s.parts.mp3->Open(s.parts.folder / "song.mp3", "") == 0);
    }
    CHECK(waitUntil([&] { return s.parts.mp3->Open(song, "") == 0; }));
}

TEST_CASE("A file that a share's memory knows, and of which it gives no byte, is not to be opened, soon")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    {
        const HungShare hung(s.share.c_str(), HungShare::Holds::reads);
        CHECK(timeOf([&] { CHECK_FALSE(files::fileToOpen(song)); }) < bound);
        CHECK(holdsUp(hung, 1));
    }
    CHECK(waitUntil([&] { return files::fileToOpen(song) == song; }));
}

TEST_CASE("A song that opened late plays at the next try")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    {
        const HungShare hung(s.share.c_str(), HungShare::Holds::secondReads);
        CHECK(s.parts.mp3->Open(song, "") != 0);
    }
    REQUIRE(waitUntil([&] { return s.parts.mp3->Open(song, "") == 0; }));
    CHECK(s.parts.mp3->Length() > 400);
    s.parts.mp3->setTitle("late");
    s.parts.mp3->Close();
    s.parts.mp3->WriteTag();
    CHECK(s.parts.mp3->Open(song, "") == 0);
    CHECK(s.parts.mp3->Title() == "late");
}

TEST_CASE("Fields that a share no longer tells are empty, and are not written over the file's own")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    const Text before = fileBytes(song);
    REQUIRE(s.parts.mp3->Open(song, "") == 0);
    {
        const HungShare hung(s.share.c_str());
        CHECK(timeOf([&] { CHECK(s.parts.mp3->Title() == ""); }) < bound);
        CHECK(timeOf([&] {
                  CHECK(s.parts.mp3->Artist() == "");
                  s.parts.mp3->setTitle("new");
                  s.parts.mp3->WriteTag();
              }) < atOnce);
    }
    CHECK(fileBytes(song) == before);
    CHECK(s.parts.shell.notes == std::vector<Text>{"The tag was not saved|" + song + ": " + files::noAnswer});
}

TEST_CASE("A tag is not saved on a share that fell silent after its fields were read, and it is told soon")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    const Text before = fileBytes(song);
    REQUIRE(s.parts.mp3->Open(song, "") == 0);
    s.parts.mp3->setTitle("new");
    {
        const HungShare hung(s.share.c_str());
        CHECK(timeOf([&] { s.parts.mp3->WriteTag(); }) < bound);
    }
    CHECK(fileBytes(song) == before);
    CHECK(s.parts.shell.notes == std::vector<Text>{"The tag was not saved|" + song + ": " + files::noAnswer});
}

TEST_CASE("A tag whose copy stands still on its way is given up, the file stays, and no copy is left")
{
    Shares s;
    const Text song = s.share + "/song.mp3";
    const Text before = fileBytes(song);
    REQUIRE(s.parts.mp3->Open(song, "") == 0);
    s.parts.mp3->setTitle("new");
    {
        const HungShare hung(s.share.c_str(), HungShare::Holds::writings);
        CHECK(timeOf([&] { s.parts.mp3->WriteTag(); }) < bound);
        CHECK(holdsUp(hung, 1));
        CHECK(refusal([&] { CHECK(s.parts.mp3->Open(song, "") != 0); }) < atOnce);
    }
    CHECK(s.parts.shell.notes.front() == "The tag was not saved|" + song + ": " + files::noAnswer);
    REQUIRE(waitUntil([&] { return s.parts.mp3->Open(song, "") == 0; }));
    CHECK(fileBytes(song) == before);
    CHECK(namesInFolder(s.share) == std::set<Text>{"song.mp3"});
}

TEST_CASE("A conversion from or to a share that does not answer is refused, soon")
{
    Shares s;
    const Text wav = putWav(s.parts.folder / "near.wav", noise(22050));
    const Text farWav = putWav(s.share + "/far.wav", noise(22050));
    const Text song = s.parts.folder / "song.mp3";
    const auto encoder = codec::makeEncodeJobs(s.parts.post, s.parts.shell, NoPartNotes::instance());
    {
        const HungShare hung(s.share.c_str());
        const Text to = s.share + "/out";
        CHECK(timeOf([&] { CHECK(encoder->Open(wav, to) != 0); }) < bound);
        CHECK(timeOf([&] { CHECK(encoder->Open(farWav, s.parts.folder / "out.mp3") != 0); }) < bound);
        CHECK(timeOf([&] { CHECK(s.parts.mp3->Open(song, to) != 0); }) < bound);
        CHECK(holdsUp(hung, 3));
    }
    CHECK(waitUntil([&] { return encoder->Open(wav, s.share + "/out") == 0; }));
}

namespace
{

// Lists as the windows open and save them.
struct Lists {
    TemporaryFolder folder;
    Text share = folder / "share";
    Text list = share + "/list.vlp";
    std::shared_ptr<files::DiskTextFiles> disk =
        std::make_shared<files::DiskTextFiles>(NoPartNotes::instance());
    files::PatientTextFiles files{disk, 1s};
    files::PatientTextFiles patient{disk}; // for what answers, however busy the machine is

    Lists()
    {
        std::filesystem::create_directory(share);
        putFile(list, "/old.mp3\r\n");
    }

    void save(const Text& path) { saveBy(files, path); }

    static void saveBy(files::PatientTextFiles& files, const Text& path)
    {
        const auto output = files.openForOutput(path);
        output->write("/new.mp3\r\n");
        output->finish();
    }
};

}

TEST_CASE("A list on a share that does not answer is neither read nor written, soon")
{
    Lists l;
    {
        const HungShare hung(l.share.c_str());
        CHECK(timeOf([&] { CHECK(failureOf([&] { l.files.length(l.list); }) == 68); }) < bound);
        CHECK(refusal([&] {
                  CHECK(failureOf([&] { l.files.readWhole(l.list); }) == 68);
                  CHECK(failureOf([&] { l.files.openForOutput(l.list); }) == 68);
              }) < atOnce);
        CHECK(timeOf([&] { CHECK(failureOf([&] { l.save(l.share + "/new.vlp"); }) == 68); }) < bound);
        CHECK(holdsUp(hung, 2));
        Lists::saveBy(l.patient, l.folder / "near.vlp");
        CHECK(l.patient.readWhole(l.folder / "near.vlp") == "/new.mp3\r\n");
    }
    CHECK(waitUntil([&] { return failureOf([&] { l.files.length(l.list); }) == 0; }));
    CHECK(l.patient.readWhole(l.list) == "/old.mp3\r\n");
    CHECK(waitUntil([&] { return namesInFolder(l.share) == std::set<Text>{"list.vlp"}; }));
}

TEST_CASE("A list whose share falls silent while it is saved is given up, and stays whole")
{
    Lists l;
    const auto output = l.files.openForOutput(l.list);
    output->write("/new.mp3\r\n");
    {
        const HungShare hung(l.share.c_str());
        CHECK(timeOf([&] { CHECK(failureOf([&] { output->finish(); }) == 68); }) < bound);
        CHECK(holdsUp(hung, 1));
        CHECK(refusal([&] { CHECK(failureOf([&] { l.save(l.list); }) == 68); }) < atOnce);
    }
    CHECK(waitUntil([&] { return failureOf([&] { l.save(l.list); }) == 0; }));
    CHECK(fileBytes(l.list) == "/new.mp3\r\n");
    CHECK(namesInFolder(l.share) == std::set<Text>{"list.vlp"});
}

TEST_CASE("A list that is given up on a share that fell silent holds nobody up")
{
    Lists l;
    auto output = l.files.openForOutput(l.list);
    {
        const HungShare hung(l.share.c_str());
        CHECK(timeOf([&] { output.reset(); }) < bound);
    }
    CHECK(waitUntil([&] { return namesInFolder(l.share) == std::set<Text>{"list.vlp"}; }));
    CHECK(fileBytes(l.list) == "/old.mp3\r\n");
}

TEST_CASE("A patient output says what the disk says")
{
    Lists l;
    CHECK(failureOf([&] { l.patient.readWhole(l.share + "/missing.vlp"); }) == 53);
    CHECK(failureOf([&] { l.patient.length(l.share + "/missing.vlp"); }) == 53);
    CHECK(failureOf([&] { l.patient.openForOutput(l.share + "/missing/list.vlp"); }) == 76);
    CHECK(l.patient.length(l.list) == 10);
    Lists::saveBy(l.patient, l.list);
    CHECK(fileBytes(l.list) == "/new.mp3\r\n");
    l.patient.keepBackup(l.list, "rows");
    CHECK(fileBytes(l.list + ".bak") == "rows");
    CHECK_FALSE(l.patient.stillHolds(l.list, 1));
    const auto output = l.patient.openForOutput(l.list);
    output->finish(1);
    CHECK(l.patient.stillHolds(l.list, 1));
}

TEST_CASE("A user whom the database does not know has no name and no home")
{
    if (geteuid() != 0)
        return skipCase("only root can become a user whom nobody knows");
    CHECK(answerOfChild([] {
              endUnless(setresuid(54321, 54321, 54321) == 0, 1);
              const auto account = files::accountOfUser();
              return "name: " + account.name + ", home: " + account.home;
          }) == "name: , home: ");
}

TEST_CASE("The user database tells who runs the program")
{
    CHECK(waitUntil([] { return files::accountOfUser().name != ""; }));
    CHECK(waitUntil([] { return files::accountOfUser().home.starts_with('/'); }));
}
