// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/real_drives.h"

#include "files/descriptor.h"
#include "files/module.h"
#include "platform/failure.h"
#include "tests/support/disc_sounds.h"
#include "tests/support/simulated_drive.h"

#include <doctest/doctest.h>

#include <fcntl.h>

#include <thread>

namespace
{

using simulated::Kind;

constexpr std::uint8_t testUnitReady = 0x00, write10 = 0x2A;

// A recorder and the WAV files for it.
struct Recording {
    TemporaryFolder folder;
    SimulatedDrive drive;
    std::shared_ptr<disc::WriterDrive> writer = disc::listRealWriters().at(0);
    disc::WriteSettings settings{.speed = 4, .closeDisc = true, .simulate = false, .autoEject = false};
    std::vector<disc::CdSound> tracks;
    std::vector<std::int16_t> told;
    std::stop_source stop;
    std::function<void(std::int16_t)> onProgress = [](std::int16_t) {};

    Recording() { drive.insertBlank(); }

    Text add(std::int64_t bytes, std::uint64_t seed = 1)
    {
        Text sound = noise(bytes, seed);
        add(sound);
        return sound;
    }
    void add(const Text& sound)
    {
        const Text path = folder / (std::to_string(tracks.size()) + ".wav");
        putFile(path, wavFile(sound));
        tracks.push_back(disc::CdSound::open(path).value());
    }

    void write()
    {
        const auto run = writer->prepare(std::move(tracks), settings);
        tracks.clear();
        run->write(
            [this](std::int16_t percent) {
                told.push_back(percent);
                onProgress(percent);
            },
            stop.get_token());
    }

    // Why it failed; "" when it did not.
    Text failureOfWriting()
    {
        Text reason;
        guarded([&](const Failure& failure) { reason = failure.description; }, [&] { write(); });
        return reason;
    }

    std::vector<int> starts() const
    {
        std::vector<int> all;
        const auto disc = drive.medium();
        for (int i = 0; i < disc.trackCount; ++i)
            all.push_back(disc.tracks[i].start);
        return all;
    }
};

// As a disc holds it: whole sectors, at least four seconds.
Text onDisc(Text sound)
{
    const auto sectors = (std::int64_t(sound.size()) + bytesOfSector - 1) / bytesOfSector;
    sound.resize(std::size_t(std::max<std::int64_t>(sectors, 300) * bytesOfSector), '\0');
    return sound;
}

bool contains(const Text& text, std::string_view part) { return text.find(part) != Text::npos; }

}

TEST_CASE("Drives that record are writers, others are not, and none is touched for it")
{
    SimulatedDrive second(1, "MAKER", "DVD-ROM");
    SimulatedDrive first(0, "ACME", "CD-RW 4224");
    SimulatedDrive third(2, "OTHER", "Writer");
    second.change([](simulated::Drive& drive) { drive.canWrite = false; });
    const auto writers = disc::listRealWriters();
    REQUIRE(writers.size() == 2);
    CHECK(writers[0]->name() == "ACME CD-RW 4224 (/dev/sr0)");
    CHECK(writers[0]->device() == "/dev/sr0");
    CHECK(writers[0]->type() == 1);
    CHECK(writers[1]->name() == "OTHER Writer (/dev/sr2)");
    CHECK(first.now().opened == 0);
}

TEST_CASE("Only a blank or an unfinished CD can be written")
{
    Recording r;
    CHECK(r.writer->hasWritableDisc());
    r.drive.insertBlank(Kind::rewritable);
    CHECK(r.writer->hasWritableDisc());
    r.drive.insertBlank(Kind::dvd);
    CHECK_FALSE(r.writer->hasWritableDisc());
    r.drive.insert({{noise(300 * bytesOfSector)}});
    CHECK_FALSE(r.writer->hasWritableDisc());
    r.drive.takeOut();
    CHECK_FALSE(r.writer->hasWritableDisc());
    simulated::Medium disc{};
    disc.kind = Kind::recordable;
    disc.capacity = 359849;
    simulated::addTrack(disc, 0, 400, false);
    simulated::closeSession(disc, 400, false);
    r.drive.insert(disc);
    CHECK(r.writer->hasWritableDisc());
    disc.isClosed = true;
    r.drive.insert(disc);
    CHECK_FALSE(r.writer->hasWritableDisc());
    disc.isClosed = false;
    disc.isSpoiled = true;
    r.drive.insert(disc);
    CHECK_FALSE(r.writer->hasWritableDisc());
}

