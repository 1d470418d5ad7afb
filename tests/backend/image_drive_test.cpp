// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "tests/support/child.h"
#include "tests/support/disc_desk.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace
{

class KeptSound final : public disc::TrackSink
{
public:
    void take(std::vector<std::byte> samples) override
    {
        sound.append(reinterpret_cast<const char*>(samples.data()), samples.size());
    }

    Text sound;
};

// A folder with a sheet `disc.cue` and its drive.
struct Disc {
    TemporaryFolder folder;
    std::shared_ptr<disc::ReaderDrive> drive = disc::makeImageDrive(folder / "disc.cue");

    explicit Disc(const Text& sheet) { putFile(folder / "disc.cue", sheet); }

    Text track(std::int16_t number) const
    {
        drive->contents();
        return trackAsListed(number);
    }

    Text trackAsListed(std::int16_t number) const
    {
        KeptSound sink;
        CHECK(drive->readTrack(number, sink, {}) == 0);
        return sink.sound;
    }

    // The reason for which a track cannot be read; "" when it can.
    Text refusal(std::int16_t number) const
    {
        KeptSound sink;
        Text reason;
        guarded([&](const Failure& failure) { reason = failure.description; },
                [&] { drive->readTrack(number, sink, {}); });
        return reason;
    }
};

const Text silence(300 * bytesOfSector, '\0');
const char* const oneTrack = "FILE a.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n";

std::vector<Text> namesOf(const disc::ListReaders& list)
{
    std::vector<Text> names;
    for (const auto& drive : list())
        names.push_back(drive->name());
    return names;
}

void setAge(const Text& path, int seconds)
{
    const timespec time{1'700'000'000 - seconds, 0};
    const timespec times[] = {time, time};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
}

}

TEST_CASE("Tracks are read bit for bit, one megabyte and more")
{
    const Disc disc(sheetOf("a.bin", {"00:00:00", "00:30:01"}));
    const Text sound = noise(3000 * bytesOfSector);
    putFile(disc.folder / "a.bin", sound);
    CHECK(disc.drive->contents().tracks.size() == 2);
    CHECK(disc.track(1) == sound.substr(0, 2251 * bytesOfSector));
    CHECK(disc.track(2) == sound.substr(2251 * bytesOfSector));
}

TEST_CASE("Swapped samples are swapped back")
{
    const Disc disc("FILE a.img MOTOROLA\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
    const Text sound = noise(600 * bytesOfSector);
    putFile(disc.folder / "a.img", swappedSamples(sound));
    CHECK(disc.track(1) == sound);
}

TEST_CASE("WAV files are tracks, filled up to whole sectors")
{
    const Disc disc("FILE \"1.wav\" WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"
                    "FILE \"2.wav\" WAVE\nTRACK 02 AUDIO\nINDEX 00 00:00:00\nINDEX 01 00:01:00\n");
    const Text first = noise(600 * bytesOfSector + 40, 1);
    const Text second = noise(700 * bytesOfSector, 2);
    putFile(disc.folder / "1.wav", wavFile(first));
    putFile(disc.folder / "2.wav", wavFile(second));
    CHECK(disc.track(1) == first + Text(bytesOfSector - 40, '\0') + second.substr(0, 75 * bytesOfSector));
    CHECK(disc.track(2) == second.substr(75 * bytesOfSector));
}

TEST_CASE("A hidden track before the first is no part of it")
{
    const Disc disc("FILE a.bin BINARY\nTRACK 01 AUDIO\nINDEX 00 00:00:00\nINDEX 01 00:02:00\n");
    const Text sound = noise(450 * bytesOfSector);
    putFile(disc.folder / "a.bin", sound);
    CHECK(disc.drive->contents().tracks[0].start == 150);
    CHECK(disc.track(1) == sound.substr(150 * bytesOfSector));
}

TEST_CASE("Gaps that are in no file are read as silence")
{
    const Disc disc("FILE a.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nPOSTGAP 00:01:00\n"
                    "TRACK 02 AUDIO\nPREGAP 00:02:00\nINDEX 01 00:04:00\nPOSTGAP 00:00:01\n");
    const Text sound = noise(600 * bytesOfSector);
    putFile(disc.folder / "a.bin", sound);
    CHECK(disc.track(1) == sound.substr(0, 300 * bytesOfSector) + silence.substr(0, 225 * bytesOfSector));
    CHECK(disc.track(2) == sound.substr(300 * bytesOfSector) + silence.substr(0, bytesOfSector));
}

TEST_CASE("Sound between data tracks is found, and data is never read as sound")
{
    const Disc disc("FILE a.bin BINARY\nTRACK 01 MODE1/2048\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 01 "
                    "00:04:00\nTRACK 03 MODE2/2336\nINDEX 00 00:08:00\nINDEX 01 00:10:00\n");
    const Text sound = noise(300 * bytesOfSector);
    putFile(disc.folder / "a.bin", noise(300 * 2048, 2) + sound + noise(450 * 2336, 3));
    const auto contents = disc.drive->contents();
    CHECK_FALSE(contents.tracks[0].isAudio);
    CHECK_FALSE(contents.tracks[2].isAudio);
    CHECK(disc.track(2) == sound + silence.substr(0, 150 * bytesOfSector));
}

TEST_CASE("Sectors that carry graphics beside their sound are read without them")
{
    const Disc disc("FILE a.bin BINARY\nTRACK 01 CDG\nINDEX 01 00:00:00\n");
    const Text sound = noise(500 * bytesOfSector);
    Text file;
    for (std::int64_t i = 0; i < 500; ++i)
        file += sound.substr(i * bytesOfSector, bytesOfSector) + Text(96, 'g');
    putFile(disc.folder / "a.bin", file);
    CHECK(disc.track(1) == sound);
}

TEST_CASE("99 tracks of four seconds are read each")
{
    Text sheet = "FILE a.bin BINARY\n";
    for (int i = 0; i < 99; ++i)
        sheet += "TRACK " + std::to_string(i + 1) + " AUDIO\nINDEX 01 " + std::to_string(i * 4 / 60) + ":" +
                 std::to_string(i * 4 % 60) + ":00\n";
    const Disc disc(sheet);
    const Text sound = noise(99 * 300 * bytesOfSector);
    putFile(disc.folder / "a.bin", sound);
    REQUIRE(disc.drive->contents().tracks.size() == 99);
    for (std::int16_t track = 1; track <= 99; ++track) {
        CAPTURE(track);
        CHECK(disc.trackAsListed(track) ==
              sound.substr((track - 1) * 300 * bytesOfSector, 300 * bytesOfSector));
    }
}

TEST_CASE("A file is found whatever the sheet's own system called it")
{
    const struct {
        const char* what;
        const char* inSheet;
        const char* onDisk;
    } cases[] = {
        {"as it is", "a b.bin", "a b.bin"},
        {"in another case", "A B.BIN", "a b.bin"},
        {"in a folder below", "sub/a.bin", "sub/a.bin"},
        {"with the separators of another system", "sub\\a.bin", "sub/a.bin"},
        {"in a folder that was not taken along", "C:\\My Discs\\a.bin", "a.bin"},
        {"below, by a path of another system", "\\sub\\a.bin", "a.bin"},
        {"a separator in the name", "a\\b.bin", "a\\b.bin"},
        {"bytes that are no text", "\xFF\xC3.bin", "\xFF\xC3.bin"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Disc disc("FILE \"" + Text(c.inSheet) + "\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
        std::filesystem::create_directory(disc.folder / "sub");
        const Text sound = noise(300 * bytesOfSector);
        putFile(disc.folder / c.onDisk, sound);
        CHECK(disc.track(1) == sound);
    }
}

TEST_CASE("A file outside the sheet's folder is never read, and the reason says which")
{
    const TemporaryFolder elsewhere;
    putFile(elsewhere / "a.bin", noise(300 * bytesOfSector));
    const struct {
        const char* what;
        Text name;
        void (*prepare)(const Text& folder, const Text& outside);
    } cases[] = {
        {"an absolute path", elsewhere / "a.bin", [](const Text&, const Text&) {}},
        {"one that leads into the folder", "/a.bin",
         [](const Text& folder, const Text&) { putFile(folder + "/a.bin", noise(300 * bytesOfSector)); }},
        {"a folder above", "../a.bin",
         [](const Text& folder, const Text&) { putFile(folder + "/../a.bin", noise(300 * bytesOfSector)); }},
        {"the same within", "sub/../a.bin",
         [](const Text& folder, const Text&) { putFile(folder + "/a.bin", noise(300 * bytesOfSector)); }},
        {"the same with another system's separators", "..\\a.bin", [](const Text&, const Text&) {}},
        {"a link out", "a.bin",
         [](const Text& folder, const Text& outside) {
             std::filesystem::create_symlink(outside + "/a.bin", folder + "/a.bin");
         }},
        {"a folder that is a link out", "sub2/a.bin",
         [](const Text& folder, const Text& outside) {
             std::filesystem::create_directory_symlink(outside, folder + "/sub2");
         }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const TemporaryFolder above;
        const Text folder = above / "discs";
        std::filesystem::create_directories(folder + "/sub");
        putFile(folder + "/disc.cue", "FILE \"" + c.name + "\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n");
        c.prepare(folder, elsewhere.path());
        const auto contents = disc::makeImageDrive(folder + "/disc.cue")->contents();
        CHECK(contents.tracks.empty());
        CHECK(contents.trouble ==
              "Its sheet names " + c.name + ", which does not lie in the sheet's folder.");
    }
}

TEST_CASE("A link within the sheet's folder is followed, and so is a folder for discs that is a link itself")
{
    const TemporaryFolder above;
    std::filesystem::create_directories(above / "discs/sub");
    std::filesystem::create_directory_symlink(above / "discs", above / "link");
    const Text sound = noise(300 * bytesOfSector);
    putFile(above / "discs/sub/real.bin", sound);
    std::filesystem::create_symlink("sub/real.bin", above / "discs/a.bin");
    putFile(above / "discs/disc.cue", oneTrack);
    for (const char* folder : {"discs", "link"}) {
        CAPTURE(folder);
        const auto drive = disc::makeImageDrive(above / folder + "/disc.cue");
        CHECK(drive->contents().trouble == "");
        KeptSound sink;
        CHECK(drive->readTrack(1, sink, {}) == 0);
        CHECK(sink.sound == sound);
    }
}

TEST_CASE("A link that is turned out of the folder after the listing is not followed")
{
    const TemporaryFolder elsewhere;
    const Text sound = noise(300 * bytesOfSector);
    putFile(elsewhere / "a.bin", sound);
    const Disc disc(oneTrack);
    putFile(disc.folder / "real.bin", sound);
    std::filesystem::create_symlink("real.bin", disc.folder / "a.bin");
    CHECK(disc.drive->contents().tracks.size() == 1);
    std::filesystem::remove(disc.folder / "a.bin");
    std::filesystem::create_symlink(elsewhere / "a.bin", disc.folder / "a.bin");
    CHECK(disc.refusal(1) == "The disc image has changed.");
}

TEST_CASE("A sheet that begins with track 4 has its sound in track 4")
{
    const Disc disc("FILE a.bin BINARY\nTRACK 04 AUDIO\nINDEX 01 00:00:00\n"
                    "TRACK 05 AUDIO\nINDEX 01 00:04:00\n");
    const Text sound = noise(700 * bytesOfSector);
    putFile(disc.folder / "a.bin", sound);
    REQUIRE(disc.drive->contents().tracks.size() == 5);
    for (std::size_t missing = 0; missing < 3; ++missing)
        CHECK(disc.drive->contents().tracks[missing] == disc::DiscTrack{false, 0, 0, true});
    CHECK(disc.track(4) == sound.substr(0, 300 * bytesOfSector));
    CHECK(disc.track(5) == sound.substr(300 * bytesOfSector));
}

TEST_CASE("A damaged sheet is a drive without a disc")
{
    const struct {
        const char* what;
        Text sheet;
    } cases[] = {
        {"empty", ""},
        {"rubbish", noise(4000)},
        {"a picture", "\x89PNG\r\n\x1A\n"},
        {"cut in the middle", "FILE a.bin BINARY\nTRACK 01 AUD"},
        {"larger than any sheet", oneTrack + Text(2 << 20, '\n')},
        {"longer than any disc", "FILE a.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 999:00:00\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Disc disc(c.sheet);
        putFile(disc.folder / "a.bin", noise(300 * bytesOfSector));
        CHECK(disc.drive->contents().tracks.empty());
        CHECK(disc.drive->contents().trouble != "");
    }
}

TEST_CASE("A sheet of a megabyte is still one")
{
    const Text sheet = oneTrack + Text((1 << 20) - Text(oneTrack).size(), '\n');
    CHECK(Disc(sheet).drive->contents().trouble == "");
    CHECK(Disc(sheet + '\n').drive->contents().trouble == "It is no sheet of a disc that can be followed.");
}

TEST_CASE("What cannot be read is refused with its reason, and sends nothing of it")
{
    const Text twoTracks = sheetOf("a.bin", {"00:00:00", "00:04:00"});
    const struct {
        const char* what;
        Text sheet;
        Text onDisk;
        Text reason;
    } cases[] = {
        {"a missing file", twoTracks, "b.bin", "cannot be read"},
        {"a folder for a file", twoTracks, "", "cannot be read"},
        {"a file cut short", twoTracks, "a.bin", "cut short"},
        {"a WAV file of another form",
         "FILE a.bin WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nINDEX 02 00:04:00\n", "a.bin",
         "cannot be read"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Disc disc(c.sheet);
        if (c.onDisk.empty())
            std::filesystem::create_directory(disc.folder / "a.bin");
        else
            putFile(disc.folder / c.onDisk, noise(200 * bytesOfSector));
        CHECK(disc.drive->contents().tracks[0].sectors == 300);
        CHECK(disc.refusal(1).find(c.reason) != Text::npos);
    }
}

TEST_CASE("A file that ends within its last sector is filled up with silence")
{
    const Disc disc(oneTrack);
    const Text sound = noise(300 * bytesOfSector - 5);
    putFile(disc.folder / "a.bin", sound);
    CHECK(disc.track(1) == sound + Text(5, '\0'));
    const Disc shorter(sheetOf("a.bin", {"00:00:00", "00:04:00"}));
    putFile(shorter.folder / "a.bin", noise(299 * bytesOfSector));
    shorter.drive->contents();
    CHECK(shorter.refusal(1).find("cut short") != Text::npos); // a whole sector is missing
}

TEST_CASE("An image that changes between calls is seen anew")
{
    const Disc disc(oneTrack);
    CHECK(disc.drive->contents().tracks[0].sectors == 0);
    putFile(disc.folder / "a.bin", noise(300 * bytesOfSector));
    CHECK(disc.drive->contents().tracks[0].sectors == 300);
    putFile(disc.folder / "a.bin", noise(400 * bytesOfSector));
    CHECK(disc.drive->contents().tracks[0].sectors == 400);
    putFile(disc.folder / "disc.cue", sheetOf("a.bin", {"00:00:00", "00:01:00"}));
    CHECK(disc.drive->contents().tracks.size() == 2);
    std::filesystem::rename(disc.folder / "a.bin", disc.folder / "A.BIN");
    CHECK(disc.drive->contents().tracks[1].sectors == 325);
    std::filesystem::remove(disc.folder / "disc.cue");
    CHECK(disc.drive->contents() == disc::DiscContents());
}

TEST_CASE("A sheet is read again only when its file tells of a change")
{
    const Disc disc(oneTrack);
    setAge(disc.folder / "disc.cue", 10);
    CHECK(disc.drive->contents().tracks.size() == 1);
    putFile(disc.folder / "disc.cue", Text(Text(oneTrack).size(), 'x'));
    setAge(disc.folder / "disc.cue", 10);
    CHECK(disc.drive->contents().tracks.size() == 1);
    setAge(disc.folder / "disc.cue", 9);
    CHECK(disc.drive->contents().tracks.empty());
}

TEST_CASE("A disc that is another one by now is not read as the one that was listed")
{
    const Disc disc(oneTrack);
    putFile(disc.folder / "a.bin", noise(300 * bytesOfSector));
    disc.drive->contents();
    putFile(disc.folder / "a.bin", noise(400 * bytesOfSector));
    CHECK(disc.refusal(1).find("changed") != Text::npos);
    std::filesystem::remove(disc.folder / "disc.cue");
    CHECK(disc.refusal(1).find("changed") != Text::npos);
}

TEST_CASE("A drive knows the files that it reads from, by whatever name")
{
    const Disc disc(oneTrack);
    putFile(disc.folder / "a.bin", noise(300 * bytesOfSector));
    putFile(disc.folder / "other.bin", "");
    std::filesystem::create_symlink("a.bin", disc.folder / "link");
    std::filesystem::create_hard_link(disc.folder / "a.bin", disc.folder / "hard");
    disc.drive->contents();
    for (const char* each : {"disc.cue", "a.bin", "link", "hard"}) {
        CAPTURE(each);
        CHECK(disc.drive->readsFrom(disc.folder / each));
    }
    CHECK_FALSE(disc.drive->readsFrom(disc.folder / "other.bin"));
    CHECK_FALSE(disc.drive->readsFrom(disc.folder / "none"));
}

TEST_CASE("A missing file is never taken for the file that a track is copied to")
{
    const Disc disc(oneTrack);
    disc.drive->contents();
    CHECK_FALSE(disc.drive->readsFrom(disc.folder / "none"));
}

TEST_CASE("Images are listed the oldest first, from both folders, by name")
{
    const DiscDesk desk;
    const Text below = desk.folders.home + "/Velmora Discs";
    std::filesystem::create_directory(below);
    const struct {
        Text path;
        int age;
    } sheets[] = {
        {desk.discs + "/Newest.cue", 1}, {below + "/Oldest.CUE", 9},   {desk.discs + "/Same b.cue", 5},
        {desk.discs + "/Same a.cue", 5}, {desk.discs + "/Mid.Cue", 3},
    };
    for (const auto& sheet : sheets) {
        putFile(sheet.path, "");
        setAge(sheet.path, sheet.age);
    }
    for (const char* each : {"Disc.bin", ".hidden.cue", ".cue", "disc.cue.part", "cue"})
        putFile(desk.discs + "/" + each, "");
    std::filesystem::create_directory(desk.discs + "/folder.cue");
    CHECK(namesOf(disc::imagesIn(desk.folders)) ==
          std::vector<Text>{"Disc image: Oldest", "Disc image: Same a", "Disc image: Same b",
                            "Disc image: Mid", "Disc image: Newest"});
}

TEST_CASE("One folder under two names lists its images once")
{
    const DiscDesk desk;
    putFile(desk.discs + "/One.cue", "");
    std::filesystem::create_directory_symlink(desk.discs, desk.folders.home + "/Velmora Discs");
    CHECK(namesOf(disc::imagesIn(desk.folders)) == std::vector<Text>{"Disc image: One"});
    CHECK(namesOf(disc::imagesIn({desk.folders.music, desk.folders.music})).size() == 1);
}

TEST_CASE("No folder and no image list nothing")
{
    const DiscDesk desk;
    CHECK(namesOf(disc::imagesIn(desk.folders)).empty());
    CHECK(namesOf(disc::imagesIn({"", ""})).empty());
    std::filesystem::remove(desk.discs);
    putFile(desk.discs, "a file");
    CHECK(namesOf(disc::imagesIn(desk.folders)).empty());
    CHECK_FALSE(std::filesystem::exists(desk.folders.home + "/Velmora Discs"));
}

TEST_CASE("A folder that may not be read lists nothing, and a sheet that may not be read has no disc")
{
    const DiscDesk desk;
    const Text below = desk.folders.home + "/Velmora Discs";
    std::filesystem::create_directory(below);
    putFile(desk.discs + "/Unseen.cue", "");
    putFile(below + "/Locked.cue", oneTrack);
    putFile(below + "/a.bin", noise(300 * bytesOfSector));
    chmod(desk.folder.path().c_str(), 0755);
    chmod(desk.discs.c_str(), 0);
    chmod((below + "/Locked.cue").c_str(), 0);
    Child child([&] {
        becomeNobody();
        endUnless(namesOf(disc::imagesIn(desk.folders)) == std::vector<Text>{"Disc image: Locked"}, 1);
        endUnless(disc::imagesIn(desk.folders)()[0]->contents().tracks.empty(), 2);
        endUnless(disc::imagesIn(desk.folders)()[0]->contents().trouble == "Its sheet cannot be read.", 3);
    });
    CHECK(child.wait() == 0);
    chmod(desk.discs.c_str(), 0755);
}

TEST_CASE("New discs go under the music folder where there is one, else under home")
{
    const DiscDesk desk;
    CHECK(desk.folders.toWrite() == desk.folders.music + "/Velmora Discs");
    CHECK(disc::DiscFolders{desk.folder / "none", desk.folders.home}.toWrite() ==
          desk.folders.home + "/Velmora Discs");
    CHECK(disc::DiscFolders{"", desk.folders.home}.toWrite() == desk.folders.home + "/Velmora Discs");
}
