// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/discs.h"

#include "engines/disc/disc_id.h"
#include "platform/cd_base.h"
#include "tests/support/disc_desk.h"
#include "tests/support/loopback_server.h"
#include "tests/support/simulated_drive.h"
#include "tests/support/timing.h"

#include <doctest/doctest.h>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::uint8_t readCd = 0xBE;

// The program's own controls, over the drives that there are.
struct Drives {
    SimulatedDrive drive;
    DiscDesk desk;
    disc::Discs discs{desk.folders, desk.folder / "titles"};
    std::unique_ptr<ACD> reader = discs.makeReader(desk.window, desk.shell, desk.parts, desk.sleepLock);
    std::unique_ptr<ACDWRITE> writer = discs.makeWriter(desk.window, desk.shell, desk.parts, desk.sleepLock);
    Heard<ACD> heard{desk.window, *reader};
    Heard<ACDWRITE> heardWriting{desk.window, *writer};
    Text wav = desk.output + "/Track1.wav";

    Drives() { writer->setAutoEject(false); }

    Text addTrack(std::int64_t bytes, std::uint64_t seed)
    {
        const Text path = desk.output + "/in" + std::to_string(seed) + ".wav";
        const Text sound = noise(bytes, seed);
        putFile(path, wavFile(sound));
        CHECK(writer->AddTrack(path, 0) == 0);
        return sound;
    }

    bool told(std::string_view part) const
    {
        for (const Text& message : desk.shell.told())
            if (message.find(part) != Text::npos)
                return true;
        return false;
    }
};

}

TEST_CASE("WAV files go onto a disc and come back from it bit for bit")
{
    Drives d;
    d.drive.insertBlank();
    REQUIRE(d.writer->Init() == 0);
    CHECK(d.writer->DriveCount() == 2);
    CHECK(d.writer->DriveName(0) == "ACME CD-RW 4224 (/dev/sr0)");
    d.writer->SelectDrive(0);
    CHECK(d.writer->WriterType() == 1);
    d.writer->setCloseDisc(true);
    const Text sounds[] = {d.addTrack(400 * bytesOfSector, 1), d.addTrack(310 * bytesOfSector, 2)};
    CHECK(d.writer->CheckMedia() == 0);
    REQUIRE(d.writer->Write() == 0);
    REQUIRE(d.heardWriting.end());
    CHECK(d.heardWriting.rises());
    CHECK(d.heardWriting.progress.back() == 100);
    CHECK(d.desk.shell.told().empty());

    CHECK(d.reader->DriveCount() == 1);
    CHECK(d.reader->DriveName(1) == "ACME CD-RW 4224 (/dev/sr0)");
    REQUIRE(d.reader->TrackCount() == 2);
    CHECK(d.reader->TrackLength(1) == 400 * 1000 / 75);
    for (const std::int16_t track : {1, 2}) {
        CAPTURE(track);
        d.heard.done = 0;
        REQUIRE(d.reader->ReadTrack(track, d.wav) == 0);
        REQUIRE(d.heard.end());
        CHECK((soundOfWav(d.wav) == sounds[track - 1]));
    }
    CHECK(d.desk.shell.told().empty());
}

TEST_CASE("Without any drive the controls answer at once, and images are made and read")
{
    DiscDesk desk;
    const disc::Discs discs(desk.folders, desk.folder / "titles");
    const auto reader = discs.makeReader(desk.window, desk.shell, desk.parts, desk.sleepLock);
    const auto writer = discs.makeWriter(desk.window, desk.shell, desk.parts, desk.sleepLock);
    const auto titles = discs.makeTitles(std::make_shared<NoPartNotes>());
    const auto asking = [&] {
        const auto begin = Clock::now();
        CHECK(reader->Init() == 0);
        CHECK(reader->DriveCount() == 1);
        CHECK(reader->DriveName(1) == "Disc image: none");
        reader->SelectDrive(1);
        CHECK(reader->TrackCount() == 0);
        CHECK(reader->TrackLength(1) == 0);
        titles->setDevice(titles->DefaultDevice());
        titles->setTimeLimit(30000);
        titles->setCommand("Open");
        titles->Lookup();
        CHECK(titles->TrackTitle(1) == "");
        CHECK(writer->Init() == 0);
        CHECK(writer->DriveCount() == 1);
        CHECK(writer->DriveName(0) == "Disc image recorder");
        CHECK(writer->CheckMedia() == 0);
        return millisecondsSince(begin);
    };
    CHECK(atBest(2000, asking) < 2000);

    putFile(desk.output + "/in.wav", wavFile(noise(400 * bytesOfSector)));
    REQUIRE(writer->AddTrack(desk.output + "/in.wav", 0) == 0);
    Heard<ACDWRITE> heard{desk.window, *writer};
    REQUIRE(writer->Write() == 0);
    REQUIRE(heard.end());
    CHECK(reader->DriveCount() == 1);
    CHECK(reader->DriveName(1).starts_with("Disc image: Disc "));
    CHECK(reader->TrackCount() == 1);
}

