// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/real_drives.h"

#include "files/descriptor.h"
#include "files/module.h"
#include "platform/failure.h"
#include "tests/support/disc_desk.h"
#include "tests/support/simulated_drive.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <fcntl.h>

#include <thread>

namespace
{

using Recorded = SimulatedDrive::Recorded;

constexpr std::uint8_t readCd = 0xBE, readContents = 0x43, testUnitReady = 0x00;
constexpr std::int32_t interval = 11400; // sectors between the first session's end and the second's sound

class KeptSound final : public disc::TrackSink
{
public:
    void take(std::vector<std::byte> samples) override
    {
        sound.append(reinterpret_cast<const char*>(samples.data()), samples.size());
        ++pieces;
        if (onPiece)
            onPiece();
    }

    Text sector(std::int32_t number) const
    {
        return sound.substr(std::size_t(number * bytesOfSector), bytesOfSector);
    }

    Text sound;
    int pieces = 0;
    std::function<void()> onPiece;
};

Text sectorsOfNoise(std::int32_t sectors, std::uint64_t seed = 1)
{
    return noise(sectors * bytesOfSector, seed);
}

// A drive and its reader.
struct Reading {
    SimulatedDrive drive;
    std::shared_ptr<disc::ReaderDrive> reader = disc::listRealReaders().at(0);
    KeptSound kept;
    std::stop_source stop;

    std::int32_t read(std::int16_t track) { return reader->readTrack(track, kept, stop.get_token()); }

    Text failureOf(std::int16_t track)
    {
        Text reason;
        guarded([&](const Failure& failure) { reason = failure.description; }, [&] { read(track); });
        return reason;
    }
};

Text shown(const disc::DiscContents& contents)
{
    Text all;
    for (const disc::DiscTrack& track : contents.tracks)
        all += (track.isAudio ? "sound " : "data ") + std::to_string(track.start) + '+' +
               std::to_string(track.sectors) + ", ";
    return all + "end " + std::to_string(contents.leadOut);
}

}

TEST_CASE("Every drive reads, under its own name and device")
{
    SimulatedDrive second(1, "MAKER", "DVD-ROM");
    SimulatedDrive first(0, "ACME", "CD-RW 4224");
    const auto readers = disc::listRealReaders();
    REQUIRE(readers.size() == 2);
    CHECK(readers[0]->name() == "ACME CD-RW 4224 (/dev/sr0)");
    CHECK(readers[0]->device() == "/dev/sr0");
    CHECK(readers[1]->name() == "MAKER DVD-ROM (/dev/sr1)");
    CHECK(readers[1]->device() == "/dev/sr1");
}

TEST_CASE("A disc's tracks have their places and lengths as sound")
{
    const Text data = Text(std::size_t(500 * bytesOfSector), 'd');
    struct Case {
        const char* disc;
        std::vector<Recorded> tracks;
        Text contents;
    };
    const Case cases[] = {
        {"sound alone",
         {{sectorsOfNoise(400)}, {sectorsOfNoise(300)}, {sectorsOfNoise(350)}},
         "sound 0+400, sound 400+300, sound 700+350, end 1050"},
        {"one track", {{sectorsOfNoise(300)}}, "sound 0+300, end 300"},
        {"a data track first, and a pause behind it",
         {{data, true}, {sectorsOfNoise(400), false, 1, 150}},
         "data 0+650, sound 650+400, end 1050"},
        {"a data track in a second session",
         {{sectorsOfNoise(400)}, {sectorsOfNoise(300)}, {data, true, 2}},
         "sound 0+400, sound 400+300, data " + std::to_string(700 + interval) + "+500, end " +
             std::to_string(700 + interval + 500)},
        {"sound in two sessions",
         {{sectorsOfNoise(400)}, {sectorsOfNoise(300), false, 2}, {sectorsOfNoise(350), false, 2}},
         "sound 0+400, sound " + std::to_string(400 + interval) + "+300, sound " +
             std::to_string(700 + interval) + "+350, end " + std::to_string(1050 + interval)},
        {"sound hidden before the first track",
         {{sectorsOfNoise(400), false, 1, 1000}, {sectorsOfNoise(300)}},
         "sound 1000+400, sound 1400+300, end 1700"},
        {"a pause between tracks",
         {{sectorsOfNoise(400)}, {sectorsOfNoise(300), false, 1, 150}},
         "sound 0+550, sound 550+300, end 850"},
        {"data alone", {{data, true}}, "data 0+500, end 500"},
    };
    Reading r;
    for (const auto& c : cases) {
        CAPTURE(c.disc);
        r.drive.insert(c.tracks);
        CHECK(shown(r.reader->contents()) == c.contents);
    }
}

