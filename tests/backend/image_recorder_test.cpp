// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/state_part_notes.h"
#include "platform/failure.h"
#include "tests/support/child.h"
#include "tests/support/disc_desk.h"
#include "tests/support/failures.h"
#include "tests/support/forced_disk.h"
#include "tests/support/small_disk.h"
#include "tests/support/system_calls.h"

#include <doctest/doctest.h>

#include <csignal>
#include <regex>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// A desk without real drives, and its writer on the recorder for images.
struct Recording {
    DiscDesk desk;
    std::unique_ptr<ACDWRITE> writer = desk.writer();
    Heard<ACDWRITE> heard{desk.window, *writer};

    void add(const Text& sound) const { addFile(wavFile(sound)); }

    void addFile(const Text& bytes) const
    {
        const Text path = desk.output + "/" + std::to_string(namesInFolder(desk.output).size()) + ".wav";
        putFile(path, bytes);
        CHECK(writer->AddTrack(path, 0) == 0);
    }

    void record()
    {
        heard.done = 0;
        REQUIRE(writer->Write() == 0);
        CHECK(heard.end());
    }

    // The one file with that ending among the discs.
    Text disc(std::string_view ending) const { return discIn(desk.discs, ending); }

    static Text discIn(const Text& folder, std::string_view ending)
    {
        Text found;
        for (const Text& name : namesInFolder(folder))
            if (name.ends_with(ending))
                found = folder + "/" + name;
        return found;
    }

    // Copies every track of the one image to a file and returns their sound.
    std::vector<Text> rip()
    {
        const auto reader = desk.reader();
        Heard<ACD> read{desk.window, *reader};
        std::vector<Text> sounds;
        for (std::int16_t track = 1; track <= reader->TrackCount(); ++track) {
            const Text path = desk.folder / "ripped.wav";
            read.done = 0;
            CHECK(reader->ReadTrack(track, path) == 0);
            CHECK(read.end());
            sounds.push_back(soundOfWav(path));
            std::filesystem::remove(path);
        }
        return sounds;
    }
};

// A writing of one track that has been prepared and waits to be run.
struct DirectRecording {
    std::unique_ptr<DiscDesk> desk = std::make_unique<DiscDesk>();
    Text wav = desk->output + "/a.wav";
    Text sound = noise(20 * bytesOfSecond);
    mutable std::unique_ptr<disc::WriteRun> run;
    disc::WriteProgress ignored = [](std::int16_t) {};

    DirectRecording()
    {
        putFile(wav, wavFile(sound));
        std::vector<disc::CdSound> sounds;
        sounds.push_back(std::move(*disc::CdSound::open(wav)));
        run = disc::makeImageRecorder(desk->folders, desk->parts)->prepare(std::move(sounds), {});
    }

    std::set<Text> filesAfterwards() const
    {
        run.reset();
        CHECK(desk->parts.open().empty());
        return namesInFolder(desk->discs);
    }
};

// The renames that this process may make before it is killed in the middle of one; any number when negative.
int renamesLeft = -1;

Text filledUp(Text sound, std::int64_t sectors)
{
    sound.resize(static_cast<std::size_t>(sectors * bytesOfSector), '\0');
    return sound;
}

}

extern "C" int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                         unsigned int flags) noexcept
{
    if (renamesLeft == 0)
        raise(SIGKILL);
    renamesLeft -= renamesLeft > 0 ? 1 : 0;
    return systemCalls::next<int(int, const char*, int, const char*, unsigned)>("renameat2")(
        fromFolder, from, toFolder, to, flags);
}

