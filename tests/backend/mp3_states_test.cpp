// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/tag_file.h"
#include "tests/support/mp3_files.h"
#include "tests/support/mp3_frames.h"
#include "tests/support/no_sound.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

using namespace std::chrono_literals;
using namespace tags;

namespace
{

constexpr std::size_t second = 44100;

// Two files, and no sound server: the silent clock plays.
struct Files : NoSound, SoundParts {
    Files()
    {
        putFile(song, mp3Bytes(noise(second * 5)));
        putFile(clip, silentFrames(3));
        putWav(wav, noise(second));
    }

    const Text song = folder / "song.mp3";
    const Text clip = folder / "clip.mp3";
    const Text wav = folder / "sound.wav";
};

const Tag set{"Title", "Artist", "Album", "Comment", 1999, 17};

Tag fieldsOf(const Mp3Play& mp3)
{
    return {mp3.Title(), mp3.Artist(), mp3.Album(), mp3.Comment(), mp3.Year(), mp3.GenreIndex()};
}

void setFields(Mp3Play& mp3, const Tag& tag = set)
{
    mp3.setTitle(tag.title);
    mp3.setArtist(tag.artist);
    mp3.setAlbum(tag.album);
    mp3.setGenreIndex(tag.genreIndex);
    mp3.setYear(tag.year);
    mp3.setComment(tag.comment);
}

// The calls of the window that edits tags, in their order.
void save(Mp3Play& mp3, const Tag& tag)
{
    setFields(mp3, tag);
    mp3.Close();
    mp3.WriteTag();
    mp3.Stop();
    mp3.Close();
}

bool plays(const Mp3Play& mp3) { return mp3.IsPlaying() != 0; }

}

TEST_CASE("With nothing open every question has an answer, and no call does harm")
{
    SoundParts parts;
    const auto check = [&] {
        CHECK(parts.mp3->Length() == 0);
        CHECK(parts.mp3->Bitrate() == 0);
        CHECK(parts.mp3->Frequency() == 0);
        CHECK(parts.mp3->CurrentFrame() == 0);
        CHECK(parts.mp3->FrameDuration() == 26.122F);
        CHECK(parts.mp3->LeftVolume() == 0);
        CHECK(parts.mp3->RightVolume() == 0);
        CHECK(parts.mp3->IsPlaying() == 0);
        CHECK(parts.mp3->DecodeLength() == 0);
        CHECK(parts.mp3->Title().empty());
        CHECK(parts.mp3->Artist().empty());
        CHECK(parts.mp3->Album().empty());
        CHECK(parts.mp3->Comment().empty());
        CHECK(parts.mp3->Year() == 0);
        CHECK(parts.mp3->GenreIndex() == -1);
    };
    check();
    parts.mp3->Close();
    parts.mp3->Play();
    parts.mp3->Pause();
    parts.mp3->Stop();
    parts.mp3->Seek(10);
    parts.mp3->SetVolume(10, 10);
    CHECK(parts.mp3->Open("", "") != 0);
    check();
    CHECK(parts.mp3->GenreName(-1).empty());
    CHECK(parts.shell.notes.empty());
}

TEST_CASE("A file plays from Play on, also in a pause, and until Stop, Close or Open")
{
    Files files;
    struct Case {
        const char* what;
        std::function<void(Mp3Play&)> act;
        bool playsThen;
        int sounds;
    };
    const Case cases[] = {
        {"Play once more", [](Mp3Play& mp3) { mp3.Play(); }, true, 1},
        {"Pause", [](Mp3Play& mp3) { mp3.Pause(); }, true, 0},
        {"Pause twice",
         [](Mp3Play& mp3) {
             mp3.Pause();
             mp3.Pause();
         },
         true, 0},
        {"Pause and Play",
         [](Mp3Play& mp3) {
             mp3.Pause();
             mp3.Play();
         },
         true, 1},
        {"Seek", [](Mp3Play& mp3) { mp3.Seek(10); }, true, 1},
        {"Stop", [](Mp3Play& mp3) { mp3.Stop(); }, false, 0},
        {"Pause and Stop",
         [](Mp3Play& mp3) {
             mp3.Pause();
             mp3.Stop();
         },
         false, 0},
        {"Close", [](Mp3Play& mp3) { mp3.Close(); }, false, 0},
        {"Open the same", [&](Mp3Play& mp3) { mp3.Open(files.song, ""); }, false, 0},
        {"Open another", [&](Mp3Play& mp3) { mp3.Open(files.clip, ""); }, false, 0},
        {"Open a missing one", [](Mp3Play& mp3) { mp3.Open("/missing", ""); }, false, 0},
        {"Open for decoding", [&](Mp3Play& mp3) { mp3.Open(files.song, files.folder / "o.wav"); }, false, 0},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        REQUIRE(files.mp3->Open(files.song, "") == 0);
        CHECK(files.mp3->IsPlaying() == 0);
        files.mp3->Play();
        CHECK(files.mp3->IsPlaying() == 1);
        CHECK(files.activity.running == 1);
        c.act(*files.mp3);
        CHECK(plays(*files.mp3) == c.playsThen);
        CHECK(files.activity.running == c.sounds);
    }
}