TEST_CASE("Asking for a disc closes the tray")
{
    Recording r;
    r.drive.openTray();
    CHECK(r.writer->hasWritableDisc());
    CHECK_FALSE(r.drive.now().trayIsOpen);
}

TEST_CASE("Tracks come onto the disc bit for bit, and back")
{
    Recording r;
    const Text first = r.add(400 * bytesOfSector, 1), second = r.add(333 * bytesOfSector, 2);
    r.write();
    const auto disc = r.drive.medium();
    CHECK(disc.trackCount == 2);
    CHECK(disc.sessions == 1);
    CHECK(disc.isClosed);
    CHECK(r.starts() == std::vector{0, 400});
    CHECK(disc.leadOuts[0] == 733);
    CHECK((r.drive.track(1) == first));
    CHECK((r.drive.track(2) == second));

    struct Kept final : disc::TrackSink {
        Text sound;
        void take(std::vector<std::byte> samples) override
        {
            sound.append(reinterpret_cast<const char*>(samples.data()), samples.size());
        }
    } kept;
    const auto reader = disc::listRealReaders().at(0);
    REQUIRE(reader->contents().tracks.size() == 2);
    CHECK(reader->readTrack(2, kept, {}) == 0);
    CHECK((kept.sound == second));
}

TEST_CASE("A track fills whole sectors and four seconds, silent behind its end")
{
    const std::int64_t lengths[] = {4,
                                    300 * bytesOfSector - 4,
                                    300 * bytesOfSector,
                                    300 * bytesOfSector + 4,
                                    4 * bytesOfSecond,
                                    350 * bytesOfSector + 1000};
    Recording r;
    std::vector<Text> sounds;
    for (const auto length : lengths)
        sounds.push_back(r.add(length, std::uint64_t(length)));
    r.write();
    CHECK(r.starts() == std::vector{0, 300, 600, 900, 1201, 1501});
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        CAPTURE(lengths[i]);
        CHECK((r.drive.track(int(i) + 1) == onDisc(sounds[i])));
    }
}

TEST_CASE("A disc takes 99 tracks")
{
    Recording r;
    for (int i = 0; i < 99; ++i)
        r.add(4, std::uint64_t(i) + 1);
    r.write();
    CHECK(r.drive.medium().trackCount == 99);
    CHECK(r.starts().back() == 98 * 300);
}

TEST_CASE("Progress goes over all tracks, rises, and never passes a hundred")
{
    Recording r;
    r.drive.change([](simulated::Drive& drive) { drive.millisecondsToWrite = 1; });
    for (int i = 0; i < 3; ++i)
        r.add(400 * bytesOfSector);
    r.write();
    REQUIRE(r.told.size() > 3);
    for (std::size_t i = 1; i < r.told.size(); ++i)
        CHECK(r.told[i] > r.told[i - 1]);
    CHECK(r.told.front() >= 0);
    CHECK(r.told.back() <= 100);
    CHECK(r.told.back() > 50);
}

TEST_CASE("The speed is the recorder's nearest to the factor")
{
    struct Speed {
        std::int16_t factor;
        int kilobytes;
    };
    for (const Speed& speed : {Speed{1, 177}, {4, 706}, {10, 1764}, {16, 2823}, {0, 177}, {-5, 177}}) {
        CAPTURE(speed.factor);
        Recording r;
        r.settings.speed = speed.factor;
        r.add(4);
        r.write();
        CHECK(r.drive.now().writeSpeed == speed.kilobytes);
    }
}