TEST_CASE("A drive that appears is listed at the next look, and one that vanishes makes place for the first")
{
    DiscDesk desk;
    const disc::Discs discs(desk.folders, desk.folder / "titles");
    const auto reader = discs.makeReader(desk.window, desk.shell, desk.parts, desk.sleepLock);
    CHECK(reader->DriveCount() == 1);
    SimulatedDrive first(0);
    first.insert({{noise(300 * bytesOfSector)}});
    auto second = std::make_unique<SimulatedDrive>(1, "MAKER", "DVD-ROM");
    second->insert({{noise(300 * bytesOfSector)}, {noise(310 * bytesOfSector)}});
    CHECK(reader->DriveName(1) == "Disc image: none");
    CHECK(reader->DriveCount() == 2);
    reader->SelectDrive(2);
    CHECK(reader->TrackCount() == 2);
    second.reset();
    reader->SelectDrive(2);
    CHECK(reader->TrackCount() == 0);
    CHECK(reader->DriveCount() == 1);
    CHECK(reader->DriveName(1) == "ACME CD-RW 4224 (/dev/sr0)");
    CHECK(reader->TrackCount() == 1);
}

TEST_CASE("A disc check that is given up holds nothing and keeps the tracks")
{
    Drives d;
    d.writer->Init();
    const Text sound = d.addTrack(400 * bytesOfSector, 1);
    CHECK(d.writer->CheckMedia() != 0);
    d.drive.insert({{noise(300 * bytesOfSector)}});
    CHECK(d.writer->CheckMedia() != 0);
    CHECK_FALSE(d.drive.now().isLocked);
    d.reader->DriveCount();
    CHECK(d.reader->TrackCount() == 1);

    d.drive.insertBlank();
    CHECK(d.writer->CheckMedia() == 0);
    REQUIRE(d.writer->Write() == 0);
    REQUIRE(d.heardWriting.end());
    CHECK((d.drive.track(1) == sound));
}

TEST_CASE("A drive comes before the images, and its number stays when it has no disc")
{
    Drives d;
    putFile(d.desk.discs + "/Disc.bin", noise(300 * bytesOfSector));
    putFile(d.desk.discs + "/Disc.cue", sheetOf("Disc.bin", {"00:00:00"}));
    CHECK(d.reader->DriveCount() == 2);
    CHECK(d.reader->DriveName(1) == "ACME CD-RW 4224 (/dev/sr0)");
    CHECK(d.reader->DriveName(2) == "Disc image: Disc");
    CHECK(d.reader->TrackCount() == 0);
    d.reader->SelectDrive(2);
    CHECK(d.reader->TrackCount() == 1);
}

TEST_CASE("A data track is a row without a length that cannot be read")
{
    Drives d;
    d.drive.insert(
        {{Text(std::size_t(500 * bytesOfSector), 'd'), true}, {noise(300 * bytesOfSector), false, 1, 150}});
    d.reader->DriveCount();
    CHECK(d.reader->TrackCount() == 2);
    CHECK(d.reader->TrackLength(1) == 0);
    CHECK(d.reader->TrackLength(2) == 4000);
    CHECK(d.reader->ReadTrack(1, d.wav) != 0);
    CHECK(d.heard.end());
    CHECK_FALSE(std::filesystem::exists(d.wav));
}

TEST_CASE("Damage on a disc is told, and the file has the track's whole length")
{
    Drives d;
    d.drive.insert({{noise(400 * bytesOfSector)}});
    d.drive.damage(100);
    d.drive.damage(200);
    d.reader->DriveCount();
    REQUIRE(d.reader->TrackCount() == 1);
    REQUIRE(d.reader->ReadTrack(1, d.wav) == 0);
    REQUIRE(d.heard.end());
    CHECK(soundOfWav(d.wav).size() == std::size_t(400 * bytesOfSector));
    CHECK(d.told("could not be read and are silent: 2."));
}