TEST_CASE("A disc that was whole when the program was killed is whole at its next start")
{
    const Text sound = noise(4 * bytesOfSecond);
    for (const int renames : {0, 1, 2}) {
        CAPTURE(renames);
        Recording r;
        const Text wav = r.desk.output + "/a.wav";
        putFile(wav, wavFile(sound));
        Child killed([&] {
            files::StatePartNotes notes(r.desk.folder / "state");
            std::vector<disc::CdSound> sounds;
            sounds.push_back(std::move(*disc::CdSound::open(wav)));
            const auto run = disc::makeImageRecorder(r.desk.folders, notes)->prepare(std::move(sounds), {});
            renamesLeft = renames;
            run->write([](std::int16_t) {}, {});
            raise(SIGKILL);
        });
        killed.wait();
        CHECK(namesInFolder(r.desk.discs).size() == 2);
        files::removeNotedParts(r.desk.folder / "state");
        CHECK(r.disc(".bin").size() == r.disc(".cue").size());
        CHECK(namesInFolder(r.desk.discs).size() == 2);
        CHECK(r.rip() == std::vector<Text>{sound});
        CHECK(namesInFolder(r.desk.folder / "state/parts").empty());
    }
}

TEST_CASE("A disc that was not whole when the program was killed is gone at its next start")
{
    Recording r;
    const Text wav = r.desk.output + "/a.wav";
    putFile(wav, wavFile(noise(4 * bytesOfSecond)));
    Child killed([&] {
        files::StatePartNotes notes(r.desk.folder / "state");
        std::vector<disc::CdSound> sounds;
        sounds.push_back(std::move(*disc::CdSound::open(wav)));
        const auto run = disc::makeImageRecorder(r.desk.folders, notes)->prepare(std::move(sounds), {});
        run->write([](std::int16_t) { raise(SIGKILL); }, {});
    });
    killed.wait();
    CHECK(namesInFolder(r.desk.discs).size() == 2);
    files::removeNotedParts(r.desk.folder / "state");
    CHECK(namesInFolder(r.desk.discs).empty());
}

TEST_CASE("A disc is a sheet and a file of sectors, both named for the time")
{
    Recording r;
    r.add(noise(5 * bytesOfSecond, 1));
    r.add(noise(bytesOfSecond, 2));
    r.add(noise(5 * bytesOfSecond + 4, 3));
    r.record();
    const auto names = namesInFolder(r.desk.discs);
    REQUIRE(names.size() == 2);
    CHECK(std::regex_match(*names.begin(), std::regex(R"(Disc \d{4}-\d\d-\d\d \d\d\.\d\d\.\d\d\.bin)")));
    const Text stem = names.begin()->substr(0, names.begin()->size() - 4);
    CHECK(names.contains(stem + ".cue"));
    CHECK(fileBytes(r.disc(".cue")) == "FILE \"" + stem +
                                           ".bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
                                           "  TRACK 02 AUDIO\n    INDEX 01 00:05:00\n"
                                           "  TRACK 03 AUDIO\n    INDEX 01 00:09:00\n");
    CHECK(fileBytes(r.disc(".bin")) == noise(5 * bytesOfSecond, 1) + filledUp(noise(bytesOfSecond, 2), 300) +
                                           filledUp(noise(5 * bytesOfSecond + 4, 3), 376));
    CHECK(r.desk.parts.open().empty());
    CHECK(r.desk.shell.told().empty());
}

TEST_CASE("A disc's sound, its sheet and their folder are forced to the disk")
{
    Recording recording;
    recording.add(noise(bytesOfSecond));
    ForcedDisk::forces = 0;
    recording.record();
    CHECK(ForcedDisk::forces.load() == 3);
}

