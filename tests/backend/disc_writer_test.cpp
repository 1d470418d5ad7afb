// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/disc_desk.h"
#include "tests/support/failures.h"
#include "tests/support/scripted_reader.h"
#include "tests/support/scripted_writer.h"

#include <doctest/doctest.h>

#include <sys/stat.h>
#include <thread>

namespace
{

// A desk with one real recorder, its writer, and a WAV file that is fit for a disc.
struct Writing {
    DiscDesk desk;
    std::shared_ptr<ScriptedWriter> recorder = std::make_shared<ScriptedWriter>("/dev/sr0");
    std::unique_ptr<ACDWRITE> writer;
    std::unique_ptr<Heard<ACDWRITE>> heard;
    Text wav = desk.output + "/a.wav";

    Writing()
    {
        desk.writers = {recorder};
        putFile(wav, wavFile(noise(4 * bytesOfSecond)));
        makeWriter();
    }
    ~Writing() { recorder->letGo(); }

    void makeWriter()
    {
        writer = desk.writer();
        heard = std::make_unique<Heard<ACDWRITE>>(desk.window, *writer);
    }

    bool waitUntilHolding()
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!recorder->isHolding && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        return recorder->isHolding;
    }
};

}

TEST_CASE("Real recorders come first, and the one for images is always there")
{
    Writing w;
    w.desk.writers.push_back(std::make_shared<ScriptedWriter>("/dev/sr1"));
    CHECK(w.writer->Init() == 0);
    CHECK(w.writer->DriveCount() == 3);
    CHECK(w.writer->DriveName(0) == "Maker Writer (/dev/sr0)");
    CHECK(w.writer->DriveName(1) == "Maker Writer (/dev/sr1)");
    CHECK(w.writer->DriveName(2) == "Disc image recorder");
    w.desk.writers.clear();
    w.makeWriter();
    CHECK(w.writer->Init() == 0);
    CHECK(w.writer->DriveCount() == 1);
    CHECK(w.writer->DriveName(0) == "Disc image recorder");
}

TEST_CASE("Drives out of range have no name and change nothing")
{
    Writing w;
    w.writer->Init();
    w.writer->SelectDrive(1);
    for (const std::int16_t drive : {-32768, -1, 2, 32767}) {
        CAPTURE(drive);
        CHECK(w.writer->DriveName(drive) == "");
        w.writer->SelectDrive(drive);
        CHECK(w.writer->WriterType() == 2);
    }
}

TEST_CASE("A track whose name is written in other letters is the file that is there")
{
    Writing w;
    w.writer->SelectDrive(1);
    CHECK(w.writer->AddTrack(w.desk.output + "/A.WAV", 0) == 0);
    CHECK(w.writer->AddTrack(w.desk.output + "/b.wav", 0) != 0);
    REQUIRE(w.writer->Write() == 0);
    REQUIRE(w.heard->end());
    const auto names = namesInFolder(w.desk.discs);
    REQUIRE(names.size() == 2);
    CHECK(fileBytes(w.desk.discs + "/" + *names.begin()).starts_with(noise(4 * bytesOfSecond)));
}

TEST_CASE("Of two tracks in other letters each is its own")
{
    Writing w;
    w.writer->SelectDrive(1);
    const Text other = noise(4 * bytesOfSecond, 2);
    putFile(w.desk.output + "/A.WAV", wavFile(other));
    REQUIRE(w.writer->AddTrack(w.desk.output + "/A.WAV", 0) == 0);
    REQUIRE(w.writer->Write() == 0);
    REQUIRE(w.heard->end());
    const auto names = namesInFolder(w.desk.discs);
    REQUIRE(names.size() == 2);
    CHECK(fileBytes(w.desk.discs + "/" + *names.begin()).starts_with(other));
}

TEST_CASE("A type is known for each drive, and one that was set is read back")
{
    Writing w;
    w.writer->Init();
    CHECK(w.writer->WriterType() == 1);
    w.writer->SelectDrive(1);
    CHECK(w.writer->WriterType() == 2);
    for (const std::int16_t type : {5, 0, -1, 100, 32767}) {
        w.writer->SetWriterType(type);
        CHECK(w.writer->WriterType() == type);
    }
    w.writer->SelectDrive(0);
    CHECK(w.writer->WriterType() == 1);
    w.writer->SelectDrive(1);
    w.writer->Init();
    CHECK(w.writer->WriterType() == 32767);
    CHECK(w.writer->CheckMedia() == 0);
}

