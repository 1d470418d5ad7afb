// SPDX-License-Identifier: GPL-3.0-or-later
// Discs and their images on a share that does not answer. What waits for it takes a minute here.
#include "tests/support/hung_share.h"

#include "files/errand.h"
#include "tests/support/disc_desk.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

using namespace std::chrono_literals;

namespace
{

constexpr double bound = 30'000; // milliseconds

// A desk with an image of one track, and a WAV file that is fit for a disc.
struct Shelf {
    DiscDesk desk;
    Text sheet = desk.discs + "/a.cue";
    Text wav = desk.output + "/a.wav";

    Shelf()
    {
        putFile(desk.discs + "/a.bin", noise(300 * bytesOfSector));
        putFile(sheet, sheetOf("a.bin", {"00:00:00"}));
        putFile(wav, wavFile(noise(4 * bytesOfSecond)));
    }
};

template <typename Work>
double timeOf(Work&& work)
{
    const auto then = std::chrono::steady_clock::now();
    work();
    return millisecondsSince(then);
}

}

TEST_CASE("An image on a share that does not answer is an empty disc, soon, and it is told why")
{
    Shelf s;
    const auto reader = s.desk.reader();
    REQUIRE(reader->DriveCount() == 1);
    {
        const HungShare hung(s.desk.discs.c_str());
        CHECK(timeOf([&] { CHECK(reader->TrackCount() == 0); }) < bound);
        CHECK(holdsUp(hung, 1));
        CHECK(disc::makeImageDrive(s.sheet)->contents() == disc::DiscContents{{}, 0, files::noAnswer});
        CHECK(s.desk.shell.told() ==
              std::vector<Text>{Text("A disc could not be read | Disc image: a: ") + files::noAnswer});
        CHECK(timeOf([&] {
                  reader->SelectDrive(1);
                  CHECK(reader->TrackCount() == 0);
                  CHECK(reader->TrackLength(1) == 0);
                  CHECK(reader->ReadTrack(1, s.desk.output + "/track.wav") != 0);
              }) < bound);
    }
    const auto answers = [&] {
        reader->SelectDrive(1);
        return reader->TrackCount() == 1;
    };
    CHECK(waitUntil(answers));
    CHECK(reader->TrackLength(1) == 4000);
}

TEST_CASE("A track is not read into a folder that does not answer, wholly or but for its attributes, soon; "
          "the batch "
          "goes on and nothing is left")
{
    for (const auto held : {HungShare::Holds::everything, HungShare::Holds::contents}) {
        Shelf s;
        const auto reader = s.desk.reader();
        Heard<ACD> heard(s.desk.window, *reader);
        REQUIRE(reader->TrackCount() == 1);
        const Text track = s.desk.output + "/track.wav";
        const auto before = namesInFolder(s.desk.output);
        {
            const HungShare hung(s.desk.output.c_str(), held);
            CHECK(timeOf([&] { CHECK(reader->ReadTrack(1, track) != 0); }) < bound);
            CHECK(holdsUp(hung, 1));
            CHECK(heard.end());
        }
        CHECK(s.desk.shell.told() ==
              std::vector<Text>{"A track could not be read | " + track + ": " + files::noAnswer});
        REQUIRE(waitUntil([&] { return !files::isUnanswered("room in " + s.desk.output); }));
        CHECK(namesInFolder(s.desk.output) == before);
    }
}

TEST_CASE("A disc is not begun in a folder that takes no file or makes no room, soon, and nothing is left")
{
    for (const auto held : {HungShare::Holds::contents, HungShare::Holds::writings}) {
        Shelf s;
        const auto writer = s.desk.writer();
        REQUIRE(writer->AddTrack(s.wav, 0) == 0);
        {
            const HungShare hung(s.desk.folders.music.c_str(), held);
            CHECK(timeOf([&] { CHECK(writer->Write() != 0); }) < bound);
            CHECK(holdsUp(hung, 1));
        }
        CHECK(s.desk.shell.told() ==
              std::vector<Text>{Text("The disc could not be written | ") + files::noAnswer});
        REQUIRE(waitUntil([&] { return !files::isUnanswered("discs"); }));
        CHECK(namesInFolder(s.desk.folders.toWrite()) == std::set<Text>{"a.bin", "a.cue"});
    }
}

TEST_CASE("A track on a share that does not answer is not taken for a disc, soon")
{
    Shelf s;
    const auto writer = s.desk.writer();
    {
        const HungShare hung(s.desk.output.c_str());
        CHECK(timeOf([&] { CHECK(writer->AddTrack(s.wav, 0) != 0); }) < bound);
        CHECK(holdsUp(hung, 1));
    }
    CHECK(waitUntil([&] { return writer->AddTrack(s.wav, 0) == 0; }));
}

TEST_CASE("A disc is not begun while its tracks, or the folder for discs, do not answer, and it is told")
{
    Shelf s;
    const auto writer = s.desk.writer();
    REQUIRE(writer->AddTrack(s.wav, 0) == 0);
    {
        const HungShare hung(s.desk.output.c_str());
        CHECK(timeOf([&] { CHECK(writer->Write() != 0); }) < bound);
    }
    REQUIRE(waitUntil([&] { return !files::isUnanswered("file " + s.wav); }));
    {
        const HungShare hung(s.desk.folders.music.c_str());
        CHECK(timeOf([&] { CHECK(writer->Write() != 0); }) < bound);
    }
    CHECK(s.desk.shell.told() ==
          std::vector<Text>{"The disc could not be written | " + s.wav + " cannot be read.",
                            Text("The disc could not be written | ") + files::noAnswer});
    CHECK(waitUntil([] { return !files::isUnanswered("discs"); }));
}
