// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/unopened_files.h"

#include "tests/support/files.h"
#include "tests/support/mp3_frames.h"
#include "tests/support/no_sound.h"
#include "tests/support/recordings.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_parts.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>
#include <sys/stat.h>

namespace
{

constexpr std::size_t second = 44100;

using Notes = std::vector<Text>;

}

TEST_CASE("A file that the MP3 engine does not open is told of by its name, with the reason")
{
    SoundParts parts;
    putFile(parts.folder / "text.mp3", Text(100000, 'm'));
    mkdir((parts.folder / "folder.mp3").c_str(), 0700);
    const struct {
        const char* name;
        const char* reason;
    } cases[] = {
        {"missing.mp3", "There is no such file."},
        {"text.mp3", "It is no MP3 or WAV file, or a damaged one."},
        {"folder.mp3", "It is no file with sound in it."},
        {"text.mp3/under.mp3", "There is no such file."},
    };
    for (const auto& c : cases) {
        const Text path = parts.folder / c.name;
        parts.shell.notes.clear();
        CHECK(parts.mp3->Open(path, "") != 0);
        CHECK(parts.shell.notes == Notes{"A file cannot be opened|" + path + ": " + c.reason});
    }
}

TEST_CASE("A file that the WAV engine does not open is told of, too")
{
    SoundParts parts;
    putFile(parts.folder / "mp3.wav", mp3Bytes(noise(second / 2)));
    parts.openWav(parts.folder / "mp3.wav");
    parts.openWav(parts.folder / "missing.wav");
    CHECK(parts.shell.notes ==
          Notes{"A file cannot be opened|" + parts.folder / "mp3.wav" +
                    ": It is no WAV file, or a damaged one.",
                "A file cannot be opened|" + parts.folder / "missing.wav" + ": There is no such file."});
}

TEST_CASE("However often a file is tried, and by whichever engine, it is told of once for each reason")
{
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    for (int tries = 0; tries < 100; ++tries) {
        CHECK(parts.mp3->Open(path, "") != 0);
        parts.openWav(path);
    }
    CHECK(parts.shell.notes.size() == 1);
    putFile(path, "no sound");
    const auto isToldAgain = [&] {
        CHECK(parts.mp3->Open(path, "") != 0);
        return parts.shell.notes.size() == 2;
    };
    CHECK(waitUntil(isToldAgain));
    CHECK(parts.mp3->Open(parts.folder / "b.mp3", "") != 0);
    CHECK(parts.mp3->Open(path, "") != 0);
    CHECK(parts.shell.notes.size() == 3);
}

TEST_CASE("Why a file does not open is looked for once a second, and anew after it opened")
{
    SoundParts parts;
    audio::UnopenedFiles::Time now;
    audio::UnopenedFiles files(parts.shell, [&] { return now; });
    const Text path = parts.folder / "a.mp3";
    files.failed(path, "MP3");
    putFile(path, "no sound");
    now += std::chrono::milliseconds(999);
    files.failed(path, "MP3");
    CHECK(parts.shell.notes.size() == 1);
    files.failed(parts.folder / "b.mp3", "MP3");
    CHECK(parts.shell.notes.size() == 2);
    now += std::chrono::milliseconds(1);
    files.failed(path, "MP3");
    CHECK(parts.shell.notes.size() == 3);
    files.opened(path);
    files.failed(path, "MP3");
    CHECK(parts.shell.notes.size() == 4);
}

TEST_CASE("A file that opened and is gone again is told of anew")
{
    SoundParts parts;
    const Text path = parts.folder / "a.mp3";
    CHECK(parts.mp3->Open(path, "") != 0);
    putFile(path, mp3Bytes(noise(second / 2)));
    CHECK(parts.mp3->Open(path, "") == 0);
    CHECK(parts.shell.notes.size() == 1);
    std::filesystem::remove(path);
    CHECK(parts.mp3->Open(path, "") != 0);
    CHECK(parts.shell.notes.size() == 2);
}

TEST_CASE("Nothing is told of an empty name, of a file that opens, and of a conversion that says so itself")
{
    SoundParts parts;
    putFile(parts.folder / "good.mp3", mp3Bytes(noise(second / 2)));
    CHECK(parts.mp3->Open("", "") != 0);
    parts.openWav("");
    CHECK(parts.mp3->Open(parts.folder / "good.mp3", "") == 0);
    CHECK(parts.mp3->Open(parts.folder / "missing.mp3", parts.folder / "out.wav") != 0);
    CHECK(parts.shell.notes.empty());
}