TEST_CASE("What was chosen in an earlier run holds before the control has started")
{
    Writing w;
    w.writer->SelectDrive(1);
    w.writer->SetWriterType(7);
    CHECK(w.writer->WriterType() == 7);
    w.recorder->hasDisc = false;
    CHECK(w.writer->CheckMedia() == 0);
    CHECK(w.writer->WriterType() == 7);
    CHECK(w.recorder->checks == 0);

    Writing gone;
    gone.writer->SelectDrive(9);
    CHECK(gone.writer->WriterType() == 0);
    CHECK(gone.writer->Init() == 0);
    CHECK(gone.writer->WriterType() == 1);
}

TEST_CASE("The speed is a number of 16 bits, from a text or not")
{
    Writing w;
    CHECK(w.writer->WriteSpeed() == 1);
    w.writer->setWriteSpeed(std::int16_t{16});
    CHECK(w.writer->WriteSpeed() == 16);
    w.writer->setWriteSpeed(Text("8"));
    CHECK(w.writer->WriteSpeed() == 8);
    CHECK(failureOf([&] { w.writer->setWriteSpeed(Text("fast")); }) == 13);
    CHECK(failureOf([&] { w.writer->setWriteSpeed(Text("")); }) == 13);
    CHECK(failureOf([&] { w.writer->setWriteSpeed(Text("40000")); }) == 6);
    CHECK(w.writer->WriteSpeed() == 8);
}