TEST_CASE("Stop answers at once on a drive that hangs, and keeps what was read")
{
    Drives d;
    const Text sound = noise(3000 * bytesOfSector);
    d.drive.insert({{sound}});
    d.drive.change([](simulated::Drive& drive) { drive.millisecondsToRead = 1; });
    d.reader->DriveCount();
    REQUIRE(d.reader->TrackCount() == 1);
    const double quickest = atBest(100, [&] {
        d.heard.done = 0;
        d.heard.progress.clear();
        REQUIRE(d.reader->ReadTrack(1, d.wav) == 0);
        REQUIRE(d.desk.window.runUntil([&] { return !d.heard.progress.empty() || d.heard.done > 0; }));
        d.drive.hangOn(readCd);
        d.drive.waitUntilItHangs();
        const auto begin = Clock::now();
        d.reader->Stop();
        REQUIRE(d.heard.end());
        const double took = millisecondsSince(begin);
        const Text kept = soundOfWav(d.wav);
        CHECK(kept.size() > 0);
        CHECK(sound.starts_with(kept));
        CHECK(d.reader->TrackCount() == 1);
        d.drive.answerAgain();
        return took;
    });
    CHECK(quickest < 100);

    d.drive.change([](simulated::Drive& drive) { drive.millisecondsToRead = 0; });
    d.heard.done = 0;
    REQUIRE(d.reader->ReadTrack(1, d.wav) == 0);
    REQUIRE(d.heard.end());
    CHECK((soundOfWav(d.wav) == sound));
}

TEST_CASE("A read that fails in the middle leaves no file and tells why")
{
    Drives d;
    d.drive.insert({{noise(3000 * bytesOfSector)}});
    d.drive.change([](simulated::Drive& drive) { drive.millisecondsToRead = 1; });
    d.reader->DriveCount();
    REQUIRE(d.reader->TrackCount() == 1);
    REQUIRE(d.reader->ReadTrack(1, d.wav) == 0);
    REQUIRE(d.desk.window.runUntil([&] { return !d.heard.progress.empty() || d.heard.done > 0; }));
    d.drive.openTray();
    REQUIRE(d.heard.end());
    CHECK_FALSE(std::filesystem::exists(d.wav));
    CHECK(d.told("The disc was taken out."));
}

TEST_CASE("While a disc is written its drive is not read, and answers as it was last seen")
{
    Drives d;
    d.drive.insertBlank();
    d.drive.change([](simulated::Drive& drive) { drive.millisecondsToWrite = 1; });
    d.reader->DriveCount();
    CHECK(d.reader->TrackCount() == 0);
    d.writer->Init();
    d.addTrack(1000 * bytesOfSector, 1);
    REQUIRE(d.writer->Write() == 0);
    CHECK(d.writer->CheckMedia() == 0);
    CHECK(d.reader->TrackCount() == 0);
    CHECK(d.drive.count(readCd) == 0);
    REQUIRE(d.heardWriting.end());
    d.reader->SelectDrive(1);
    CHECK(d.reader->TrackCount() == 1);
}

TEST_CASE("A writing that fails tells the recorder's reason, and ends")
{
    Drives d;
    d.drive.insertBlank();
    d.drive.change([](simulated::Drive& drive) { drive.writeErrorAt = 100; });
    d.writer->Init();
    d.addTrack(400 * bytesOfSector, 1);
    REQUIRE(d.writer->Write() == 0);
    REQUIRE(d.heardWriting.end());
    CHECK(d.told("3 0C 00"));
    CHECK(d.writer->CheckMedia() != 0);
}

TEST_CASE("A writing that is refused has no end and tells why")
{
    Drives d;
    d.writer->Init();
    d.addTrack(4, 1);
    CHECK(d.writer->CheckMedia() != 0);
    CHECK(d.writer->Write() != 0);
    d.desk.window.runPosted();
    CHECK(d.heardWriting.done == 0);
    CHECK(d.told("There is no disc in the recorder"));
}

TEST_CASE("Titles are looked up for the disc in the first drive")
{
    Drives d;
    d.drive.insert({{noise(400 * bytesOfSector)}, {noise(300 * bytesOfSector)}});
    const Text id = disc::discId({{{true, 0, 400}, {true, 400, 300}}, 700});
    LoopbackServer server([&](const Text& target, const LoopbackServer::Client& client) {
        const bool isQuery = fieldOf(target, "cmd").starts_with("cddb query " + id + " 2 150 550 ");
        client.sendPage(isQuery ? "200 rock " + id + " A / B\r\n"
                                : "210 rock x\r\nDTITLE=A / B\r\nTTITLE1=Two\r\n.\r\n");
    });
    const auto titles =
        d.discs.makeTitles(std::make_shared<NoPartNotes>(), {.addresses = {server.address()}});
    CHECK(titles->DefaultDevice() == d.reader->DriveName(1));
    titles->setDevice(titles->DefaultDevice());
    titles->setTimeLimit(20000);
    titles->setCommand("Open");
    titles->Lookup();
    CHECK(titles->DiscArtist() == "A");
    CHECK(titles->TrackTitle(2) == "Two");
    REQUIRE(server.requests().size() == 2);
    CHECK(d.reader->TrackCount() == 2);
}
