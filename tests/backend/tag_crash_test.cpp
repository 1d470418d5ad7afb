// SPDX-License-Identifier: GPL-3.0-or-later
// Kills a process that writes tags, at random moments: the file must always be whole, the old one or the new
// one.
#include "engines/tags/tag_file.h"

#include "files/state_part_notes.h"
#include "tests/support/child.h"
#include "tests/support/mp3_files.h"

#include <doctest/doctest.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

using namespace tags;

namespace
{

using namespace std::chrono_literals;

const Tag even{"Even", "Artist", "Album", "", 2000, 17};
const Tag odd{"\xD0\x9D\xD0\xB5\xD1\x87", Text(3000, 'o'), "Album", "A comment", 2001, 80};

// Never ends by itself, unless a writing fails.
void writeForEver(const Text& path, const Text& stateFolder)
{
    files::StatePartNotes notes(stateFolder);
    for (int i = 0;; ++i)
        endUnless(writeTag(path, i % 2 == 0 ? odd : even, notes) == "", 1);
}

// Kills a writer after a random time up to `longest`; true when it was still at work.
bool isKilledAtWork(const Text& path, const Text& stateFolder, std::chrono::microseconds longest,
                    std::minstd_rand& random)
{
    Child writer([&] { writeForEver(path, stateFolder); });
    std::this_thread::sleep_for(std::chrono::microseconds(random() % static_cast<unsigned>(longest.count())));
    kill(writer.id(), SIGKILL);
    return writer.wait() == 128 + SIGKILL;
}

struct Damage {
    int broken = 0;
    int interrupted = 0; // killed with a copy half made
    int leftovers = 0;   // copies that the next start did not remove
    int gaveUp = 0;
};

Damage killWriters(const TemporaryFolder& folder, std::size_t size, int kills,
                   std::chrono::microseconds longest)
{
    const TemporaryFolder state(memoryFolder());
    const Text audio = mp3Frames(static_cast<int>(size / 417));
    const Text path = putSong(folder, v2Tag(3, "") + audio);
    writeTag(path, even);
    std::minstd_rand random(static_cast<unsigned>(size));
    Damage damage;
    // On a busy machine a writer may not have begun.
    for (int i = 0; i < kills || (damage.interrupted == 0 && i < 50 * kills); ++i) {
        damage.gaveUp += isKilledAtWork(path, state.path(), longest, random) ? 0 : 1;
        damage.interrupted += namesInFolder(folder.path()).size() > 1 ? 1 : 0;
        files::removeNotedParts(state.path());
        damage.leftovers += holdsOnlyTheSong(folder) ? 0 : 1;
        const Tag tag = readTag(path);
        const Text bytes = fileBytes(path);
        const auto audioAt = bytes.find(audio.substr(0, 2000));
        const bool whole = audioAt != Text::npos && bytes.compare(audioAt, audio.size(), audio) == 0 &&
                           bytes.size() == audioAt + audio.size() + 128;
        damage.broken += whole && (tag == even || tag == odd) ? 0 : 1;
    }
    CHECK(writeTag(path, {"Last", "", "", "", 0, -1}) == "");
    CHECK(holdsOnlyTheSong(folder));
    return damage;
}

void checkKills(const Text& place, std::size_t size, int kills, std::chrono::microseconds longest)
{
    const TemporaryFolder folder(place);
    const Damage damage = killWriters(folder, size, kills, longest);
    CAPTURE(size);
    MESSAGE(size << " bytes, " << kills << " kills: " << damage.interrupted << " with a copy half made");
    CHECK(damage.broken == 0);
    CHECK(damage.gaveUp == 0);
    CHECK(damage.leftovers == 0);
    CHECK(damage.interrupted > 0);
}

}

TEST_CASE("A killed writer leaves a whole file, and the next start leaves no copy")
{
    checkKills(memoryFolder(), 300'000, 30, 10ms);
    checkKills(memoryFolder(), 5'000'000, 20, 30ms);
    checkKills("/tmp", 300'000, 10, 20ms);
}

// By hand: backend_tests --no-skip --test-case="*three hundred times*"
TEST_CASE("A writer killed three hundred times, also with files of an hour, leaves whole files" *
          doctest::skip())
{
    checkKills("/tmp", 300'000, 120, 20ms);
    checkKills("/tmp", 5'000'000, 120, 60ms);
    checkKills("/tmp", 140'000'000, 60, 1s);
}