TEST_CASE("The position is 0 after Open, Stop and Close, and stays in a pause")
{
    Files files;
    const auto playOn = [&] {
        const auto then = std::chrono::steady_clock::now();
        files.mp3->Play();
        REQUIRE(waitUntil([&] { return files.mp3->CurrentFrame() > 3; }));
        CHECK(files.mp3WentOn(0, then));
    };
    files.mp3->Open(files.song, "");
    CHECK(files.mp3->CurrentFrame() == 0);
    playOn();
    files.mp3->Pause();
    CHECK(files.mp3->CurrentFrame() > 3);
    files.mp3->Stop();
    CHECK(files.mp3->CurrentFrame() == 0);
    playOn();
    files.mp3->Open(files.song, "");
    CHECK(files.mp3->CurrentFrame() == 0);
    playOn();
    files.mp3->Close();
    CHECK(files.mp3->CurrentFrame() == 0);
}

TEST_CASE("After Play on a file at least one question is answered with 1, however short the file is")
{
    Files files;
    REQUIRE(files.mp3->Open(files.clip, "") == 0);
    for (int time = 0; time < 3; ++time) {
        files.mp3->Play();
        CHECK(waitUntil([&] { return files.post.count() == static_cast<std::size_t>(time) + 1; }));
        CHECK(files.mp3->IsPlaying() == 1);
        CHECK(files.mp3->IsPlaying() == 0);
        CHECK(files.mp3->CurrentFrame() == 0);
    }
    files.mp3->Play();
    CHECK(waitUntil([&] { return files.post.count() == 4; }));
    files.mp3->Stop();
    CHECK(files.mp3->IsPlaying() == 0);
}

TEST_CASE("A seek before Play says where playing starts, and Stop forgets it")
{
    Files files;
    files.mp3->Open(files.song, "");
    files.mp3->Seek(100);
    CHECK(files.mp3->CurrentFrame() == 100);
    const auto then = std::chrono::steady_clock::now();
    files.mp3->Play();
    CHECK(waitUntil([&] { return files.mp3->CurrentFrame() > 102; }));
    CHECK(files.mp3WentOn(100, then));
    files.mp3->Seek(50);
    files.mp3->Stop();
    CHECK(files.mp3->CurrentFrame() == 0);
}

TEST_CASE("A pause at the very end is left by Play alone")
{
    Files files;
    files.mp3->Open(files.song, "");
    files.mp3->Play();
    files.mp3->Pause();
    files.mp3->Seek(1000000);
    std::this_thread::sleep_for(100ms);
    CHECK(files.mp3->IsPlaying() == 1);
    files.mp3->Play();
    CHECK(waitUntil([&] { return files.mp3->IsPlaying() == 0; }));
}

TEST_CASE("The tag fields answer for the open file, set values included")
{
    Files files;
    REQUIRE(files.mp3->Open(files.song, "") == 0);
    setFields(*files.mp3);
    for (const bool closed : {false, true}) {
        if (closed)
            files.mp3->Close();
        CHECK(fieldsOf(*files.mp3) == set);
    }
    CHECK(files.mp3->Open("/missing", "") != 0);
    CHECK(fieldsOf(*files.mp3) == Tag());
}

TEST_CASE("What is saved, opened again in the editor and saved again wipes nothing")
{
    Files files;
    REQUIRE(files.mp3->Open(files.song, "") == 0);
    for (int time = 0; time < 3; ++time) {
        CAPTURE(time);
        save(*files.mp3, time == 0 ? set : fieldsOf(*files.mp3));
        CHECK(fieldsOf(*files.mp3) == set);
        CHECK(readTag(files.song) == set);
    }
    CHECK(files.shell.notes.empty());
}