TEST_CASE("The tray opens behind a disc that was written, if it is to")
{
    for (const bool ejects : {false, true}) {
        Recording r;
        r.settings.autoEject = ejects;
        r.add(4);
        r.write();
        CHECK(r.drive.now().trayIsOpen == ejects);
        CHECK_FALSE(r.drive.now().isLocked);
    }
}

TEST_CASE("A simulated writing sends everything and leaves no mark")
{
    Recording r;
    r.settings.simulate = true;
    r.settings.autoEject = true;
    r.settings.closeDisc = false;
    r.add(400 * bytesOfSector);
    r.add(300 * bytesOfSector);
    r.write();
    CHECK(r.drive.now().written >= 700);
    CHECK(simulated::isBlank(r.drive.medium()));
    CHECK(r.drive.sectors(0, 700) == Text(std::size_t(700 * bytesOfSector), '\0'));
    CHECK_FALSE(r.drive.now().trayIsOpen);
    CHECK(r.writer->hasWritableDisc());
}

TEST_CASE("A disc that is left open takes more tracks, until one closes it")
{
    Recording r;
    r.settings.closeDisc = false;
    const Text first = r.add(400 * bytesOfSector, 1);
    r.write();
    REQUIRE_FALSE(r.drive.medium().isClosed);
    CHECK(r.writer->hasWritableDisc());

    const Text second = r.add(310 * bytesOfSector, 2), third = r.add(4, 3);
    r.write();
    auto disc = r.drive.medium();
    CHECK(disc.sessions == 2);
    CHECK(disc.trackCount == 3);
    CHECK_FALSE(disc.isClosed);

    r.settings.closeDisc = true;
    const Text fourth = r.add(320 * bytesOfSector, 4);
    r.write();
    disc = r.drive.medium();
    CHECK(disc.sessions == 3);
    CHECK(disc.isClosed);
    CHECK_FALSE(r.writer->hasWritableDisc());
    const Text sounds[] = {first, second, third, fourth};
    const auto listed = disc::listRealReaders().at(0)->contents();
    REQUIRE(listed.tracks.size() == 4);
    for (int i = 0; i < 4; ++i) {
        CAPTURE(i);
        CHECK((r.drive.track(i + 1) == onDisc(sounds[i])));
        CHECK(listed.tracks[std::size_t(i)].start == disc.tracks[i].start);
    }
    CHECK(listed.tracks[0].sectors == 400);
    CHECK(listed.tracks[2].sectors == 302);
    CHECK(listed.tracks[3].sectors == 322);
}

TEST_CASE("A simulated appending leaves the disc as it was")
{
    Recording r;
    r.settings.closeDisc = false;
    r.add(400 * bytesOfSector, 1);
    r.write();
    r.settings.simulate = true;
    r.add(310 * bytesOfSector, 2);
    r.add(320 * bytesOfSector, 3);
    r.write();
    CHECK(r.drive.medium().trackCount == 1);
    CHECK(r.drive.medium().sessions == 1);
    CHECK(r.writer->hasWritableDisc());
}

