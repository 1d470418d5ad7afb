// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"

#include <doctest/doctest.h>

namespace
{

struct LookUp {
    Text what;
    Text name;
    Text folder;
    bool exists;
    Text scans; // the calls
};

Text scanned(const Text& pattern) { return "Scan.FindFirstFile(" + pattern + ")\nScan.FindClose\n"; }

// Some folders, one of them empty, and entries of all kinds.
void fill(FakePlatform& platform)
{
    const FoundFile here{FoundFile::directory, "."};
    const FoundFile above{FoundFile::directory, ".."};
    platform.scan.folders["/m/*.*"] = {here,
                                       above,
                                       {FoundFile::directory, "Album"},
                                       {FoundFile::archive, "a.mp3"},
                                       {FoundFile::archive, "README"},
                                       {FoundFile::plainNormal, "plain.mp3"},
                                       {FoundFile::archive | FoundFile::plainNormal, "both.mp3"},
                                       {0, "bare.mp3"},
                                       {FoundFile::archive, Text("cut.mp3\0rest", 12)},
                                       {FoundFile::archive, "caf\xC3\xA9.mp3"}};
    platform.scan.folders["/m/Album/*.*"] = {here, above};
    platform.scan.folders["/*.*"] = {{FoundFile::directory, "m"}, {FoundFile::archive, "first.mp3"}};
}

}

TEST_CASE("A file or a folder is looked up by walking through its folder")
{
    const LookUp lookUps[] = {
        {"nothing at all", "", "", false, ""},
        {"a file", "/m/a.mp3", "", true, scanned("/m/*.*")},
        {"in capitals", "/m/A.MP3", "", true, scanned("/m/*.*")},
        {"a name without a dot", "/m/readme", "", true, scanned("/m/*.*")},
        {"a folder by its name", "/m/album", "", true, scanned("/m/*.*")},
        {"a file that is not there", "/m/b.mp3", "", false, scanned("/m/*.*")},
        {"a part of a name", "/m/a.mp", "", false, scanned("/m/*.*")},
        {"a name that goes on", "/m/a.mp3x", "", false, scanned("/m/*.*")},
        {"a plain file without attributes is passed over", "/m/plain.mp3", "", false, scanned("/m/*.*")},
        {"with another attribute beside, too", "/m/both.mp3", "", false, scanned("/m/*.*")},
        {"a file with no bit at all is compared", "/m/bare.mp3", "", true, scanned("/m/*.*")},
        {"a name ends at its terminator", "/m/cut.mp3", "", true, scanned("/m/*.*")},
        {"a letter outside ASCII", "/m/caf\xC3\xA9.mp3", "", true, scanned("/m/*.*")},
        {"a file of a folder that is not there", "/nowhere/a.mp3", "", false,
         "Scan.FindFirstFile(/nowhere/*.*)\n"},
        {"a folder", "", "/m", true, scanned("/m/*.*")},
        {"a folder with a separator at its end", "", "/m/", true, scanned("/m/*.*")},
        {"an empty folder", "", "/m/Album", true, scanned("/m/Album/*.*")},
        {"a folder that is not there", "", "/nowhere", false, "Scan.FindFirstFile(/nowhere/*.*)\n"},
        {"both given: the folder counts for nothing", "/m/a.mp3", "/nowhere", true, scanned("/m/*.*")},
        {"both given, the file not there", "/m/b.mp3", "/m/Album", false, scanned("/m/*.*")},
        {"a name without a folder is sought in the root", "m", "", true, scanned("/*.*")},
        {"the very first entry counts", "/m", "", true, scanned("/*.*")},
        {"nothing but a folder's path", "/m/", "", false, scanned("/m/*.*")},
    };
    for (const auto& c : lookUps) {
        CAPTURE(c.what);
        Player p(fill);
        CHECK(p.window.FileOrDirExists(c.name, c.folder) == c.exists);
        CHECK(p.calls() == c.scans);
    }
}

TEST_CASE("A look-up never fails, whatever the scan does")
{
    struct Row {
        Text failing;
        bool exists;
    };
    for (const auto& row : {Row{"Scan.FindFirstFile(/m/*.*)", false}, Row{"Scan.FindClose", true}}) {
        CAPTURE(row.failing);
        Player p(fill);
        bool failed = false;
        p.platform.log.onCall = [&](const Text& call) {
            if (call != row.failing)
                return;
            failed = true;
            throw Failure(Trouble::deviceInputOutput);
        };
        CHECK(p.window.FileOrDirExists("/m/a.mp3", "") == row.exists);
        CHECK(p.window.FileOrDirExists("", "/m") == row.exists);
        CHECK(failed);
    }
}

TEST_CASE("A fixed-length text ends at its first character of code 0")
{
    CHECK(StartUp::StripTerminator("") == "");
    CHECK(StartUp::StripTerminator("whole") == "whole");
    CHECK(StartUp::StripTerminator(Text("a\0b\0c", 5)) == "a");
    CHECK(StartUp::StripTerminator(Text("\0abc", 4)) == "");
    CHECK(StartUp::StripTerminator(Text("abc\0", 4)) == "abc");
}