TEST_CASE("A file that was closed with nothing set is forgotten: no later saving reaches it")
{
    Files files;
    writeTag(files.song, set);
    const Text before = fileBytes(files.song);
    struct Case {
        const char* what;
        std::function<void(Mp3Play&)> act;
    };
    const Case cases[] = {
        {"opened and closed", [&](Mp3Play& mp3) { mp3.Open(files.song, ""); }},
        {"asked", [&](Mp3Play& mp3) { mp3.Open(files.song, ""), mp3.Title(); }},
        {"played", [&](Mp3Play& mp3) { mp3.Open(files.song, ""), mp3.Play(), mp3.Stop(); }},
        {"set, and opened once more",
         [&](Mp3Play& mp3) { mp3.Open(files.song, ""), mp3.setTitle("x"), mp3.Open(files.song, ""); }},
        {"a sound without a tag", [&](Mp3Play& mp3) { mp3.Open(files.song, ""), mp3.Open(files.wav, ""); }},
        {"saved, and closed once more",
         [&](Mp3Play& mp3) { mp3.Open(files.song, ""), save(mp3, fieldsOf(mp3)); }},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        c.act(*files.mp3);
        files.mp3->Close();
        CHECK(fieldsOf(*files.mp3) == Tag());
        CHECK(files.shell.notes.empty());
        save(*files.mp3, {"Another", "", "", " ", 0, 80});
        CHECK(fileBytes(files.song) == before);
        CHECK(files.shell.notes == std::vector<Text>{"The tag was not saved|No MP3 file is open."});
        CHECK(fieldsOf(*files.mp3) == Tag());
        files.shell.notes.clear();
    }
}

TEST_CASE("A writing with nothing open writes nothing and is told to the desktop")
{
    Files files;
    const Text refusal = "The tag was not saved|No MP3 file is open.";
    files.mp3->WriteTag();
    CHECK(files.shell.notes == std::vector<Text>{refusal});
    files.mp3->Open("/missing", "");
    files.shell.notes.clear();
    files.mp3->setTitle("Title");
    files.mp3->WriteTag();
    CHECK(files.shell.notes == std::vector<Text>{refusal});
}

TEST_CASE("The file that is opened for its levels takes no tag")
{
    Files files;
    const Text before = fileBytes(files.clip);
    const auto mp3 = audio::makeMpg123Play(files.output, files.post, files.shell, NoPartNotes::instance(),
                                           files.unopened, files.clip);
    REQUIRE(mp3->Open(files.clip, "") == 0);
    save(*mp3, set);
    CHECK(fileBytes(files.clip) == before);
    REQUIRE(files.shell.notes.size() == 1);
    CHECK(files.shell.notes[0].find(files.clip) != Text::npos);
    REQUIRE(mp3->Open(files.song, "") == 0);
    save(*mp3, set);
    CHECK(readTag(files.song) == set);
    CHECK(files.shell.notes.size() == 1);
}

TEST_CASE("A genre without a number has its name, and a saving as the editor saves leaves it")
{
    Files files;
    putFile(files.song, v2Tag(3, v2Frame(3, "TCON", latin1Text("Heavy Metal"))) + fileBytes(files.song));
    REQUIRE(files.mp3->Open(files.song, "") == 0);
    CHECK(files.mp3->GenreIndex() == -1);
    CHECK(files.mp3->GenreName(files.mp3->GenreIndex()) == "Heavy Metal");
    CHECK(files.mp3->GenreName(17) == "Rock");
    save(*files.mp3, {"Title", "", "", " ", 0, 80});
    REQUIRE(files.mp3->Open(files.song, "") == 0);
    CHECK(files.mp3->GenreName(files.mp3->GenreIndex()) == "Heavy Metal");
    CHECK(v1Of(fileBytes(files.song)).genre == 80);
    save(*files.mp3, {"Title", "", "", " ", 0, 17});
    REQUIRE(files.mp3->Open(files.song, "") == 0);
    CHECK(files.mp3->GenreIndex() == 17);
    CHECK(files.mp3->GenreName(-1) == "");
    CHECK(files.shell.notes.empty());
}

TEST_CASE("A tag that cannot be written is told to the desktop")
{
    Files files;
    REQUIRE(files.mp3->Open(files.song, "") == 0);
    files.mp3->setTitle("Title");
    files.mp3->Close();
    std::filesystem::remove(files.song);
    files.mp3->WriteTag();
    REQUIRE(files.shell.notes.size() == 1);
    CHECK(files.shell.notes[0].find(files.song) != Text::npos);
}

TEST_CASE("An engine that goes while it plays leaves nothing behind")
{
    Files files;
    files.mp3->Open(files.song, "");
    files.mp3->Play();
    CHECK(files.activity.running == 1);
    files.mp3.reset();
    CHECK(files.activity.running == 0);
}

// What asks for the file may hang, and has a thread of its own, which ends with the answer.
TEST_CASE("Making an engine and opening a file leaves no thread behind")
{
    const auto threads = [] {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::distance(begin(tasks), end(tasks));
    };
    const auto before = threads();
    Files files;
    CHECK(files.mp3->Open(files.song, "") == 0);
    files.mp3->SetVolume(70, 70);
    files.openWav(files.song);
    CHECK(waitUntil([&] { return threads() <= before; }));
}