TEST_CASE("What was recorded is read back bit for bit")
{
    const struct {
        const char* what;
        std::vector<std::int64_t> lengths; // bytes
    } cases[] = {
        {"one frame", {4}},
        {"just under four seconds", {4 * bytesOfSecond - 4}},
        {"four seconds", {4 * bytesOfSecond}},
        {"a frame more than whole sectors", {400 * bytesOfSector + 4}},
        {"several of each", {4, 400 * bytesOfSector + 4, 4 * bytesOfSecond, 20 * bytesOfSecond + 1000, 8}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Recording r;
        std::vector<Text> expected;
        for (const auto bytes : c.lengths) {
            const Text sound = noise(bytes, expected.size() + 1);
            r.add(sound);
            expected.push_back(filledUp(sound, std::max<std::int64_t>((bytes + 2351) / 2352, 300)));
        }
        r.record();
        CHECK(r.rip() == expected);
    }
}

TEST_CASE("99 tracks are recorded and read back")
{
    Recording r;
    for (int i = 0; i < 99; ++i)
        r.add(noise(400, static_cast<std::uint64_t>(i)));
    r.record();
    const auto sounds = r.rip();
    REQUIRE(sounds.size() == 99);
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        CAPTURE(i);
        CHECK(sounds[i] == filledUp(noise(400, i), 300));
    }
}