TEST_CASE("Only a WAV file that is fit for a disc becomes a track")
{
    const Text second = noise(bytesOfSecond);
    const struct {
        const char* what;
        Text file;
        bool isFit;
    } cases[] = {
        {"16 bits, stereo, 44.1 kHz", wavFile(second), true},
        {"one frame", wavFile(second.substr(0, 4)), true},
        {"no frame", wavFile(""), false},
        {"mono", wavFile(second, {1, 1, 44100, 16}), false},
        {"four channels", wavFile(second, {1, 4, 44100, 16}), false},
        {"48 kHz", wavFile(second, {1, 2, 48000, 16}), false},
        {"22.05 kHz", wavFile(second, {1, 2, 22050, 16}), false},
        {"8 bits", wavFile(second, {1, 2, 44100, 8}), false},
        {"24 bits", wavFile(second, {1, 2, 44100, 24}), false},
        {"numbers with a fraction", wavFile(second, {3, 2, 44100, 32}), false},
        {"an empty file", "", false},
        {"a header alone", wavFile(second).substr(0, 44), false},
        {"half a header", wavFile(second).substr(0, 30), false},
        {"rubbish", noise(5000), false},
        {"a picture", "\x89PNG\r\n\x1A\n" + noise(1000), false},
        {"another kind of sound", "FORM\0\0\1\0AIFFCOMM" + noise(1000), false},
        {"a text", "/music/one.wav\r\n", false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Writing w;
        putFile(w.wav, c.file);
        CHECK((w.writer->AddTrack(w.wav, 0) == 0) == c.isFit);
        CHECK((w.writer->Write() == 0) == c.isFit);
    }
}

TEST_CASE("What is no file becomes no track, and nothing waits for it")
{
    Writing w;
    const Text pipe = w.desk.output + "/pipe.wav";
    mkfifo(pipe.c_str(), 0666);
    for (const Text& path :
         {pipe, w.desk.output, w.desk.output + "/none.wav", Text(), Text("/dev/zero"), w.wav + "/"}) {
        CAPTURE(path);
        CHECK(w.writer->AddTrack(path, 0) != 0);
    }
}

TEST_CASE("The recorder gets the tracks in their order, twice where they were added twice, and the settings")
{
    Writing w;
    const Text other = w.desk.output + "/b.wav";
    putFile(other, wavFile(noise(bytesOfSecond)));
    for (const Text& each : {w.wav, other, w.wav})
        CHECK(w.writer->AddTrack(each, 0) == 0);
    w.writer->setWriteSpeed(std::int16_t{12});
    w.writer->setCloseDisc(true);
    w.writer->setSimulate(true);
    w.writer->setAutoEject(false);
    CHECK(w.writer->Write() == 0);
    CHECK(w.heard->end());
    CHECK(w.recorder->tracks == std::vector<Text>{w.wav, other, w.wav});
    CHECK(w.recorder->settings.speed == 12);
    CHECK(w.recorder->settings.closeDisc);
    CHECK(w.recorder->settings.simulate);
    CHECK_FALSE(w.recorder->settings.autoEject);
}

TEST_CASE("Progress rises to a hundred, and the end comes once, behind it")
{
    Writing w;
    w.writer->AddTrack(w.wav, 0);
    std::int16_t result = -1;
    std::size_t heardBefore = 0;
    w.writer->Done.calls([&](std::int16_t itsResult) {
        result = itsResult;
        heardBefore = w.heard->progress.size();
        ++w.heard->done;
    });
    CHECK(w.writer->Write() == 0);
    CHECK(w.heard->done == 0);
    CHECK(w.heard->end());
    w.desk.window.runPosted();
    CHECK(w.heard->done == 1);
    CHECK(result == 0);
    CHECK(w.heard->progress == std::vector<std::int32_t>{50, 99, 100});
    CHECK(heardBefore == 3);
    CHECK(w.desk.sleepLock.begun == 1);
    CHECK(w.desk.sleepLock.held == 0);
}

TEST_CASE("The list of tracks survives a writing, and grows behind it")
{
    Writing w;
    for (int written = 1; written <= 3; ++written) {
        w.heard->done = 0;
        CHECK(w.writer->AddTrack(w.wav, 0) == 0);
        CHECK(w.writer->Write() == 0);
        CHECK(w.heard->end());
        CHECK(static_cast<int>(w.recorder->tracks.size()) == written);
    }
    w.writer->ClearTracks();
    CHECK(w.writer->Write() != 0);
}

TEST_CASE("1 to 99 tracks are written, no others")
{
    Writing w;
    CHECK(w.writer->Write() != 0);
    for (int i = 0; i < 99; ++i)
        w.writer->AddTrack(w.wav, 0);
    CHECK(w.writer->Write() == 0);
    CHECK(w.heard->end());
    CHECK(w.recorder->tracks.size() == 99);
    w.writer->AddTrack(w.wav, 0);
    CHECK(w.writer->Write() != 0);
    w.desk.window.runPosted();
    CHECK(w.heard->done == 1);
    CHECK(w.desk.shell.told().size() == 2);
    CHECK(w.desk.sleepLock.held == 0);
}

TEST_CASE("A refused writing has no end, says why, and holds nothing")
{
    const struct {
        const char* what;
        void (*prepare)(Writing& w);
    } cases[] = {
        {"a recorder that refuses", [](Writing& w) { w.recorder->refusal = "The disc is full."; }},
        {"a file that is gone", [](Writing& w) { std::filesystem::remove(w.wav); }},
        {"a file that is another by now", [](Writing& w) { putFile(w.wav, "a text"); }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Writing w;
        CHECK(w.writer->AddTrack(w.wav, 0) == 0);
        c.prepare(w);
        CHECK(w.writer->Write() != 0);
        w.desk.window.runPosted();
        CHECK(w.heard->done == 0);
        CHECK(w.desk.shell.told().size() == 1);
        CHECK(w.desk.devices->claim("/dev/sr0", disc::BusyDevices::DeviceUse::reading).has_value());
        CHECK(w.desk.sleepLock.held == 0);
    }
}

TEST_CASE("A refused writing keeps its tracks for the next")
{
    Writing w;
    CHECK(w.writer->AddTrack(w.wav, 0) == 0);
    w.recorder->refusal = "The disc is full.";
    CHECK(w.writer->Write() != 0);
    w.recorder->refusal.clear();
    CHECK(w.writer->Write() == 0);
    CHECK(w.heard->end());
    CHECK(w.recorder->tracks == std::vector<Text>{w.wav});
}

TEST_CASE("A second writing is refused while one runs, and whether there is a disc is no question then")
{
    Writing w;
    w.writer->AddTrack(w.wav, 0);
    w.recorder->holds = true;
    CHECK(w.writer->CheckMedia() == 0);
    CHECK(w.writer->Write() == 0);
    REQUIRE(w.waitUntilHolding());
    w.recorder->hasDisc = false;
    CHECK(w.writer->CheckMedia() == 0);
    CHECK(w.recorder->checks == 1);
    CHECK(w.writer->Write() != 0);
    w.writer->SelectDrive(1);
    CHECK(w.writer->Write() != 0);
    w.recorder->letGo();
    CHECK(w.heard->end());
    w.desk.window.runPosted();
    CHECK(w.heard->done == 1);
    w.writer->SelectDrive(0);
    CHECK(w.writer->CheckMedia() != 0);
}

TEST_CASE("A running writing keeps its tracks and settings")
{
    Writing w;
    w.writer->AddTrack(w.wav, 0);
    w.recorder->holds = true;
    CHECK(w.writer->Write() == 0);
    REQUIRE(w.waitUntilHolding());
    CHECK(w.desk.sleepLock.held == 1);
    w.writer->ClearTracks();
    w.writer->setSimulate(true);
    w.writer->setWriteSpeed(std::int16_t{16});
    CHECK(w.writer->AddTrack(w.wav, 0) == 0);
    CHECK(w.writer->Init() == 0);
    CHECK(w.recorder->tracks.size() == 1);
    CHECK_FALSE(w.recorder->settings.simulate);
    CHECK(w.recorder->settings.speed == 1);
    w.recorder->letGo();
    CHECK(w.heard->end());
    CHECK(w.desk.sleepLock.held == 0);
}

TEST_CASE("A drive that is being read is not written, and has no disc to write")
{
    Writing w;
    w.writer->AddTrack(w.wav, 0);
    const auto claim = w.desk.devices->claim("/dev/sr0", disc::BusyDevices::DeviceUse::reading);
    CHECK(w.writer->CheckMedia() != 0);
    CHECK(w.writer->Write() != 0);
    CHECK(w.recorder->checks == 0);
    CHECK(w.recorder->tracks.empty());
}

TEST_CASE("A drive that is being written is not read")
{
    Writing w;
    const auto drive = std::make_shared<ScriptedReader>("/dev/sr0");
    w.desk.readers = {drive};
    const auto reader = w.desk.reader();
    CHECK(reader->TrackCount() == 2);
    const int asked = drive->asked;
    w.writer->AddTrack(w.wav, 0);
    w.recorder->holds = true;
    CHECK(w.writer->Write() == 0);
    CHECK(reader->ReadTrack(1, w.desk.output + "/Track1.wav") != 0);
    CHECK(reader->TrackCount() == 2);
    CHECK(drive->asked == asked);
    w.recorder->letGo();
    CHECK(w.heard->end());
    CHECK(reader->ReadTrack(1, w.desk.output + "/Track1.wav") == 0);
}

TEST_CASE("A writing that fails tells why and ends all the same")
{
    Writing w;
    w.writer->AddTrack(w.wav, 0);
    w.recorder->failure = "The laser is off.";
    std::int16_t result = 0;
    w.writer->Done.calls([&](std::int16_t itsResult) {
        result = itsResult;
        ++w.heard->done;
    });
    CHECK(w.writer->Write() == 0);
    CHECK(w.heard->end());
    CHECK(result != 0);
    CHECK(w.heard->progress.back() == 99);
    CHECK(w.desk.shell.told() == std::vector<Text>{"The disc could not be written | The laser is off."});
    CHECK(w.desk.sleepLock.held == 0);
    w.recorder->failure.clear();
    CHECK(w.writer->Write() == 0);
}

TEST_CASE("A writer that goes stops its recorder, waits for it, and tells nobody")
{
    Writing w;
    w.writer->AddTrack(w.wav, 0);
    w.recorder->holds = true;
    w.recorder->failure = "Stopped.";
    CHECK(w.writer->Write() == 0);
    REQUIRE(w.waitUntilHolding());
    w.writer.reset();
    CHECK(w.recorder->wasStopped);
    CHECK(w.desk.sleepLock.held == 0);
    CHECK(w.desk.devices->claim("/dev/sr0", disc::BusyDevices::DeviceUse::reading).has_value());
    w.desk.window.runPosted();
    CHECK(w.heard->done == 0);
    CHECK(w.desk.shell.told().empty());
}