TEST_CASE("A disc of 99 tracks has 99, and each is read as itself")
{
    Reading r;
    std::vector<Recorded> tracks;
    for (std::uint64_t seed = 1; seed <= 99; ++seed)
        tracks.push_back({sectorsOfNoise(300, seed)});
    r.drive.insert(tracks);
    const auto contents = r.reader->contents();
    REQUIRE(contents.tracks.size() == 99);
    CHECK(contents.tracks.back() == disc::DiscTrack{true, 98 * 300, 300});
    CHECK(contents.leadOut == 99 * 300);
    for (const std::int16_t number : {1, 50, 99}) {
        CAPTURE(number);
        r.kept = {};
        CHECK(r.read(number) == 0);
        CHECK((r.kept.sound == tracks[std::size_t(number) - 1].sound));
    }
}

TEST_CASE("Without a disc there are no tracks")
{
    Reading r;
    CHECK(r.reader->contents() == disc::DiscContents{});
    r.drive.insertBlank();
    CHECK(r.reader->contents().tracks.empty());
    CHECK(r.reader->contents().trouble == "The disc has no tracks that can be read.");
    r.drive.insert({{sectorsOfNoise(300)}});
    CHECK(r.reader->contents().tracks.size() == 1);
    r.drive.openTray();
    CHECK(r.reader->contents() == disc::DiscContents{});
    r.drive.takeOut();
    CHECK(r.reader->contents() == disc::DiscContents{});
}

TEST_CASE("A disc is read anew only when it is another")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(300)}});
    r.reader->contents();
    const int reads = r.drive.count(readCd);
    for (int i = 0; i < 20; ++i)
        r.reader->contents();
    CHECK(r.drive.count(readCd) == reads);
    r.drive.insert({{sectorsOfNoise(300)}, {sectorsOfNoise(300)}});
    CHECK(r.reader->contents().tracks.size() == 2);
    CHECK(r.drive.count(readCd) > reads);
}

TEST_CASE("No device is held open between calls")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(300)}});
    r.reader->contents();
    r.read(1);
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        CHECK(std::filesystem::read_symlink(entry, gone) != simulatedDrives.statePath(0));
    }
}

TEST_CASE("A track comes bit for bit, whatever it sounds like")
{
    Text tone;
    for (int frame = 0; frame < 300 * 588; ++frame)
        tone +=
            littleEndian(std::uint32_t(frame * 37 % 9000), 2) + littleEndian(std::uint32_t(frame % 5000), 2);
    struct Sound {
        const char* what;
        Text bytes;
    };
    const Sound sounds[] = {
        {"white noise", sectorsOfNoise(300)},
        {"white noise with its bytes swapped", swappedSamples(sectorsOfNoise(300))},
        {"a tone", tone},
        {"a tone with its bytes swapped", swappedSamples(tone)},
        {"silence", Text(std::size_t(300 * bytesOfSector), '\0')},
    };
    Reading r;
    for (const auto& sound : sounds) {
        CAPTURE(sound.what);
        r.drive.insert({{sectorsOfNoise(310, 2)}, {sound.bytes}, {sectorsOfNoise(320, 3)}});
        r.reader->contents();
        r.kept = {};
        CHECK(r.read(2) == 0);
        CHECK(r.kept.sound == sound.bytes);
    }
}

TEST_CASE("First, last and longer tracks come whole, and in large pieces")
{
    Reading r;
    const Text first = sectorsOfNoise(1234, 1), last = sectorsOfNoise(4321, 2);
    r.drive.insert({{first}, {last}});
    r.reader->contents();
    CHECK(r.read(1) == 0);
    CHECK(r.kept.sound == first);
    CHECK(r.kept.pieces < 10);
    r.kept = {};
    CHECK(r.read(2) == 0);
    CHECK(r.kept.sound == last);
}

TEST_CASE("A track comes without what is hidden before it, and with the pause behind it")
{
    Reading r;
    const Text first = sectorsOfNoise(400, 1), second = sectorsOfNoise(333, 2);
    r.drive.insert({{first, false, 1, 1000}, {second, false, 1, 150}});
    r.reader->contents();
    CHECK(r.read(1) == 0);
    CHECK((r.kept.sound == first + Text(std::size_t(150 * bytesOfSector), '\0')));
    r.kept = {};
    CHECK(r.read(2) == 0);
    CHECK((r.kept.sound == second));
}

TEST_CASE("Sound on an enhanced disc ends where its session does")
{
    Reading r;
    const Text last = sectorsOfNoise(333, 2);
    r.drive.insert({{sectorsOfNoise(400)}, {last}, {Text(std::size_t(500 * bytesOfSector), 'd'), true, 2}});
    r.reader->contents();
    CHECK(r.read(2) == 0);
    CHECK(r.kept.sound == last);
}

