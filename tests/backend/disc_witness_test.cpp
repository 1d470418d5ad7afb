// SPDX-License-Identifier: GPL-3.0-or-later
// Other programs find on our discs what we put there, and we find on an image what they do. Needs cd-info and
// cd-paranoia (libcdio), bchunk and cuetools.
#include "tests/support/disc_desk.h"
#include "tests/support/witness.h"

#include <doctest/doctest.h>

namespace
{

// A recorded disc of three tracks, of which the second is too short for a disc and the third is no whole
// number of sectors.
struct Recorded {
    DiscDesk desk;
    std::vector<Text> sounds{noise(30 * bytesOfSecond, 1), noise(bytesOfSecond, 2),
                             noise(7 * bytesOfSecond + 100, 3)};
    Text stem;

    Recorded()
    {
        const auto writer = desk.writer();
        Heard<ACDWRITE> heard{desk.window, *writer};
        for (const Text& sound : sounds) {
            const Text path = desk.output + "/" + std::to_string(sound.size()) + ".wav";
            putFile(path, wavFile(sound));
            REQUIRE(writer->AddTrack(path, 0) == 0);
        }
        REQUIRE(writer->Write() == 0);
        REQUIRE(heard.end());
        const Text name = *namesInFolder(desk.discs).begin();
        stem = desk.discs + "/" + name.substr(0, name.size() - 4);
        sounds[1].resize(300 * bytesOfSector);
        sounds[2].resize(526 * bytesOfSector);
    }

    Text quoted(const Text& ending) const { return "'" + stem + ending + "'"; }
};

// Whether `words` stand in the text, where one blank is as good as many.
bool hasLine(const Text& text, const Text& words)
{
    Text tidy;
    for (const char each : text)
        if (each != ' ' || (!tidy.empty() && tidy.back() != ' '))
            tidy += each;
    return tidy.find(words) != Text::npos;
}

}

TEST_CASE("cd-info finds the tracks of a recorded disc")
{
    const Recorded disc;
    const Text said = saidBy("cd-info --no-header --no-device-info --cue-file=" + disc.quoted(".cue"));
    CAPTURE(said);
    CHECK(hasLine(said, "CD-ROM Track List (1 - 3)"));
    CHECK(hasLine(said, "1: 00:02:00 000000 audio"));
    CHECK(hasLine(said, "2: 00:32:00 002250 audio"));
    CHECK(hasLine(said, "3: 00:36:00 002550 audio"));
    CHECK(hasLine(said, "170: 00:43:01 003076 leadout"));
}

TEST_CASE("cuetools read the sheet of a recorded disc")
{
    const Recorded disc;
    CHECK(saidBy("cueprint -d '%N' " + disc.quoted(".cue")) == "3");
    CHECK(saidBy("cuebreakpoints " + disc.quoted(".cue")) == "0:30.00\n0:34.00\n");
}

TEST_CASE("bchunk takes a recorded disc apart into the sound that was recorded")
{
    const Recorded disc;
    const Text out = disc.desk.output + "/out";
    REQUIRE_FALSE(
        saidBy("bchunk -w " + disc.quoted(".bin") + " " + disc.quoted(".cue") + " '" + out + "'").empty());
    for (int track = 1; track <= 3; ++track) {
        CAPTURE(track);
        CHECK(soundOfWav(out + "0" + std::to_string(track) + ".wav") == disc.sounds[track - 1]);
    }
}

TEST_CASE("cd-paranoia reads from a disc what the reader reads")
{
    Recorded disc;
    const auto reader = disc.desk.reader();
    Heard<ACD> heard{disc.desk.window, *reader};
    const Text ours = disc.desk.output + "/ours.wav";
    const Text theirs = disc.desk.output + "/theirs.wav";
    for (std::int16_t track = 1; track <= 3; ++track) {
        CAPTURE(track);
        heard.done = 0;
        REQUIRE(reader->ReadTrack(track, ours) == 0);
        REQUIRE(heard.end());
        // Little-endian by order: it guesses by the sound, and noise deceives it.
        saidBy("cd-paranoia -q -Z -c -d " + disc.quoted(".cue") + " " + std::to_string(track) + " '" +
               theirs + "'");
        CHECK(soundOfWav(ours) == disc.sounds[static_cast<std::size_t>(track) - 1]);
        CHECK(fileBytes(theirs) == fileBytes(ours));
    }
}

TEST_CASE("Lengths and places are those that cd-info finds, also with gaps, files and data")
{
    const struct {
        const char* what;
        const char* sheet;
        std::int64_t bytes;
    } cases[] = {
        {"gaps in the file",
         "FILE \"a.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 00 00:06:00\nINDEX "
         "01 "
         "00:08:10\n",
         2000 * bytesOfSector},
        {"a hidden track",
         "FILE \"a.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 00 00:00:00\nINDEX 01 00:10:00\nTRACK 02 AUDIO\nINDEX "
         "01 "
         "00:18:00\n",
         2000 * bytesOfSector},
        {"data, then sound",
         "FILE \"a.bin\" BINARY\nTRACK 01 MODE1/2352\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 01 00:08:00\n",
         2000 * bytesOfSector},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const DiscDesk desk;
        putFile(desk.discs + "/a.bin", Text(static_cast<std::size_t>(c.bytes), '\0'));
        putFile(desk.discs + "/a.cue", c.sheet);
        const auto contents = disc::makeImageDrive(desk.discs + "/a.cue")->contents();
        const Text said =
            saidBy("cd-info --no-header --no-device-info --no-analyze --cue-file='" + desk.discs + "/a.cue'");
        CAPTURE(said);
        int number = 0;
        for (const auto& track : contents.tracks) {
            char line[64];
            std::snprintf(line, sizeof line, "%06d %s", track.start, track.isAudio ? "audio" : "data");
            CAPTURE(++number);
            CHECK(hasLine(said, line));
        }
        char line[64];
        std::snprintf(line, sizeof line, "%06d leadout", contents.leadOut);
        CHECK(hasLine(said, line));
    }
}