TEST_CASE("Each form of a WAV file gives the same disc")
{
    const Text sound = noise(4 * bytesOfSecond);
    const Text plain = wavFile(sound);
    const Text size = littleEndian(static_cast<std::uint32_t>(sound.size()), 4);
    const Text format = plain.substr(20, 14) + littleEndian(16, 2);
    const struct {
        const char* what;
        Text file;
    } cases[] = {
        {"plain", plain},
        {"a list of texts before the sound",
         "RIFF" + littleEndian(static_cast<std::uint32_t>(sound.size()) + 52, 4) + "WAVEfmt " +
             littleEndian(16, 4) + format + "LIST" + littleEndian(8, 4) + "INFOabcd" + "data" + size + sound},
        {"the extensible form",
         "RIFF" + littleEndian(static_cast<std::uint32_t>(sound.size()) + 60, 4) + "WAVEfmt " +
             littleEndian(40, 4) + littleEndian(0xFFFE, 2) + format.substr(2) + littleEndian(22, 2) +
             littleEndian(16, 2) + littleEndian(3, 4) + littleEndian(1, 2) +
             Text("\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 14) + "data" + size + sound},
        {"something behind the sound", plain + "LIST" + littleEndian(4, 4) + "INFO"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Recording r;
        r.addFile(c.file);
        r.record();
        CHECK(fileBytes(r.disc(".bin")) == sound);
    }
}

TEST_CASE("Discs that are recorded in one second take nothing from each other")
{
    Recording r;
    std::vector<std::set<Text>> names;
    for (int i = 1; i <= 4; ++i) {
        r.writer->ClearTracks();
        r.add(noise(400, static_cast<std::uint64_t>(i)));
        r.record();
    }
    CHECK(namesInFolder(r.desk.discs).size() == 8);
    const auto reader = r.desk.reader();
    CHECK(reader->DriveCount() == 4);
}

TEST_CASE("A sheet or a file that stands under the disc's name is never replaced")
{
    for (const char* ending : {".cue", ".bin"}) {
        CAPTURE(ending);
        Recording r;
        r.add(noise(400));
        const std::time_t now = std::time(nullptr);
        for (int second = 0; second < 60; ++second) {
            char name[64];
            const std::time_t time = now + second;
            std::strftime(name, sizeof name, "/Disc %Y-%m-%d %H.%M.%S", std::localtime(&time));
            putFile(r.desk.discs + name + ending, "somebody else's");
        }
        r.record();
        CHECK(namesInFolder(r.desk.discs).size() == 62);
        int others = 0;
        for (const Text& name : namesInFolder(r.desk.discs))
            others += fileBytes(r.desk.discs + "/" + name) == "somebody else's" ? 1 : 0;
        CHECK(others == 60);
    }
}

TEST_CASE("The folder is made where it is missing, under home without a music folder, which is never made")
{
    Recording r;
    std::filesystem::remove_all(r.desk.folders.music);
    r.add(noise(400));
    r.record();
    CHECK(namesInFolder(r.desk.folders.home + "/Velmora Discs").size() == 2);
    CHECK_FALSE(std::filesystem::exists(r.desk.folders.music));
    CHECK(r.rip().size() == 1);
    std::filesystem::create_directory(r.desk.folders.music);
    r.record();
    CHECK(namesInFolder(r.desk.discs).size() == 2);
    CHECK(r.desk.reader()->DriveCount() == 2);
}

TEST_CASE("A simulation writes nothing, not even a folder, and ends as a writing does")
{
    Recording r;
    std::filesystem::remove(r.desk.discs);
    r.writer->setSimulate(true);
    r.add(noise(60 * bytesOfSecond));
    r.record();
    CHECK_FALSE(std::filesystem::exists(r.desk.discs));
    CHECK(r.heard.rises());
    CHECK(r.heard.progress.back() == 100);
    CHECK(r.heard.progress.size() > 5);
    CHECK(r.desk.shell.told().empty());
}

TEST_CASE("Progress rises in per cent to the whole")
{
    Recording r;
    for (int i = 0; i < 3; ++i)
        r.add(noise(60 * bytesOfSecond));
    r.record();
    CHECK(r.heard.rises());
    CHECK(r.heard.progress.front() <= 10);
    CHECK(r.heard.progress.back() == 100);
    CHECK(r.heard.progress.size() > 20);
}

TEST_CASE("There is always a disc to write on")
{
    Recording r;
    CHECK(r.writer->CheckMedia() == 0);
    std::filesystem::remove_all(r.desk.folders.home);
    std::filesystem::remove_all(r.desk.folders.music);
    CHECK(r.writer->CheckMedia() == 0);
}

TEST_CASE("A folder that takes no files refuses the writing")
{
    Recording r;
    r.add(noise(400));
    const struct {
        const char* what;
        std::function<void()> prepare;
    } cases[] = {
        {"a file in its place",
         [&] {
             std::filesystem::remove_all(r.desk.discs);
             putFile(r.desk.discs, "a file");
         }},
        {"no home",
         [&] {
             std::filesystem::remove_all(r.desk.folders.home);
             std::filesystem::remove_all(r.desk.folders.music);
         }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        c.prepare();
        CHECK(r.writer->Write() != 0);
        r.desk.window.runPosted();
        CHECK(r.heard.done == 0);
    }
    REQUIRE(r.desk.shell.told().size() == 2);
    for (const Text& told : r.desk.shell.told())
        CHECK(told.starts_with("The disc could not be written | The folder " + r.desk.folder.path()));
    CHECK(r.desk.shell.told()[0].ends_with("Velmora Discs cannot be made: File exists."));
    CHECK(r.desk.shell.told()[1].ends_with("Velmora Discs cannot be made: No such file or directory."));
}

TEST_CASE("A folder that may not be made says why")
{
    Recording r;
    r.add(noise(400));
    std::filesystem::remove(r.desk.discs);
    chmod(r.desk.folder.path().c_str(), 0755);
    chmod(r.desk.folders.music.c_str(), 0555);
    Child child([&] {
        becomeNobody();
        endUnless(r.writer->Write() != 0, 1);
        endUnless(r.desk.shell.told().size() == 1, 2);
        endUnless(r.desk.shell.told()[0].ends_with(" cannot be made: Permission denied."), 3);
    });
    CHECK(child.wait() == 0);
    CHECK(namesInFolder(r.desk.folders.music).empty());
}

TEST_CASE("A folder that may not be written refuses the writing")
{
    Recording r;
    r.add(noise(400));
    chmod(r.desk.folder.path().c_str(), 0755);
    chmod(r.desk.discs.c_str(), 0555);
    Child child([&] {
        becomeNobody();
        endUnless(r.writer->Write() != 0, 1);
        endUnless(r.writer->CheckMedia() == 0, 2);
    });
    CHECK(child.wait() == 0);
    CHECK(namesInFolder(r.desk.discs).empty());
}

TEST_CASE("Tracks that are longer than any disc are refused")
{
    DiscDesk desk;
    const Text path = desk.output + "/long.wav";
    const std::int64_t most = disc::mostSectors * bytesOfSector;
    const auto recorder = disc::makeImageRecorder(desk.folders, desk.parts);
    for (const bool fits : {true, false}) {
        CAPTURE(fits);
        const std::int64_t bytes = fits ? most : most + 4;
        const auto size = static_cast<std::uint32_t>(bytes);
        putFile(path,
                "RIFF" + littleEndian(size + 36, 4) + wavFile("").substr(8, 32) + littleEndian(size, 4));
        std::filesystem::resize_file(path, static_cast<std::uintmax_t>(bytes) + 44);
        std::vector<disc::CdSound> sounds;
        sounds.push_back(std::move(*disc::CdSound::open(path)));
        disc::WriteSettings settings;
        settings.simulate = true;
        CHECK((failureOf([&] { recorder->prepare(std::move(sounds), settings); }) == 0) == fits);
    }
}

TEST_CASE("A disk that has not the room refuses the writing and keeps nothing of it")
{
    DiscDesk desk;
    std::filesystem::remove(desk.discs);
    const SmallDisk small(desk.discs, 1024);
    const auto writer = desk.writer();
    const Text path = desk.output + "/a.wav";
    putFile(path, wavFile(noise(10 * bytesOfSecond)));
    writer->AddTrack(path, 0);
    CHECK(writer->Write() != 0);
    CHECK(namesInFolder(desk.discs).empty());
    REQUIRE(desk.shell.told().size() == 1);
    CHECK(desk.shell.told()[0].find("Disk full") != Text::npos);
    CHECK(desk.parts.open().empty());
}

TEST_CASE("A file that is cut short during the writing fails it, and leaves no disc")
{
    const DirectRecording r;
    std::filesystem::resize_file(r.wav, 1000);
    Text reason;
    guarded([&](const Failure& failure) { reason = failure.description; },
            [&] { r.run->write(r.ignored, {}); });
    CHECK(reason == r.wav + " is cut short.");
    CHECK(r.filesAfterwards().empty());
}

TEST_CASE("A file that is removed during the writing is written all the same")
{
    const DirectRecording r;
    std::filesystem::remove(r.wav);
    r.run->write(r.ignored, {});
    CHECK(fileBytes(Recording::discIn(r.desk->discs, ".bin")) == r.sound);
}

TEST_CASE("A writing that is stopped leaves no disc, at whatever point")
{
    for (const int point : {0, 1, 50, 100}) {
        CAPTURE(point);
        const DirectRecording r;
        std::stop_source stop;
        if (point == 0)
            stop.request_stop();
        r.run->write([&](std::int16_t percent) { percent >= point&& stop.request_stop(); }, stop.get_token());
        CHECK(r.filesAfterwards().empty());
    }
}

TEST_CASE("A writer that goes while it writes leaves no disc")
{
    Recording r;
    for (int i = 0; i < 20; ++i)
        r.add(noise(20 * bytesOfSecond));
    REQUIRE(r.writer->Write() == 0);
    r.writer.reset();
    CHECK(namesInFolder(r.desk.discs).empty());
    CHECK(r.desk.parts.open().empty());
    CHECK(r.desk.sleepLock.held == 0);
    r.desk.window.runPosted();
    CHECK(r.heard.done == 0);
}

TEST_CASE("A new disc changes no other one's number")
{
    Recording r;
    r.add(noise(400));
    r.record();
    const auto reader = r.desk.reader();
    CHECK(reader->DriveCount() == 1);
    const Text first = reader->DriveName(1);
    r.record();
    CHECK(reader->DriveCount() == 2);
    CHECK(reader->DriveName(1) == first);
    CHECK(reader->DriveName(2) != first);
}