TEST_CASE("Sound of an earlier session ends where its session does")
{
    Reading r;
    const Text first = sectorsOfNoise(400, 1), second = sectorsOfNoise(333, 2);
    r.drive.insert({{first}, {second, false, 2}});
    r.reader->contents();
    CHECK(r.read(1) == 0);
    CHECK(r.kept.sound == first);
    r.kept = {};
    CHECK(r.read(2) == 0);
    CHECK(r.kept.sound == second);
}

TEST_CASE("Sound behind a data track comes whole")
{
    Reading r;
    const Text sound = sectorsOfNoise(333, 2);
    r.drive.insert({{Text(std::size_t(500 * bytesOfSector), 'd'), true}, {sound, false, 1, 150}});
    r.reader->contents();
    CHECK(r.read(2) == 0);
    CHECK(r.kept.sound == sound);
}

TEST_CASE("A sector that the drive reads at last is as it should be")
{
    for (const int failures : {1, 2, 3, 4, 5, 8}) {
        CAPTURE(failures);
        Reading r;
        const Text sound = sectorsOfNoise(400);
        r.drive.insert({{sectorsOfNoise(300, 2)}, {sound}});
        r.drive.damage(300 + 150, failures);
        r.reader->contents();
        CHECK(r.read(2) == 0);
        CHECK((r.kept.sound == sound));
    }
}

TEST_CASE("Sectors that cannot be read are silent and counted, and their neighbours whole")
{
    struct Case {
        const char* where;
        std::vector<std::int32_t> sectors;
    };
    const Case cases[] = {
        {"in the middle", {150}},
        {"two apart", {100, 220}},
        {"two together", {150, 151}},
        {"the first of the disc", {0}},
        {"the last of the disc", {399}},
        {"at a batch's border", {24, 25}},
        {"where the library looks for sound", {199, 200}},
        {"a scratch", {60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71, 72, 73, 74, 75, 76, 77, 78, 79}},
        {"every fifth", {5, 10, 15, 20, 25, 30, 35, 40}},
    };
    const Text sound = sectorsOfNoise(400);
    for (const auto& c : cases) {
        CAPTURE(c.where);
        Reading r;
        r.drive.insert({{sound}});
        for (const auto sector : c.sectors)
            r.drive.damage(sector);
        REQUIRE(r.reader->contents().tracks.size() == 1);
        CHECK(r.read(1) == int(c.sectors.size()));
        Text expected = sound;
        for (const auto sector : c.sectors)
            expected.replace(std::size_t(sector * bytesOfSector), bytesOfSector, bytesOfSector, '\0');
        CHECK((r.kept.sound == expected));
        CHECK(r.drive.count(readCd) < 20000);
    }
}

TEST_CASE("A long scratch costs few reads a sector")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(400)}});
    r.drive.change([](simulated::Drive& drive) {
        for (int i = 0; i < simulated::mostBadSectors; ++i)
            drive.medium.bad[drive.medium.badCount++] = {200 + i, -1};
    });
    r.reader->contents();
    CHECK(r.read(1) == simulated::mostBadSectors);
    CHECK(r.drive.count(readCd) < 4000);
}

TEST_CASE("Another disc than the one that was listed is not read")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(300)}});
    r.reader->contents();
    r.drive.insert({{sectorsOfNoise(400)}});
    CHECK(r.failureOf(1) == "There is another disc in the drive.");
    r.drive.openTray();
    CHECK(r.failureOf(1) == "There is no disc in the drive.");
    r.drive.takeOut();
    CHECK(r.failureOf(1) == "There is no disc in the drive.");
    CHECK(r.kept.sound.empty());
}

TEST_CASE("A disc that is taken out while it is read fails, and its rest is not taken for silence")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(2000)}});
    r.reader->contents();
    r.kept.onPiece = [&] { r.drive.openTray(); };
    CHECK(r.failureOf(1) == "The disc was taken out.");
    CHECK(r.kept.sound.size() < std::size_t(1000 * bytesOfSector));
}

TEST_CASE("A stop ends the reading soon, and what was read stays")
{
    Reading r;
    const Text sound = sectorsOfNoise(3000);
    r.drive.insert({{sound}});
    r.reader->contents();
    r.kept.onPiece = [&] { r.stop.request_stop(); };
    CHECK(r.read(1) == 0);
    CHECK(r.kept.sound.size() > 0);
    CHECK(r.kept.sound.size() < sound.size() / 2);
    CHECK(sound.starts_with(r.kept.sound));
}

TEST_CASE("A stop is heard while a bad sector is tried again and again")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(1000)}});
    r.drive.damage(500);
    r.drive.change([](simulated::Drive& drive) { drive.millisecondsToRead = 1; });
    r.reader->contents();
    int atStop = 0;
    {
        std::jthread stopper([&] {
            while (r.drive.count(readCd) < 60 && !r.stop.stop_requested())
                std::this_thread::yield();
            r.stop.request_stop();
            atStop = r.drive.count(readCd);
        });
        r.read(1);
    }
    CHECK(r.drive.count(readCd) < atStop + 10);
}