TEST_CASE("What cannot be written is refused before anything is, with the reason")
{
    struct Case {
        const char* what;
        std::function<void(Recording&)> make;
        const char* reason;
    };
    const Case cases[] = {
        {"no disc", [](Recording& r) { r.drive.takeOut(); }, "There is no disc in the recorder"},
        {"a pressed disc", [](Recording& r) { r.drive.insert({{noise(300 * bytesOfSector)}}); },
         "There is no disc in the recorder"},
        {"a DVD", [](Recording& r) { r.drive.insertBlank(Kind::dvd); }, "There is no disc in the recorder"},
        {"too long for the disc", [](Recording& r) { r.drive.insertBlank(Kind::recordable, 1200); },
         "too long for the disc"},
        {"simulating where the recorder cannot",
         [](Recording& r) {
             r.settings.simulate = true;
             r.drive.change([](simulated::Drive& drive) { drive.canSimulate = false; });
         },
         "cannot simulate"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Recording r;
        r.add(1000 * bytesOfSector);
        r.add(201 * bytesOfSector);
        c.make(r);
        CHECK(contains(r.failureOfWriting(), c.reason));
        CHECK(r.drive.count(write10) == 0);
        CHECK_FALSE(r.drive.now().isLocked);
    }
}

TEST_CASE("Tracks that just fit the disc are written")
{
    Recording r;
    r.drive.insertBlank(Kind::recordable, 1300);
    r.add(1000 * bytesOfSector);
    r.add(201 * bytesOfSector);
    CHECK(r.failureOfWriting() == "");
    CHECK(r.drive.medium().leadOuts[0] == 1300);
}

TEST_CASE("No more than 99 tracks come onto one disc, those of earlier sessions counted")
{
    Recording r;
    simulated::Medium disc{};
    disc.kind = Kind::recordable;
    disc.capacity = 359849;
    for (int i = 0; i < 98; ++i)
        simulated::addTrack(disc, i * 300, 300, false);
    simulated::closeSession(disc, 98 * 300, false);
    r.drive.insert(disc);
    r.add(4);
    r.add(4);
    CHECK(contains(r.failureOfWriting(), "99 tracks"));
    r.tracks.clear();
    r.add(4);
    CHECK(r.failureOfWriting() == "");
    CHECK(r.drive.medium().trackCount == 99);
}

TEST_CASE("A recorder that another program holds is refused, and has no disc")
{
    Recording r;
    r.add(4);
    const files::Descriptor other(open("/dev/sr0", O_RDWR | O_EXCL | O_NONBLOCK));
    REQUIRE(other);
    CHECK_FALSE(r.writer->hasWritableDisc());
    CHECK(contains(r.failureOfWriting(), "busy"));
}

TEST_CASE("A recorder that somebody merely reads is not refused")
{
    Recording r;
    r.add(4);
    const files::Descriptor other(open("/dev/sr0", O_RDONLY | O_NONBLOCK));
    CHECK(r.failureOfWriting() == "");
}

TEST_CASE("A recorder that is gone is refused")
{
    TemporaryFolder folder;
    putFile(folder / "a.wav", wavFile(noise(4)));
    std::shared_ptr<disc::WriterDrive> writer;
    {
        SimulatedDrive drive;
        writer = disc::listRealWriters().at(0);
    }
    std::vector<disc::CdSound> tracks;
    tracks.push_back(disc::CdSound::open(folder / "a.wav").value());
    CHECK_FALSE(writer->hasWritableDisc());
    CHECK_FALSE(succeeds([&] { writer->prepare(std::move(tracks), {}); }));
    CHECK(disc::listRealWriters().empty());
}

TEST_CASE("A failing write is told in the recorder's words, and the disc is not to be written again")
{
    Recording r;
    r.add(400 * bytesOfSector);
    r.settings.autoEject = true;
    r.drive.change([](simulated::Drive& drive) { drive.writeErrorAt = 200; });
    const Text reason = r.failureOfWriting();
    CAPTURE(reason);
    CHECK(contains(reason, "write"));
    CHECK(contains(reason, "3 0C 00"));
    CHECK_FALSE(r.writer->hasWritableDisc());
    CHECK_FALSE(r.drive.now().trayIsOpen);
    CHECK_FALSE(r.drive.now().isLocked);
}

TEST_CASE("A failing write to an unfinished disc keeps its earlier tracks")
{
    Recording r;
    r.settings.closeDisc = false;
    const Text first = r.add(400 * bytesOfSector, 1);
    r.write();
    r.drive.change([](simulated::Drive& drive) { drive.writeErrorAt = 400 + 11400 + 100; });
    r.add(400 * bytesOfSector, 2);
    CHECK(r.failureOfWriting() != "");
    CHECK((r.drive.track(1) == first));
    CHECK(disc::listRealReaders().at(0)->contents().tracks.at(0) == disc::DiscTrack{true, 0, 400});
}

TEST_CASE("A stop breaks the writing off, and the disc is not to be written again")
{
    Recording r;
    r.drive.change([](simulated::Drive& drive) { drive.millisecondsToWrite = 1; });
    r.add(3000 * bytesOfSector);
    r.onProgress = [&](std::int16_t percent) {
        if (percent > 0)
            r.stop.request_stop();
    };
    CHECK(r.failureOfWriting() == "");
    CHECK(r.drive.now().written < 2500);
    CHECK_FALSE(r.writer->hasWritableDisc());
    CHECK_FALSE(r.drive.now().isLocked);
}

TEST_CASE("A file that ends before its time leaves silence, and is told")
{
    Recording r;
    const Text sound = r.add(400 * bytesOfSector);
    std::filesystem::resize_file(r.folder / "0.wav", 44 + 100 * bytesOfSector);
    const Text reason = r.failureOfWriting();
    CHECK(contains(reason, r.folder / "0.wav"));
    CHECK(contains(reason, "silent"));
    CHECK((r.drive.track(1) ==
           onDisc(sound.substr(0, 100 * bytesOfSector)) + Text(std::size_t(100 * bytesOfSector), '\0')));
}

TEST_CASE("A run that is given up before it begins lets the recorder go")
{
    Recording r;
    r.add(4);
    r.writer->prepare(std::move(r.tracks), r.settings).reset();
    CHECK(simulated::isBlank(r.drive.medium()));
    CHECK_FALSE(r.drive.now().isLocked);
    const files::Descriptor other(open("/dev/sr0", O_RDWR | O_EXCL | O_NONBLOCK));
    CHECK(other);
}

TEST_CASE("A recorder that hangs holds nobody up for long, and is let go when it answers")
{
    Recording r;
    r.add(4);
    const auto writer = files::bound<disc::RealDrives>()->makeWriter({"/dev/sr0", "Recorder", true},
                                                                     std::chrono::milliseconds(100));
    r.drive.hangOn(testUnitReady);
    Text reason;
    guarded([&](const Failure& failure) { reason = failure.description; },
            [&] { writer->prepare(std::move(r.tracks), r.settings); });
    CHECK(contains(reason, "does not answer"));
    r.drive.answerAgain();
    while (!r.writer->hasWritableDisc())
        std::this_thread::yield();

    r.drive.hangOn(testUnitReady);
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i)
        CHECK_FALSE(writer->hasWritableDisc());
    CHECK(std::chrono::steady_clock::now() - begin < std::chrono::seconds(5));
    r.drive.answerAgain();
    while (!writer->hasWritableDisc())
        std::this_thread::yield();
}

TEST_CASE("Two recorders write at the same time")
{
    Recording one;
    SimulatedDrive second(1);
    second.insertBlank();
    const auto other = disc::listRealWriters().at(1);
    const Text sound = one.add(500 * bytesOfSector, 1);
    const Text path = one.folder / "other.wav", otherSound = noise(400 * bytesOfSector, 2);
    putFile(path, wavFile(otherSound));
    std::vector<disc::CdSound> tracks;
    tracks.push_back(disc::CdSound::open(path).value());
    const auto run = other->prepare(std::move(tracks), one.settings);
    std::thread writing([&] { run->write([](std::int16_t) {}, {}); });
    CHECK(one.failureOfWriting() == "");
    writing.join();
    CHECK((one.drive.track(1) == sound));
    CHECK((second.track(1) == otherSound));
}

TEST_CASE("A recorder can be asked for its disc as often as one likes")
{
    Recording r;
    for (int i = 0; i < 260; ++i)
        REQUIRE(r.writer->hasWritableDisc());
}
