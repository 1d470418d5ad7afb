// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/disk_profile_file.h"

#include "files/disk_text_files.h"
#include "files/profile_text.h"
#include "files/state_part_notes.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>

namespace
{

constexpr const char* section = "Playlist Editor";

struct Profile {
    TemporaryFolder folder;
    Text path = folder / "vlmset.ini";
    files::StatePartNotes notes{folder / "state"};
    files::DiskTextFiles files{notes};
    files::Trust::TimePoint now = std::chrono::steady_clock::now();
    files::DiskProfileFile profile{files, files::Trust([this] { return now; })};

    Text read(const Text& key, const Text& fallback = "<missing>")
    {
        std::array<char, 255> buffer;
        buffer.fill('#');
        const std::size_t count = profile.read(section, key, fallback, buffer.data(), buffer.size(), path);
        CHECK(buffer[count] == '\0');
        return {buffer.data(), count};
    }
    bool write(const Text& key, const Text& value) { return profile.write(section, key, value, path); }
};

}

TEST_CASE("A value is found whatever the file looks like")
{
    const struct {
        const char* what;
        Text content;
        Text value;
    } cases[] = {
        {"CR LF", "[Playlist Editor]\r\nPlayList=/a.vlp\r\n", "/a.vlp"},
        {"LF", "[Playlist Editor]\nPlayList=/a.vlp\n", "/a.vlp"},
        {"no final line end", "[Playlist Editor]\r\nPlayList=/a.vlp", "/a.vlp"},
        {"a mark at the start", "\xEF\xBB\xBF[Playlist Editor]\r\nPlayList=/a.vlp\r\n", "/a.vlp"},
        {"another case", "[PLAYLIST EDITOR]\r\nplaylist=/a.vlp\r\n", "/a.vlp"},
        {"blanks around the name", " \t[Playlist Editor] \r\n  PlayList \t=/a.vlp\r\n", "/a.vlp"},
        {"blanks in the brackets", "[ Playlist Editor ]\r\nPlayList=/a.vlp\r\n", "/a.vlp"},
        {"words behind the bracket", "[Playlist Editor] ; [mine]\r\nPlayList=/a.vlp\r\n", "/a.vlp"},
        {"blanks around the value", "[Playlist Editor]\r\nPlayList= \t /a b.vlp \t\r\n", "/a b.vlp"},
        {"quotes", "[Playlist Editor]\r\nPlayList=\" /a.vlp \"\r\n", " /a.vlp "},
        {"single quotes", "[Playlist Editor]\r\nPlayList='/a.vlp'\r\n", "/a.vlp"},
        {"two pairs of quotes", "[Playlist Editor]\r\nPlayList=\"'/a.vlp'\"\r\n", "'/a.vlp'"},
        {"quotes that do not match", "[Playlist Editor]\r\nPlayList=\"/a.vlp'\r\n", "\"/a.vlp'"},
        {"one quote", "[Playlist Editor]\r\nPlayList=\"\r\n", "\""},
        {"a second equals sign", "[Playlist Editor]\r\nPlayList=/a=b.vlp\r\n", "/a=b.vlp"},
        {"a semicolon in the value", "[Playlist Editor]\r\nPlayList=/a.vlp ; mine\r\n", "/a.vlp ; mine"},
        {"comments", "; one\r\n[Playlist Editor]\r\n;PlayList=/b\r\n ; x\r\nPlayList=/a.vlp\r\n", "/a.vlp"},
        {"empty lines", "\r\n\r\n[Playlist Editor]\r\n\r\n\r\nPlayList=/a.vlp\r\n", "/a.vlp"},
        {"two keys", "[Playlist Editor]\r\nPlayList=/a.vlp\r\nPlayList=/b.vlp\r\n", "/a.vlp"},
        {"two sections", "[Playlist Editor]\nPlayList=/a.vlp\n[Playlist Editor]\nPlayList=/b.vlp\n",
         "/a.vlp"},
        {"the key in the second of two sections", "[Playlist Editor]\n[Playlist Editor]\nPlayList=/b\n",
         "<missing>"},
        {"the key in another section", "[Other]\r\nPlayList=/a.vlp\r\n[Playlist Editor]\r\n", "<missing>"},
        {"the key before all sections", "PlayList=/a.vlp\r\n[Playlist Editor]\r\n", "<missing>"},
        {"the key alone", "[Playlist Editor]\r\nPlayList\r\n", "<missing>"},
        {"nothing behind the sign", "[Playlist Editor]\r\nPlayList=\r\n", ""},
        {"a bracket that does not close", "[Playlist Editor\r\nPlayList=/a.vlp\r\n", "<missing>"},
        {"a NUL in the value", Text("[Playlist Editor]\nPlayList=/a \0b\n", 33), "/a"},
        {"a NUL in another line", Text("x\0y\n[Playlist Editor]\nPlayList=/a.vlp\n", 38), "/a.vlp"},
        {"bytes that are no UTF-8", "[Playlist Editor]\r\nPlayList=/caf\xE9\r\n", "/caf\xE9"},
        {"an empty file", "", "<missing>"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Profile profile;
        putFile(profile.path, c.content);
        CHECK(profile.read("PlayList") == c.value);
        CHECK(fileBytes(profile.path) == c.content);
    }
}

TEST_CASE("A missing file, and what is no file, give the fallback without blanks behind it")
{
    Profile profile;
    CHECK(profile.read("PlayList", "1  ") == "1");
    std::filesystem::create_directory(profile.path);
    CHECK(profile.read("PlayList", "") == "");
    CHECK_FALSE(std::filesystem::is_regular_file(profile.path));
}

TEST_CASE("The result is cut to the buffer")
{
    Profile profile;
    REQUIRE(profile.write("PlayList", Text(300, 'x')));
    CHECK(profile.read("PlayList") == Text(254, 'x'));
    char buffer[4] = {'#', '#', '#', '#'};
    CHECK(profile.profile.read(section, "PlayList", "", buffer, 3, profile.path) == 2);
    CHECK(Text(buffer, 4) == Text("xx\0#", 4));
    CHECK(profile.profile.read(section, "PlayList", "", buffer, 1, profile.path) == 0);
    CHECK(buffer[0] == '\0');
    buffer[0] = '#';
    CHECK(profile.profile.read(section, "PlayList", "", buffer, 0, profile.path) == 0);
    CHECK(buffer[0] == '#');
}

TEST_CASE("Writing changes one line and keeps every other byte")
{
    const struct {
        const char* what;
        Text before;
        Text after;
    } cases[] = {
        {"no file content", "", "[Playlist Editor]\r\nFileType=2\r\n"},
        {"the key is there", "[Playlist Editor]\r\nFileType=1\r\nPlayList=/a\r\n",
         "[Playlist Editor]\r\nFileType=2\r\nPlayList=/a\r\n"},
        {"its spelling stays", "[PLAYLIST editor]\r\n filetype = 1 \r\n",
         "[PLAYLIST editor]\r\n filetype =2\r\n"},
        {"the key without a value", "[Playlist Editor]\r\nFileType\r\n",
         "[Playlist Editor]\r\nFileType=2\r\n"},
        {"the section without the key", "[Playlist Editor]\r\nPlayList=/a\r\n\r\n[Other]\r\nx=1\r\n",
         "[Playlist Editor]\r\nPlayList=/a\r\nFileType=2\r\n\r\n[Other]\r\nx=1\r\n"},
        {"an empty section", "[Playlist Editor]\r\n[Other]\r\nFileType=1\r\n",
         "[Playlist Editor]\r\nFileType=2\r\n[Other]\r\nFileType=1\r\n"},
        {"another section", "[Other]\r\nFileType=1\r\n",
         "[Other]\r\nFileType=1\r\n[Playlist Editor]\r\nFileType=2\r\n"},
        {"comments", "; mine\r\n[Playlist Editor]\r\n;FileType=9\r\nFileType=1\r\n; end",
         "; mine\r\n[Playlist Editor]\r\n;FileType=9\r\nFileType=2\r\n; end"},
        {"LF", "[Playlist Editor]\nFileType=1\n", "[Playlist Editor]\nFileType=2\n"},
        {"LF and a new line", "[Playlist Editor]\n", "[Playlist Editor]\nFileType=2\n"},
        {"the last line is open", "[Playlist Editor]\r\nFileType=1", "[Playlist Editor]\r\nFileType=2"},
        {"another last line is open", "[Playlist Editor]\nPlayList=/a",
         "[Playlist Editor]\nPlayList=/a\nFileType=2\n"},
        {"another section's last line is open", "[Other]\r\nx=1",
         "[Other]\r\nx=1\r\n[Playlist Editor]\r\nFileType=2\r\n"},
        {"a mark at the start", "\xEF\xBB\xBF[Playlist Editor]\r\n",
         "\xEF\xBB\xBF[Playlist Editor]\r\nFileType=2\r\n"},
        {"a mark and nothing else", "\xEF\xBB\xBF", "\xEF\xBB\xBF[Playlist Editor]\r\nFileType=2\r\n"},
        {"two keys: the first", "[Playlist Editor]\nFileType=1\nFileType=3\n",
         "[Playlist Editor]\nFileType=2\nFileType=3\n"},
        {"two sections: the first", "[Playlist Editor]\na=1\n[Playlist Editor]\nFileType=1\n",
         "[Playlist Editor]\na=1\nFileType=2\n[Playlist Editor]\nFileType=1\n"},
        {"rubbish", Text("\0\xFF=\n[\n]\n", 8),
         Text("\0\xFF=\n[\n]\n", 8) + "[Playlist Editor]\nFileType=2\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Profile profile;
        putFile(profile.path, c.before);
        CHECK(profile.write("FileType", "2"));
        CHECK(fileBytes(profile.path) == c.after);
        CHECK(profile.read("FileType") == "2");
    }
}

TEST_CASE("A value is written as it is but for the blanks around it")
{
    const struct {
        const char* what;
        Text value;
        Text found;
    } cases[] = {
        {"a path with blanks inside", "/my music/a b.vlp", "/my music/a b.vlp"},
        {"blanks around", "  /a.vlp ", "/a.vlp"},
        {"quotes, which the reader takes off", "\"/a.vlp\"", "/a.vlp"},
        {"nothing", "", ""},
        {"an equals sign and brackets", "/[a]=b;c.vlp", "/[a]=b;c.vlp"},
        {"bytes that are no UTF-8", "/caf\xE9.vlp", "/caf\xE9.vlp"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Profile profile;
        CHECK(profile.write("PlayList", c.value));
        CHECK(profile.read("PlayList") == c.found);
        const auto written = std::filesystem::last_write_time(profile.path);
        CHECK(profile.write("PlayList", c.value));
        CHECK(std::filesystem::last_write_time(profile.path) == written);
    }
}

TEST_CASE("What has no place in a profile is refused, and the file stays")
{
    Profile profile;
    REQUIRE(profile.write("PlayList", "/a.vlp"));
    const Text before = fileBytes(profile.path);
    const struct {
        const char* what;
        Text section, key, value;
    } cases[] = {
        {"a line end in the value", section, "PlayList", "/a\nb"},
        {"a CR in the value", section, "PlayList", "/a\rb"},
        {"a NUL in the value", section, "PlayList", Text("/a\0b", 4)},
        {"a line end in the key", section, "Play\nList", "/b"},
        {"an equals sign in the key", section, "Play=List", "/b"},
        {"a comment for a key", section, ";PlayList", "/b"},
        {"a section for a key", section, "[PlayList", "/b"},
        {"no key", section, " ", "/b"},
        {"a bracket in the section", "a]b", "PlayList", "/b"},
        {"a line end in the section", "a\nb", "PlayList", "/b"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK_FALSE(profile.profile.write(c.section, c.key, c.value, profile.path));
        CHECK(fileBytes(profile.path) == before);
    }
}

TEST_CASE("A file that cannot be written or read is left as it is, without a word")
{
    Profile profile;
    CHECK_FALSE(profile.profile.write(section, "PlayList", "/a", profile.folder / "none/vlmset.ini"));
    CHECK_FALSE(profile.profile.write(section, "PlayList", "/a", profile.folder.path()));
    REQUIRE(profile.write("PlayList", "/a.vlp"));
    const Text before = fileBytes(profile.path);
    chmod(profile.folder.path().c_str(), 0777);
    for (const mode_t mode : {0444, 0222}) {
        CAPTURE(mode);
        chmod(profile.path.c_str(), mode);
        Child child([&] {
            becomeNobody();
            endUnless(!profile.write("PlayList", "/b.vlp"), 1);
        });
        CHECK(child.wait() == 0);
        chmod(profile.path.c_str(), 0644);
        CHECK(fileBytes(profile.path) == before);
    }
}

TEST_CASE("A read-only folder gives the fallback and takes no value")
{
    Profile profile;
    chmod(profile.folder.path().c_str(), 0555);
    Child child([&] {
        becomeNobody();
        endUnless(!profile.write("FileType", "1"), 1);
        endUnless(profile.read("FileType", "1") == "1", 2);
    });
    CHECK(child.wait() == 0);
    CHECK_FALSE(std::filesystem::exists(profile.path));
}

TEST_CASE("A profile of megabytes is read and written")
{
    Profile profile;
    Text content = "[Other]\r\n";
    for (int i = 0; i < 200'000; ++i)
        content += "key" + std::to_string(i) + "=some value\r\n";
    putFile(profile.path, content);
    CHECK(profile.write("PlayList", "/a.vlp"));
    CHECK(fileBytes(profile.path) == content + "[Playlist Editor]\r\nPlayList=/a.vlp\r\n");
    CHECK(profile.read("PlayList") == "/a.vlp");
    char value[32];
    CHECK(profile.profile.read("other", "KEY199999", "", value, sizeof value, profile.path) == 10);
}

TEST_CASE("The key that the tick writes never makes the file grow, whatever stands in it")
{
    const Text odd[] = {Text("\xFF\xFE[\0P\0", 6),
                        "\r",
                        "[",
                        "]",
                        "[Playlist Editor",
                        "\n\n[Playlist Editor]=\n",
                        "[Playlist Editor]\rPlayList=x\r",
                        Text(3, '\0')};
    for (const Text& content : odd) {
        Profile profile;
        putFile(profile.path, content);
        REQUIRE(profile.write("PlayList", "/a.vlp"));
        const Text first = fileBytes(profile.path);
        REQUIRE(profile.write("PlayList", "/a.vlp"));
        CHECK(fileBytes(profile.path) == first);
        CHECK(profile.read("PlayList") == "/a.vlp");
    }
}

TEST_CASE("A kill while writing leaves the old value or the new one, and every other line")
{
    Profile profile;
    const Text mine = "; " + Text(100'000, 'x') + "\n[Playlist Editor]\nPlayList=";
    putFile(profile.path, mine + "0\n");
    for (int round = 0; round < 25; ++round) {
        int pipes[2];
        REQUIRE(pipe2(pipes, O_CLOEXEC) == 0);
        Child writer([&] {
            for (int i = 1;; ++i) {
                endUnless(profile.write("PlayList", std::to_string(i)), 1);
                std::ignore = write(pipes[1], "x", 1);
            }
        });
        close(pipes[1]);
        char told = 0;
        for (int i = 0; i <= round; ++i)
            REQUIRE(read(pipes[0], &told, 1) == 1);
        writer.kill();
        close(pipes[0]);
        CHECK(fileBytes(profile.path) == mine + profile.read("PlayList") + "\n");
        CHECK(std::stoi("0" + profile.read("PlayList")) > round);
    }
}

TEST_CASE("A value that is written many times a second is compared with the file once")
{
    Profile profile;
    CHECK(profile.write("PlayList", "/a.vlp"));
    const Text ours = fileBytes(profile.path);
    const Text theirs = "[Playlist Editor]\r\nPlayList=/theirs.vlp\r\n";
    putFile(profile.path, theirs);
    CHECK(profile.write("PlayList", "/a.vlp"));
    CHECK(fileBytes(profile.path) == theirs);
    CHECK(profile.read("PlayList") == "/theirs.vlp");
    profile.now += files::Trust::length;
    CHECK(profile.write("PlayList", "/a.vlp"));
    CHECK(fileBytes(profile.path) == ours);

    putFile(profile.path, theirs);
    CHECK(profile.write("PlayList", "/b.vlp"));
    CHECK(profile.read("PlayList") == "/b.vlp");
    CHECK(profile.write("FileType", "2"));
    CHECK(profile.write("PlayList", "/b.vlp"));
    CHECK(profile.read("FileType") == "2");
}
