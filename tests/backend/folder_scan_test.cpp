// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/folder_scan.h"

#include "files/folders.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

#include <map>

namespace
{

struct Scan {
    TemporaryFolder folder;
    desktop::FolderScan scan;

    // The names in the order of the walk.
    std::vector<Text> names(const Text& pattern)
    {
        std::vector<Text> names;
        FoundFile found;
        const auto handle = scan.FindFirstFile(pattern, found);
        if (handle == DirectoryScan::invalid)
            return names;
        do
            names.push_back(found.name);
        while (scan.FindNextFile(handle, found));
        scan.FindClose(handle);
        return names;
    }
    std::set<Text> set(const Text& pattern)
    {
        const auto found = names(pattern);
        return {found.begin(), found.end()};
    }
};

}

TEST_CASE("The two names for folders come first, then every entry once")
{
    Scan scan;
    std::set<Text> expected = {".", ".."};
    for (int i = 0; i < 3000; ++i) {
        const Text name = "file " + std::to_string(i) + (i % 2 ? ".mp3" : "");
        putFile(scan.folder / name, "");
        expected.insert(name);
    }
    const auto names = scan.names(scan.folder / "*.*");
    REQUIRE(names.size() == 3002);
    CHECK(names[0] == ".");
    CHECK(names[1] == "..");
    CHECK(std::set<Text>(names.begin(), names.end()) == expected);
}

TEST_CASE("An empty folder is found by its two names")
{
    Scan scan;
    CHECK(scan.names(scan.folder / "*.*") == std::vector<Text>{".", ".."});
    CHECK(scan.names(scan.folder / "*") == std::vector<Text>{".", ".."});
}

TEST_CASE("Folders and files carry their attribute, and nothing else")
{
    Scan scan;
    putFile(scan.folder / "file", "");
    putFile(scan.folder / "read-only", "");
    chmod((scan.folder / "read-only").c_str(), 0444);
    mkdir((scan.folder / "folder").c_str(), 0755);
    mkfifo((scan.folder / "pipe").c_str(), 0644);
    std::filesystem::create_symlink("file", scan.folder / "link to file");
    std::filesystem::create_symlink("folder", scan.folder / "link to folder");
    std::filesystem::create_symlink("none", scan.folder / "link to nothing");
    std::map<Text, std::uint32_t> attributes;
    FoundFile found;
    const auto handle = scan.scan.FindFirstFile(scan.folder / "*.*", found);
    REQUIRE(handle != DirectoryScan::invalid);
    do
        attributes[found.name] = found.attributes;
    while (scan.scan.FindNextFile(handle, found));
    scan.scan.FindClose(handle);
    CHECK(attributes == std::map<Text, std::uint32_t>{{".", 0x10},
                                                      {"..", 0x10},
                                                      {"file", 0x20},
                                                      {"read-only", 0x20},
                                                      {"folder", 0x10},
                                                      {"pipe", 0x20},
                                                      {"link to file", 0x20},
                                                      {"link to folder", 0x10}});
}

TEST_CASE("A pattern chooses names without regard to case")
{
    const struct {
        const char* pattern;
        const char* name;
        bool matches;
    } cases[] = {
        {"*.*", "README", true},
        {"*", "README", true},
        {"*", "", true},
        {"", "README", false},
        {"*.mp3", "a.MP3", true},
        {"*.MP3", "a.mp3", true},
        {"*.mp3", ".mp3", true},
        {"*.mp3", "a.mp3x", false},
        {"*.mp3", "mp3", false},
        {"*.mp3", "a.mp3.mp3", true},
        {"conf.mp3", "CONF.mp3", true},
        {"conf.mp3", "conf.mp", false},
        {"a*b*c", "aXbbYc", true},
        {"a*b*c", "aXbbY", false},
        {"a**c", "ac", true},
        {"track ?.wav", "Track 1.wav", true},
        {"track ?.wav", "Track .wav", false},
        {"?", "\xE9", true},
        {"[a]*", "[a]b", true},
        {"[a]*", "ab", false},
        {"a\\*", "A\\b", true},
        {"a\\b", "ab", false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.pattern);
        CAPTURE(c.name);
        CHECK(files::fits(c.name, c.pattern) == c.matches);
    }
}

TEST_CASE("A scan with a pattern finds what fits it, the folders' names too only then")
{
    Scan scan;
    for (const char* name : {"one.mp3", "Two.MP3", "three.wav", "mp3"})
        putFile(scan.folder / name, "");
    CHECK(scan.set(scan.folder / "*.mp3") == std::set<Text>{"one.mp3", "Two.MP3"});
    CHECK(scan.set(scan.folder / "ONE.mp3") == std::set<Text>{"one.mp3"});
    CHECK(scan.set(scan.folder / "*.ogg").empty());
}

TEST_CASE("Names of any bytes come as they are")
{
    Scan scan;
    for (const char* name : {"caf\xE9.mp3", "a\nb", "\xFF", " ", "*.*", "back\\slash"})
        putFile(scan.folder / name, "");
    CHECK(scan.set(scan.folder / "*.*") ==
          std::set<Text>{".", "..", "caf\xE9.mp3", "a\nb", "\xFF", " ", "*.*", "back\\slash"});
}

TEST_CASE("Nothing is found where there is no folder")
{
    Scan scan;
    putFile(scan.folder / "file", "");
    FoundFile found;
    for (const Text& pattern : {scan.folder / "none/*.*", scan.folder / "file/*.*", scan.folder / "none",
                                Text(), scan.folder / ""}) {
        CAPTURE(pattern);
        CHECK(scan.scan.FindFirstFile(pattern, found) == DirectoryScan::invalid);
    }
    CHECK(scan.set("/*.*").count("tmp") == 1);
}

TEST_CASE("A folder that may not be listed is none")
{
    Scan scan;
    chmod(scan.folder.path().c_str(), 0311);
    Child child([&] {
        becomeNobody();
        FoundFile found;
        endUnless(scan.scan.FindFirstFile(scan.folder / "*.*", found) == DirectoryScan::invalid, 1);
    });
    CHECK(child.wait() == 0);
}

TEST_CASE("Scans run side by side, each until it is closed")
{
    Scan scan;
    putFile(scan.folder / "file", "");
    FoundFile found;
    const auto one = scan.scan.FindFirstFile(scan.folder / "*.*", found);
    const auto other = scan.scan.FindFirstFile(scan.folder / "*.*", found);
    REQUIRE(one != other);
    CHECK(scan.scan.FindNextFile(one, found));
    scan.scan.FindClose(one);
    CHECK_FALSE(scan.scan.FindNextFile(one, found));
    scan.scan.FindClose(one);
    CHECK(scan.scan.FindNextFile(other, found));
    CHECK(scan.scan.FindNextFile(other, found));
    CHECK(found.name == "file");
    CHECK_FALSE(scan.scan.FindNextFile(other, found));
    CHECK_FALSE(scan.scan.FindNextFile(other, found));
    scan.scan.FindClose(other);
    scan.scan.FindClose(DirectoryScan::invalid);
}

TEST_CASE("A folder that changes under a scan ends it without harm")
{
    Scan scan;
    for (int i = 0; i < 100; ++i)
        putFile(scan.folder / std::to_string(i), "");
    FoundFile found;
    const auto handle = scan.scan.FindFirstFile(scan.folder / "*.*", found);
    std::filesystem::remove_all(scan.folder.path());
    int rest = 0;
    while (scan.scan.FindNextFile(handle, found))
        ++rest;
    CHECK(rest <= 101);
    scan.scan.FindClose(handle);
}
