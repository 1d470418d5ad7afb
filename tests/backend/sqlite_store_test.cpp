// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/sqlite_store.h"

#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/forced_disk.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/timing.h"
#include "tests/support/wait_until.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <thread>

using namespace std::chrono_literals;

namespace
{

constexpr const char* app = "Velmora";
constexpr const char* section = "Position StartUp Window";

// A store in a folder that does not exist yet.
struct Place {
    TemporaryFolder folder;
    Text path = folder / "config/Velmora/settings.sqlite";

    Text get(const Text& key) const { return desktop::SqliteStore(path).GetSetting(app, section, key); }
    void save(const Text& key, const Text& value) const
    {
        desktop::SqliteStore(path).SaveSetting(app, section, key, value);
    }
    void make() const { save("Left", "1"); }
};

// Somebody else at the same file.
class Outsider
{
public:
    explicit Outsider(const Text& path) { sqlite3_open(path.c_str(), &connection_); }
    ~Outsider() { sqlite3_close(connection_); }
    bool runs(const char* statement)
    {
        return sqlite3_exec(connection_, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    int left() // of the windows
    {
        int number = 0;
        const auto take = [](void* into, int, char** values, char**) {
            *static_cast<int*>(into) = std::stoi(*values);
            return 0;
        };
        sqlite3_exec(connection_, "SELECT value FROM settings WHERE key = 'Left'", take, &number, nullptr);
        return number;
    }

private:
    sqlite3* connection_ = nullptr;
};

double millisecondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Nobody drags without a pause. However long the disk takes for what came before, one of them is longer: the
// log is cut off by the first save behind it.
bool isCutInAPause(const Place& place, const std::function<void()>& save)
{
    auto pause = 100ms;
    return waitUntil([&] {
        std::this_thread::sleep_for(pause);
        pause *= 2;
        save();
        return std::filesystem::file_size(place.path + "-wal") < 1'500'000;
    });
}

// What a process tells of its saving before it is killed. What the store could not take for now, and offers
// again, is not saved: somebody else has to see it.
struct Told {
    int tried = 0;
    int saved = 0;
};

void saveForEver(const Place& place, int pipe, std::chrono::milliseconds pauseBehindThousand)
{
    desktop::SqliteStore store(place.path);
    store.SaveSetting(app, section, "Left", "0"); // makes the file
    Outsider witness(place.path);
    Told told;
    for (;;) {
        ++told.tried;
        std::ignore = write(pipe, &told, sizeof told);
        store.SaveSetting(app, section, "Left", std::to_string(told.tried));
        told.saved = std::max(told.saved, witness.left());
        std::ignore = write(pipe, &told, sizeof told);
        if (told.tried % 1000 == 999)
            std::this_thread::sleep_for(pauseBehindThousand);
    }
}

void checkKillBehind(const Place& place, int saves, std::chrono::milliseconds pauseBehindThousand)
{
    int pipes[2];
    REQUIRE(pipe2(pipes, O_CLOEXEC) == 0);
    Child writer([&] { saveForEver(place, pipes[1], pauseBehindThousand); });
    close(pipes[1]);
    Told told;
    const auto isTold = [&] { return read(pipes[0], &told, sizeof told) == sizeof told; };
    while (told.saved < saves && isTold())
        continue;
    writer.kill();
    while (isTold())
        continue;
    close(pipes[0]);
    const int found = std::stoi("0" + place.get("Left"));
    CHECK(told.saved >= saves);
    CHECK(found >= told.saved);
    CHECK(found <= told.tried);
    place.save("Left", "0");
}

}

TEST_CASE("An absent key is an empty text, and reading it leaves no value behind")
{
    const Place place;
    CHECK(place.get("Left").empty());
    CHECK(place.get("Left").empty());
}

TEST_CASE("Settings outlast the store that saved them")
{
    const Place place;
    {
        desktop::SqliteStore store(place.path);
        store.SaveSetting(app, section, "Left", "1200");
        store.SaveSetting(app, "Position PlayList Editor", "Left", "7635.5");
        store.SaveSetting("Another", section, "Left", "3");
        store.SaveSetting(app, section, "Left", "1215");
        CHECK(store.GetSetting(app, section, "Left") == "1215");
    }
    desktop::SqliteStore store(place.path);
    CHECK(store.GetSetting(app, section, "Left") == "1215");
    CHECK(store.GetSetting(app, "Position PlayList Editor", "Left") == "7635.5");
    CHECK(store.GetSetting("Another", section, "Left") == "3");
    CHECK(store.GetSetting(app, section, "left").empty());
}

TEST_CASE("Every value comes back byte for byte")
{
    const struct {
        const char* what;
        Text value;
    } cases[] = {
        {"quotes", "it's \"quoted\"; DROP TABLE settings"},
        {"bytes that are no UTF-8", "/music/caf\xE9/\xFF\xFE.mp3"},
        {"a NUL inside", Text("a\0b", 3)},
        {"line ends", "a\r\nb"},
        {"digits stay text", "007.50"},
        {"a long one", Text(1 << 20, 'x')},
    };
    const Place place;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        place.save("key", c.value);
        CHECK(place.get("key") == c.value);
    }
}

TEST_CASE("An equal value writes nothing")
{
    const Place place;
    desktop::SqliteStore store(place.path);
    store.SaveSetting(app, section, "Left", "1200");
    const Text log = fileBytes(place.path + "-wal");
    REQUIRE(!log.empty());
    for (int i = 0; i < 100; ++i)
        store.SaveSetting(app, section, "Left", "1200");
    store.SaveSetting(app, section, "never saved", "");
    CHECK(fileBytes(place.path + "-wal") == log);
    store.SaveSetting(app, section, "Left", "1215");
    CHECK(fileBytes(place.path + "-wal") != log);
}

TEST_CASE("What another process saved is seen within a second, and undone by the next save")
{
    const Place place;
    auto now = std::chrono::steady_clock::now();
    desktop::SqliteStore one(place.path, [&] { return now; });
    one.SaveSetting(app, section, "SHOWN", "YES");
    now += files::Trust::length;
    CHECK(one.GetSetting(app, section, "SHOWN") == "YES");
    REQUIRE(Outsider(place.path).runs("UPDATE settings SET value = 'NO'"));
    CHECK(one.GetSetting(app, section, "SHOWN") == "YES"); // the file is not looked at on every tick
    now += files::Trust::length;
    CHECK(one.GetSetting(app, section, "SHOWN") == "NO");
    one.SaveSetting(app, section, "SHOWN", "YES");
    CHECK(place.get("SHOWN") == "YES");
}

TEST_CASE("A tick that saves what is saved undoes another process's change within 1.1 s")
{
    const Place place;
    auto now = std::chrono::steady_clock::now();
    desktop::SqliteStore store(place.path, [&] { return now; });
    for (const auto pace : {16ms, 40ms, 500ms}) {
        CAPTURE(pace.count());
        for (int time = 0; time < 100; ++time, now += pace)
            store.SaveSetting(app, section, "SHOWN", "YES");
        REQUIRE(Outsider(place.path).runs("UPDATE settings SET value = 'NO'"));
        const auto then = now;
        while (place.get("SHOWN") != "YES" && now < then + 10s) {
            now += pace;
            store.SaveSetting(app, section, "SHOWN", "YES");
        }
        CHECK(now - then <= 1100ms);
    }
}

TEST_CASE("Two processes that save at once lose nothing")
{
    const Place place;
    const auto saveMany = [&](const Text& prefix) {
        desktop::SqliteStore store(place.path);
        for (int i = 0; i < 300; ++i)
            store.SaveSetting(app, section, prefix + std::to_string(i), std::to_string(i));
        // What the other process was in the way of is saved by a later tick.
        return waitUntil([&] {
            store.SaveSetting(app, section, prefix + "0", "0");
            desktop::SqliteStore witness(place.path);
            for (int i = 0; i < 300; ++i)
                if (witness.GetSetting(app, section, prefix + std::to_string(i)) != std::to_string(i))
                    return false;
            return true;
        });
    };
    Child one([&] { saveMany("one"); });
    Child other([&] { saveMany("other"); });
    REQUIRE(one.wait() == 0);
    REQUIRE(other.wait() == 0);
    desktop::SqliteStore store(place.path);
    for (int i = 0; i < 300; ++i)
        for (const char* prefix : {"one", "other"}) {
            CAPTURE(prefix);
            REQUIRE(store.GetSetting(app, section, prefix + std::to_string(i)) == std::to_string(i));
        }
}

TEST_CASE("A kill at any instant loses nothing that was saved")
{
    const Place place;
    for (int round = 0; round < 30; ++round) {
        CAPTURE(round);
        checkKillBehind(place, 1 + round * 61, 0ms);
    }
    CHECK(namesInFolder(place.folder / "config/Velmora").count("settings.sqlite.damaged") == 0);
}

TEST_CASE("However much is saved, the log is soon short enough to be read at a start")
{
    const Place place;
    desktop::SqliteStore store(place.path);
    for (int i = 0; i < 5000; ++i)
        store.SaveSetting(app, section, "Left", std::to_string(i));
    int i = 0;
    CHECK(isCutInAPause(place, [&] { store.SaveSetting(app, section, "Left", std::to_string(++i)); }));
    for (int more = 0; more < 10; ++more)
        store.SaveSetting(app, section, "Top", std::to_string(more));
    CHECK(place.get("Left") == std::to_string(i));
    CHECK(place.get("Top") == "9");
}

TEST_CASE("No save waits for a disk that takes half a second for a force, and the disk is forced behind it")
{
    const Place place;
    desktop::SqliteStore store(place.path);
    const ForcedDisk slow(500ms);
    const int before = ForcedDisk::forces;
    ForcedDisk::forcesOfThisThread = 0;
    int saved = 0;
    const auto saving = [&] {
        return millisecondsOf([&] { store.SaveSetting(app, section, "Left", std::to_string(++saved)); });
    };
    const auto longestOfMany = [&] {
        double longest = 0;
        for (int i = 0; i < 1500; ++i) // the disk is forced behind each thousand
            longest = std::max(longest, saving());
        return longest;
    };
    CHECK(atBest(50, longestOfMany) < 50);
    CHECK(isCutInAPause(place, saving));
    CHECK(ForcedDisk::forces >= before + 2);
    CHECK(ForcedDisk::forcesOfThisThread == 0);
}

TEST_CASE("A kill while the disk is behind loses nothing that was saved")
{
    const Place place;
    for (const int saves : {1500, 3000}) {
        CAPTURE(saves);
        Child child([&] {
            const ForcedDisk slow(500ms);
            desktop::SqliteStore store(place.path);
            for (int i = 0; i <= saves; ++i)
                store.SaveSetting(app, section, "Left", std::to_string(i));
            raise(SIGKILL);
        });
        CHECK(child.wait() == 128 + SIGKILL);
        CHECK(place.get("Left") == std::to_string(saves));
    }
}

TEST_CASE("A kill while the log is cut off loses nothing that was saved")
{
    const Place place;
    for (int round = 0; round < 20; ++round) {
        CAPTURE(round);
        checkKillBehind(place, 1900 + round * 11, 20ms); // in which the other thread comes to its end
    }
}

TEST_CASE("A file that is no database is set aside and a new one begun")
{
    const struct {
        const char* what;
        Text content;
    } cases[] = {
        {"text", "[Settings]\nLeft=1\n" + Text(2000, 'x')},
        {"zeros", Text(8192, '\0')},
        {"a header and nothing more", Text("SQLite format 3\0", 16)},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Place place;
        place.make();
        putFile(place.path, c.content);
        desktop::SqliteStore store(place.path);
        CHECK(store.GetSetting(app, section, "Left").empty());
        store.SaveSetting(app, section, "Left", "2");
        CHECK(place.get("Left") == "2");
        CHECK(fileBytes(place.path + ".damaged") == c.content);
    }
}

TEST_CASE("An empty file is a store without settings")
{
    const Place place;
    place.make();
    putFile(place.path, "");
    place.save("Left", "2");
    CHECK(place.get("Left") == "2");
    CHECK(fileBytes(place.path + ".damaged").empty());
}

TEST_CASE("A database whose pages are damaged is set aside when that shows")
{
    const Place place;
    place.make();
    Text bytes = fileBytes(place.path);
    REQUIRE(bytes.size() >= 2048);
    bytes.replace(1024, bytes.size() - 1024, bytes.size() - 1024, '\xAA');
    putFile(place.path, bytes);
    desktop::SqliteStore store(place.path);
    CHECK(store.GetSetting(app, section, "Left").empty());
    store.SaveSetting(app, section, "Left", "2");
    CHECK(store.GetSetting(app, section, "Left") == "2");
    CHECK(fileBytes(place.path + ".damaged") == bytes);
}

TEST_CASE("A cut database is set aside")
{
    const Place place;
    place.make();
    const Text bytes = fileBytes(place.path);
    putFile(place.path, bytes.substr(0, 1000));
    place.save("Left", "2");
    CHECK(place.get("Left") == "2");
    CHECK(fileBytes(place.path + ".damaged") == bytes.substr(0, 1000));
}

TEST_CASE("Somebody else's database is set aside")
{
    const Place place;
    place.make();
    REQUIRE(Outsider(place.path).runs("DROP TABLE settings; CREATE TABLE settings (colour TEXT)"));
    place.save("Left", "2");
    CHECK(place.get("Left") == "2");
    CHECK(Outsider(place.path + ".damaged").runs("SELECT colour FROM settings"));
}

TEST_CASE("A view in the place of the table, which may ask without end, is set aside and never asked")
{
    const Place place;
    place.make();
    REQUIRE(Outsider(place.path)
                .runs("DROP TABLE settings; CREATE VIEW settings (application, section, key, value) AS"
                      " SELECT 'Velmora', 'Position StartUp Window', 'Left', 'answered';"
                      "CREATE TRIGGER takes INSTEAD OF INSERT ON settings BEGIN SELECT 1; END"));
    CHECK(place.get("Left").empty());
    place.save("Left", "2");
    CHECK(place.get("Left") == "2");
    CHECK(Outsider(place.path + ".damaged").runs("SELECT value FROM settings"));
}

TEST_CASE("A database that keeps its texts as UTF-16 gives back what was saved")
{
    const Place place;
    place.make();
    std::filesystem::remove(place.path);
    REQUIRE(Outsider(place.path).runs("PRAGMA encoding = 'UTF-16be'; CREATE TABLE other (colour TEXT)"));
    place.save("Left", "12 caf\xC3\xA9");
    CHECK(place.get("Left") == "12 caf\xC3\xA9");
    CHECK(Outsider(place.path).runs("SELECT colour FROM other"));
}

TEST_CASE("What somebody has tied to the saving of settings is not carried out")
{
    const Place place;
    place.make();
    REQUIRE(Outsider(place.path)
                .runs("CREATE TRIGGER forgets AFTER INSERT ON settings BEGIN DELETE FROM settings; END"));
    place.save("Left", "2");
    CHECK(place.get("Left") == "2");
}

TEST_CASE("Damage in the middle of a run is met without a word")
{
    const Place place;
    desktop::SqliteStore store(place.path);
    store.SaveSetting(app, section, "Left", "1");
    store.SaveSetting(app, section, "Top", "5");
    REQUIRE(Outsider(place.path).runs("DROP TABLE settings"));
    store.SaveSetting(app, section, "Left", "2");
    CHECK(store.GetSetting(app, section, "Left") == "2");
    CHECK(place.get("Left") == "2");
    store.SaveSetting(app, section, "Top", "5"); // which the new store does not have yet
    CHECK(place.get("Top") == "5");
}

TEST_CASE("Two processes that meet the same damage agree on one new store")
{
    const Place place;
    const auto saveAtLast = [&](const Text& key, const Text& value) {
        desktop::SqliteStore store(place.path);
        endUnless(waitUntil([&] {
                      store.SaveSetting(app, section, key, value);
                      return place.get(key) ==
                             value; // the other process may have been in the way for a moment
                  }),
                  1);
    };
    for (int round = 0; round < 10; ++round) {
        CAPTURE(round);
        place.make();
        std::filesystem::remove(place.path + "-wal");
        putFile(place.path, Text(4096, 'x'));
        Child one([&] { saveAtLast("one", "1"); });
        Child other([&] { saveAtLast("other", "2"); });
        REQUIRE(one.wait() == 0);
        REQUIRE(other.wait() == 0);
        CHECK(place.get("one") == "1");
        CHECK(place.get("other") == "2");
    }
}

TEST_CASE("A busy store is waited for only a moment, and gets the value later")
{
    const auto waiting = [] {
        const Place place;
        desktop::SqliteStore store(place.path);
        store.SaveSetting(app, section, "Left", "1");
        Outsider outsider(place.path);
        REQUIRE(outsider.runs("BEGIN IMMEDIATE"));
        const double waited = millisecondsOf([&] {
            for (int i = 2; i < 100; ++i)
                store.SaveSetting(app, section, "Left", std::to_string(i));
        });
        CHECK(store.GetSetting(app, section, "Left") == "99");
        CHECK(place.get("Left") == "1");
        REQUIRE(outsider.runs("COMMIT"));
        CHECK(waitUntil([&] {
            store.SaveSetting(app, section, "SHOWN", "YES");
            return place.get("Left") == "99";
        }));
        CHECK(fileBytes(place.path + ".damaged").empty());
        return waited;
    };
    CHECK(atBest(500, waiting) < 500); // once fifty, not a hundred times
}

TEST_CASE("A locked store gives no values and costs no more than a moment")
{
    const Place place;
    place.make();
    Outsider outsider(place.path);
    REQUIRE(outsider.runs("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE"));
    const auto waiting = [&] {
        desktop::SqliteStore store(place.path);
        return millisecondsOf([&] {
            for (int i = 0; i < 100; ++i)
                CHECK(store.GetSetting(app, section, "Left").empty());
        });
    };
    CHECK(atBest(500, waiting) < 500);
    CHECK(fileBytes(place.path + ".damaged").empty());
}

TEST_CASE("A full disk keeps the old store and the run's own values")
{
    const Place place;
    place.make();
    Child child([&] {
        const rlimit limit{8 * 1024, 8 * 1024};
        signal(SIGXFSZ, SIG_IGN);
        endUnless(setrlimit(RLIMIT_FSIZE, &limit) == 0, 98);
        desktop::SqliteStore store(place.path);
        store.SaveSetting(app, section, "long", Text(100'000, 'x'));
        store.SaveSetting(app, section, "Left", "2");
        endUnless(store.GetSetting(app, section, "long").size() == 100'000, 1);
        endUnless(store.GetSetting(app, section, "Left") == "2", 2);
    });
    CHECK(child.wait() == 0);
    CHECK(place.get("long").empty());
    CHECK(fileBytes(place.path + ".damaged").empty());
}

TEST_CASE("A folder that takes no files is no reason to fail")
{
    const Place place;
    chmod(place.folder.path().c_str(), 0555);
    Child child([&] {
        becomeNobody();
        desktop::SqliteStore store(place.path);
        store.SaveSetting(app, section, "Left", "1");
        endUnless(store.GetSetting(app, section, "Left") == "1", 1);
    });
    CHECK(child.wait() == 0);
    chmod(place.folder.path().c_str(), 0755);
    CHECK(namesInFolder(place.folder.path()).empty());
}

TEST_CASE("A store that may only be read is read, and stays")
{
    const Place place;
    place.make();
    const Text folder = place.folder / "config/Velmora";
    // What a killed process leaves: the log and its index stay beside the file.
    Child([&] {
        desktop::SqliteStore store(place.path);
        store.SaveSetting(app, section, "Left", "7");
        _exit(0);
    }).wait();
    REQUIRE(namesInFolder(folder).size() == 3);
    for (const Text& name : namesInFolder(folder))
        chmod((folder + "/" + name).c_str(), 0444);
    for (const Text& path : {place.folder.path(), place.folder / "config", folder})
        chmod(path.c_str(), 0555);
    Child child([&] {
        becomeNobody();
        desktop::SqliteStore store(place.path);
        endUnless(store.GetSetting(app, section, "Left") == "7", 1);
        store.SaveSetting(app, section, "Left", "8");
        endUnless(store.GetSetting(app, section, "Left") == "8", 2);
    });
    CHECK(child.wait() == 0);
    CHECK(place.get("Left") == "7");
    CHECK(namesInFolder(folder).count("settings.sqlite.damaged") == 0);
    for (const Text& path : {place.folder.path(), place.folder / "config", folder})
        chmod(path.c_str(), 0755);
}

TEST_CASE("A folder where the file should be is no reason to fail")
{
    const Place place;
    std::filesystem::create_directories(place.path);
    desktop::SqliteStore store(place.path);
    store.SaveSetting(app, section, "Left", "1");
    CHECK(store.GetSetting(app, section, "Left") == "1");
    CHECK(std::filesystem::is_directory(place.path));
}

TEST_CASE("A store without a path keeps the run's own values")
{
    desktop::SqliteStore store("");
    store.SaveSetting(app, section, "Left", "1");
    CHECK(store.GetSetting(app, section, "Left") == "1");
}
