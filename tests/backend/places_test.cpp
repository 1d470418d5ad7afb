// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/places.h"

#include "files/disk_text_files.h"
#include "files/state_part_notes.h"
#include "tests/support/files.h"
#include "tests/support/skip.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/witness.h"

#include <doctest/doctest.h>

#include <unistd.h>

namespace
{

desktop::Environment bob()
{
    return {.executable = "/opt/velmora/velmora", .home = "/home/bob", .accountHome = "/accounts/bob"};
}

// A program installed below a folder of the test's own, and its user.
struct Installed {
    TemporaryFolder folder;
    Text share = folder / "usr/share/velmora";
    desktop::Environment environment{.executable = folder / "usr/bin/velmora", .home = folder / "home"};
    Text own = folder / "home/.local/share/Velmora";
    files::StatePartNotes notes{folder / "state"};
    files::DiskTextFiles files{notes};

    Installed()
    {
        std::filesystem::create_directories(share);
        std::filesystem::create_directories(folder / "usr/bin");
        putFile(share + "/conf.mp3", Text("\xFF\xFB\0sound", 8));
        putFile(share + "/updates.txt", "Version 2.0.3\r\n");
    }
    void start() { desktop::fillApplicationFolder(environment, files); }
    Text updates() const { return fileBytes(own + "/updates.txt"); }
};

}

TEST_CASE("Folders of the program lie below the base folders")
{
    desktop::Environment environment = bob();
    CHECK(desktop::homeFolder(environment) == "/home/bob");
    CHECK(desktop::configFolder(environment) == "/home/bob/.config/Velmora");
    CHECK(desktop::dataFolder(environment) == "/home/bob/.local/share/Velmora");
    CHECK(desktop::stateFolder(environment) == "/home/bob/.local/state/Velmora");
    CHECK(desktop::cacheFolder(environment) == "/home/bob/.cache/Velmora");
    environment.configHome = "/c";
    environment.dataHome = "/d/";
    environment.stateHome = "/s";
    environment.cacheHome = "/x//";
    CHECK(desktop::configFolder(environment) == "/c/Velmora");
    CHECK(desktop::dataFolder(environment) == "/d/Velmora");
    CHECK(desktop::stateFolder(environment) == "/s/Velmora");
    CHECK(desktop::cacheFolder(environment) == "/x/Velmora");
}

TEST_CASE("A relative base folder is ignored")
{
    desktop::Environment environment = bob();
    environment.configHome = "config";
    environment.dataHome = "./data";
    environment.stateHome = "~/state";
    environment.cacheHome = "$HOME/cache";
    CHECK(desktop::configFolder(environment) == "/home/bob/.config/Velmora");
    CHECK(desktop::dataFolder(environment) == "/home/bob/.local/share/Velmora");
    CHECK(desktop::stateFolder(environment) == "/home/bob/.local/state/Velmora");
    CHECK(desktop::cacheFolder(environment) == "/home/bob/.cache/Velmora");
}