TEST_CASE("A slow drive shows how far it is")
{
    Reading r;
    r.drive.insert({{sectorsOfNoise(300)}});
    r.reader->contents();
    r.drive.change([](simulated::Drive& drive) { drive.millisecondsToRead = 5; });
    CHECK(r.read(1) == 0);
    CHECK(r.kept.pieces >= 3);
}

TEST_CASE("A drive that hangs has no disc, and holds nobody up for long")
{
    for (const auto command : {testUnitReady, readContents, readCd}) {
        CAPTURE(int(command));
        SimulatedDrive drive;
        const auto reader = files::bound<disc::RealDrives>()->makeReader({drive.device(), "Drive"},
                                                                         std::chrono::milliseconds(100));
        drive.insert({{sectorsOfNoise(300)}});
        drive.hangOn(command);
        const auto begin = std::chrono::steady_clock::now();
        CHECK(reader->contents().tracks.empty());
        for (int i = 0; i < 100; ++i)
            CHECK(reader->contents().trouble == "The drive does not answer.");
        CHECK(std::chrono::steady_clock::now() - begin < std::chrono::seconds(5));
        CHECK(waitUntil([&] { return drive.now().hanging == 1; }));
        drive.answerAgain();
        CHECK(waitUntil([&] { return reader->contents().tracks.size() == 1; }));
    }
}

TEST_CASE("A drive that is gone has no disc and reads nothing")
{
    auto drive = std::make_unique<SimulatedDrive>();
    drive->insert({{sectorsOfNoise(300)}});
    const auto reader = disc::listRealReaders().at(0);
    CHECK(reader->contents().tracks.size() == 1);
    drive.reset();
    KeptSound kept;
    CHECK(succeeds([&] { reader->readTrack(1, kept, {}); }) == false);
    CHECK(reader->contents().tracks.empty());
    CHECK(reader->contents().trouble.starts_with("The drive cannot be opened"));
    CHECK(disc::listRealReaders().empty());
}

TEST_CASE("Two drives are read at the same time")
{
    SimulatedDrive first(0), second(1);
    const Text one = sectorsOfNoise(800, 1), other = sectorsOfNoise(700, 2);
    first.insert({{one}});
    second.insert({{other}});
    second.damage(350);
    const auto readers = disc::listRealReaders();
    KeptSound keptOne, keptOther;
    std::int32_t lost = 0;
    readers[0]->contents();
    readers[1]->contents();
    {
        std::jthread reading([&] { lost = readers[1]->readTrack(1, keptOther, {}); });
        CHECK(readers[0]->readTrack(1, keptOne, {}) == 0);
    }
    CHECK(lost == 1);
    CHECK((keptOne.sound == one));
    CHECK(keptOther.sound.size() == other.size());
}

TEST_CASE("A drive that another program writes with is listed all the same")
{
    SimulatedDrive drive;
    drive.insert({{sectorsOfNoise(300)}});
    const files::Descriptor exclusive(open("/dev/sr0", O_RDWR | O_EXCL | O_NONBLOCK));
    REQUIRE(exclusive);
    CHECK(disc::listRealReaders().size() == 1);
}

TEST_CASE("A listing opens its drive once, and so does a look for another disc")
{
    SimulatedDrive drive;
    drive.insert({{sectorsOfNoise(300, 1)}, {sectorsOfNoise(310, 2)}, {sectorsOfNoise(320, 3)}});
    DiscDesk desk;
    const auto table = std::make_shared<disc::ReaderTable>(
        std::vector<disc::ListReaders>{disc::listRealReaders}, desk.devices);
    const auto reader =
        disc::makeDiscReader(table, desk.devices, desk.window, desk.shell, desk.parts, desk.sleepLock);
    reader->DriveCount();
    for (int listing = 0; listing < 2; ++listing) {
        const auto before = drive.now().opened;
        reader->SelectDrive(1);
        CHECK(table->contents(*table->drives().front()).tracks.size() == 3); // for the titles
        REQUIRE(reader->TrackCount() == 3);
        for (std::int16_t track = 1; track <= 3; ++track)
            for (int time = 0; time < 2; ++time)
                CHECK(reader->TrackLength(track) == (290 + 10 * track) * 1000 / 75);
        CHECK(drive.now().opened == before + 1);
    }
    drive.insert({{sectorsOfNoise(375)}});
    const auto before = drive.now().opened;
    reader->SelectDrive(1);
    CHECK(reader->TrackLength(1) == 5000);
    CHECK(reader->TrackLength(1) == 5000);
    CHECK(drive.now().opened == before + 1);
    CHECK(desk.shell.told().empty());
}
