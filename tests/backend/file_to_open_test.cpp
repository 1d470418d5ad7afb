// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/file_to_open.h"

#include "tests/support/failing_disk.h"
#include "tests/support/mp3_files.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"

#include <doctest/doctest.h>

#include <unistd.h>

#include <cerrno>

using namespace std::chrono_literals;

namespace
{

struct Case {
    const char* what;
    std::vector<const char*> names; // in the folder
    const char* asked;
    const char* opened;
};

}

TEST_CASE("A name leads to its file, and without one to a file in other letters")
{
    const Case cases[] = {
        {"the name itself", {"a.mp3"}, "a.mp3", "a.mp3"},
        {"in capitals", {"CONF.MP3"}, "conf.mp3", "CONF.MP3"},
        {"asked for in capitals", {"conf.mp3"}, "CONF.MP3", "conf.mp3"},
        {"both: the exact one", {"A.MP3", "a.mp3"}, "a.mp3", "a.mp3"},
        {"both the other way round", {"A.MP3", "a.mp3"}, "A.MP3", "A.MP3"},
        {"another name", {"b.mp3"}, "a.mp3", "a.mp3"},
        {"a longer name", {"A.MP3x", "xA.MP3"}, "a.mp3", "a.mp3"},
        {"letters outside A to Z have no case", {"\xC3\x84.mp3"}, "\xC3\xA4.mp3", "\xC3\xA4.mp3"},
        {"beside such a letter they have", {"\xC3\xA4.MP3"}, "\xC3\xA4.mp3", "\xC3\xA4.MP3"},
        {"nothing there", {}, "a.mp3", "a.mp3"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        TemporaryFolder folder;
        for (const char* name : c.names)
            putFile(folder / name, "x");
        CHECK(files::fileToOpen(folder / c.asked) == folder / c.opened);
    }
    CHECK(files::fileToOpen("") == "");
}

TEST_CASE("Only the last name may be in other letters")
{
    TemporaryFolder folder;
    std::filesystem::create_directory(folder / "Album");
    putFile(folder / "Album/a.mp3", "x");
    CHECK(files::fileToOpen(folder / "album/a.mp3") == folder / "album/a.mp3");
    CHECK(files::fileToOpen(folder / "Album/A.mp3") == folder / "Album/a.mp3");
}

TEST_CASE("Of two files in other letters the first of a scan is taken, and a link to nowhere is none")
{
    TemporaryFolder folder;
    putFile(folder / "A.mp3", "x");
    putFile(folder / "a.MP3", "x");
    REQUIRE(symlink("nowhere", (folder / "A.MP3").c_str()) == 0);
    Text first;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        if (first.empty() && !entry.is_symlink())
            first = entry.path();
    CHECK(files::fileToOpen(folder / "a.mp3") == first);
}

TEST_CASE("A link to nowhere is no file in other letters")
{
    TemporaryFolder folder;
    REQUIRE(symlink("nowhere", (folder / "A.mp3").c_str()) == 0);
    CHECK(files::fileToOpen(folder / "a.mp3") == folder / "a.mp3");
}

TEST_CASE("A file that may not be read is left to who opens it")
{
    TemporaryFolder folder;
    putFile(folder / "a.mp3", "x");
    const FailingDisk refusing(folder.path(), "open", EACCES);
    CHECK(files::fileToOpen(folder / "a.mp3") == folder / "a.mp3");
    CHECK(refusing.failures() == 1);
}

TEST_CASE("The engines play a file whose name is in other letters")
{
    SoundParts parts;
    putFile(parts.folder / "CONF.MP3", mp3Bytes(noise(22050)));
    putWav(parts.folder / "TONE.WAV", noise(22050), 44100, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    CHECK(parts.mp3->Open(parts.folder / "conf.mp3", "") == 0);
    CHECK(parts.mp3->Length() > 0);
    CHECK(parts.mp3->Open(parts.folder / "tone.wav", "") == 0);
    parts.openWav(parts.folder / "tone.wav");
    CHECK(parts.wav->Length() == 500);
    CHECK(parts.mp3->Open(parts.folder / "conf.mp3", parts.folder / "out.wav") == 0);
}

TEST_CASE("A tag goes into the file in other letters, and no second file is made")
{
    SoundParts parts;
    putFile(parts.folder / "SONG.MP3", mp3Bytes(noise(22050)));
    REQUIRE(parts.mp3->Open(parts.folder / "song.mp3", "") == 0);
    parts.mp3->setTitle("Other letters");
    parts.mp3->WriteTag();
    CHECK_FALSE(std::filesystem::exists(parts.folder / "song.mp3"));
    REQUIRE(parts.mp3->Open(parts.folder / "SONG.MP3", "") == 0);
    CHECK(parts.mp3->Title() == "Other letters");
}