TEST_CASE("Without HOME the account's own folder is home, and the root is when there is none")
{
    const struct {
        const char* what;
        Text home, accountHome, found;
    } cases[] = {
        {"HOME", "/home/bob/", "/accounts/bob", "/home/bob"},
        {"not set", "", "/accounts/bob", "/accounts/bob"},
        {"relative", "bob", "/accounts/bob", "/accounts/bob"},
        {"the root", "/", "/accounts/bob", "/"},
        {"none of both", "", "", "/"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(desktop::homeFolder({.home = c.home, .accountHome = c.accountHome}) == c.found);
    }
    CHECK(desktop::configFolder({}) == "/.config/Velmora");
}

TEST_CASE("The music folder is the user's choice")
{
    const struct {
        const char* what;
        const char* lines;
        const char* found; // below home when relative
    } cases[] = {
        {"no file", nullptr, "Music"},
        {"in home", "XDG_MUSIC_DIR=\"$HOME/Musik\"\n", "Musik"},
        {"absolute", "XDG_MUSIC_DIR=\"/srv/music\"\n", "/srv/music"},
        {"among others",
         "# mine\nXDG_DESKTOP_DIR=\"$HOME/D\"\n XDG_MUSIC_DIR = \"$HOME/M\"\nXDG_X_DIR=\"/x\"", "M"},
        {"no final line end", "XDG_MUSIC_DIR=\"$HOME/M\"", "M"},
        {"blanks in the name", "XDG_MUSIC_DIR=\"$HOME/My Music\"\n", "My Music"},
        {"escapes", "XDG_MUSIC_DIR=\"$HOME/a\\\"b\\\\c\\$d\"\n", "a\"b\\c$d"},
        {"a separator behind", "XDG_MUSIC_DIR=\"$HOME/M/\"\n", "M"},
        {"home itself", "XDG_MUSIC_DIR=\"$HOME/\"\n", ""},
        {"home without a separator", "XDG_MUSIC_DIR=\"$HOME\"\n", ""},
        {"the last of two", "XDG_MUSIC_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/b\"\n", "/b"},
        {"a comment", "#XDG_MUSIC_DIR=\"/a\"\n", "Music"},
        {"a relative path", "XDG_MUSIC_DIR=\"music\"\n", "Music"},
        {"another variable", "XDG_MUSIC_DIR=\"$HOMES/x\"\n", "Music"},
        {"another name", "XDG_MUSIC_DIRS=\"/a\"\n", "Music"},
        {"no quotes", "XDG_MUSIC_DIR=/a\n", "Music"},
        {"quotes that do not close", "XDG_MUSIC_DIR=\"/a\n", "Music"},
        {"no value", "XDG_MUSIC_DIR\nXDG_MUSIC_DIR=\nXDG_MUSIC_DIR=\"\"\n", "Music"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const TemporaryFolder home;
        std::filesystem::create_directory(home / ".config");
        if (c.lines)
            putFile(home / ".config/user-dirs.dirs", c.lines);
        const Text expected = *c.found == '/' ? Text(c.found) : *c.found ? home / c.found : home.path();
        CHECK(desktop::musicFolder({.home = home.path()}) == expected);
        CHECK_FALSE(std::filesystem::exists(home / "Music"));
    }
}

TEST_CASE("The desktop's own tool finds the same music folder, whatever bytes its name has")
{
    if (saidBy("command -v xdg-user-dir").empty())
        return skipCase("there is no xdg-user-dir");
    const char* const choices[] = {
        "XDG_MUSIC_DIR=\"$HOME/Musik\"\n",
        "XDG_MUSIC_DIR=\"/srv/music\"",
        "# mine\nXDG_DESKTOP_DIR=\"$HOME/D\"\nXDG_MUSIC_DIR=\"$HOME/M\"\nXDG_X_DIR=\"/x\"\n",
        "XDG_MUSIC_DIR=\"$HOME/My Music\"\n",
        "XDG_MUSIC_DIR=\"$HOME/Caf\xE9\"\n",
        "XDG_MUSIC_DIR=\"$HOME/\xC3\xA9 \xFF\"\n",
        "XDG_MUSIC_DIR=\"$HOME\"\n",
        "XDG_MUSIC_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/b\"\n",
    };
    for (const Text lines : choices) {
        CAPTURE(lines);
        const TemporaryFolder home;
        std::filesystem::create_directory(home / ".config");
        putFile(home / ".config/user-dirs.dirs", lines);
        const Text said = saidBy("HOME='" + home.path() + "' XDG_CONFIG_HOME= xdg-user-dir MUSIC");
        CHECK(desktop::musicFolder({.home = home.path()}) + "\n" == said);
    }
}

TEST_CASE("The user directories' file lies in the configuration folder that is set")
{
    const TemporaryFolder home;
    putFile(home / "user-dirs.dirs", "XDG_MUSIC_DIR=\"$HOME/M\"\n");
    CHECK(desktop::musicFolder({.home = "/h", .configHome = home.path()}) == "/h/M");
    CHECK(desktop::musicFolder({.home = "/h", .configHome = "relative"}) == "/h/Music");
}

TEST_CASE("A portable copy keeps its files beside itself, and nothing is filled in")
{
    const TemporaryFolder folder;
    desktop::Environment environment{.executable = folder / "velmora", .home = folder / "home"};
    CHECK(desktop::applicationFolder(environment) == folder.path());
    files::StatePartNotes notes(folder / "state");
    files::DiskTextFiles files(notes);
    desktop::fillApplicationFolder(environment, files);
    CHECK(namesInFolder(folder.path()).empty());
    environment.executable = "/velmora";
    CHECK(desktop::applicationFolder(environment) == "/");
}

TEST_CASE("An installed program's files come into the user's folder at the first start")
{
    Installed installed;
    CHECK(desktop::applicationFolder(installed.environment) == installed.own);
    CHECK_FALSE(std::filesystem::exists(installed.own));
    installed.start();
    CHECK(fileBytes(installed.own + "/conf.mp3") == Text("\xFF\xFB\0sound", 8));
    CHECK(installed.updates() == "Version 2.0.3\r\n");
}

TEST_CASE("A deleted file is never filled in again")
{
    Installed installed;
    installed.start();
    std::filesystem::remove(installed.own + "/conf.mp3");
    std::filesystem::remove(installed.own + "/updates.txt");
    putFile(installed.share + "/updates.txt", "Version 2.0.4\r\n");
    installed.start();
    CHECK_FALSE(std::filesystem::exists(installed.own + "/conf.mp3"));
    CHECK_FALSE(std::filesystem::exists(installed.own + "/updates.txt"));
}

TEST_CASE("Only an updates.txt that the user left alone follows the installed one")
{
    Installed installed;
    installed.start();
    putFile(installed.share + "/updates.txt", "Version 2.0.4\r\n");
    installed.start();
    CHECK(installed.updates() == "Version 2.0.4\r\n");
    putFile(installed.own + "/updates.txt", "my notes");
    putFile(installed.share + "/updates.txt", "Version 2.0.5\r\n");
    installed.start();
    CHECK(installed.updates() == "my notes");
    putFile(installed.share + "/updates.txt", "Version 2.0.6\r\n");
    installed.start();
    CHECK(installed.updates() == "my notes");
}

TEST_CASE("The user's own conf.mp3 is never touched")
{
    Installed installed;
    std::filesystem::create_directories(installed.own);
    putFile(installed.own + "/conf.mp3", "mine");
    installed.start();
    CHECK(fileBytes(installed.own + "/conf.mp3") == "mine");
    CHECK(installed.updates() == "Version 2.0.3\r\n");
    putFile(installed.share + "/conf.mp3", "new");
    installed.start();
    CHECK(fileBytes(installed.own + "/conf.mp3") == "mine");
}

TEST_CASE("A start that is cut short is made up for by the next")
{
    Installed installed;
    std::filesystem::remove(installed.share + "/updates.txt");
    installed.start();
    CHECK(std::filesystem::exists(installed.own + "/conf.mp3"));
    putFile(installed.share + "/updates.txt", "Version 2.0.3\r\n");
    installed.start();
    CHECK(installed.updates() == "Version 2.0.3\r\n");
    // Refreshed, and killed before that was recorded.
    putFile(installed.share + "/updates.txt", "Version 2.0.4\r\n");
    putFile(installed.own + "/updates.txt", "Version 2.0.4\r\n");
    installed.start();
    putFile(installed.share + "/updates.txt", "Version 2.0.5\r\n");
    installed.start();
    CHECK(installed.updates() == "Version 2.0.5\r\n");
}

TEST_CASE("A start without a change writes nothing")
{
    Installed installed;
    installed.start();
    const auto folderTime = std::filesystem::last_write_time(installed.own);
    installed.start();
    CHECK(std::filesystem::last_write_time(installed.own) == folderTime);
}

TEST_CASE("A user's folder that cannot be made is still the one, and no failure")
{
    Installed installed;
    putFile(installed.folder / "home", "a file");
    installed.start();
    CHECK(desktop::applicationFolder(installed.environment) == installed.own);
}

TEST_CASE("The process knows its own program and home")
{
    const desktop::Environment environment = desktop::environmentOfProcess();
    CHECK(environment.executable == std::filesystem::read_symlink("/proc/self/exe").string());
    CHECK(desktop::homeFolder(environment).starts_with('/'));
}
