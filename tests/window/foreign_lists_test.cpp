// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/list_program.h"
#include "support/timing.h"

#include <ctime>
#include <doctest/doctest.h>

namespace
{

using Lines = std::vector<Text>;

struct Foreign {
    explicit Foreign(std::size_t size)
    {
        while (bytes.size() < size) {
            rows.push_back("/music/" + std::to_string(rows.size()) + " caf\xC3\xA9.mp3");
            bytes += "#EXTINF:215,Artist - Title\r\n" + rows.back() + "\r\n";
        }
    }

    Text bytes = "#EXTM3U\r\n";
    Lines rows;
};

// Milliseconds of processor time, of which other programs take none.
double openingTime(const Foreign& list)
{
    return atBest(0, [&] {
        ListProgram start;
        start.file("/foreign.m3u") = list.bytes;
        start.willChoose({"/foreign.m3u"}, 2);
        const auto begin = std::clock();
        start.list.GoDoOpen();
        return 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    });
}

Lines opened(const Text& bytes)
{
    ListProgram start;
    start.file("/foreign.m3u") = bytes;
    start.willChoose({"/foreign.m3u"}, 2);
    start.list.GoDoOpen();
    return start.rows();
}

}

TEST_CASE("Lists of other players give exactly these rows")
{
    struct Case {
        Text what;
        Text bytes;
        Lines rows;
    };
    const Case cases[] = {
        {"extended, CR LF, absolute",
         "#EXTM3U\r\n#EXTINF:215,Artist - One\r\n/music/one.mp3\r\n#EXTINF:-1,Two\r\n/music/two.mp3\r\n",
         {"/music/one.mp3", "/music/two.mp3"}},
        {"plain, CR LF", "/music/one.mp3\r\n/music/two.mp3\r\n", {"/music/one.mp3", "/music/two.mp3"}},
        {"plain, CR LF, no end: a character lost",
         "/music/one.mp3\r\n/music/two.mp3",
         {"/music/one.mp3", "/music/two.mp"}},
        {"plain, LF: one row", "/music/one.mp3\n/music/two.mp3\n", {"/music/one.mp3\n/music/two.mp3"}},
        {"plain, LF, no end: one row, a character lost",
         "/music/one.mp3\n/music/two.mp3",
         {"/music/one.mp3\n/music/two.mp"}},
        {"extended, LF: begins with #, so no row at all",
         "#EXTM3U\n#EXTINF:215,One\n/music/one.mp3\n/music/two.mp3\n",
         {}},
        {"CR alone: one row", "/music/one.mp3\r/music/two.mp3\r", {"/music/one.mp3\r/music/two.mp3"}},
        {"CR LF with one LF line among them", "/a.mp3\r\n/b.mp3\n/c.mp3\r\n", {"/a.mp3", "/b.mp3\n/c.mp3"}},
        {"LF CR", "/a.mp3\n\r/b.mp3\n\r", {"/a.mp3\n\r/b.mp3\n"}},
        {"byte order mark before a header: the header is a row",
         "\xEF\xBB\xBF#EXTM3U\r\n/music/one.mp3\r\n",
         {"\xEF\xBB\xBF#EXTM3U", "/music/one.mp3"}},
        {"byte order mark before a path", "\xEF\xBB\xBF/music/one.mp3\r\n", {"\xEF\xBB\xBF/music/one.mp3"}},
        {"byte order mark alone: its last character is lost", "\xEF\xBB\xBF", {""}},
        {"relative",
         "#EXTM3U\r\none.mp3\r\n..\\two.mp3\r\nsub/three.mp3\r\n",
         {"one.mp3", "..\\two.mp3", "sub/three.mp3"}},
        {"drive letters and shares",
         "C:\\Music\\one.mp3\r\n\\\\nas\\music\\two.mp3\r\n",
         {"C:\\Music\\one.mp3", "\\\\nas\\music\\two.mp3"}},
        {"addresses",
         "http://example.org:8000/stream\r\nfile:///music/a%20b.mp3\r\n",
         {"http://example.org:8000/stream", "file:///music/a%20b.mp3"}},
        {"UTF-8", "/music/caf\xC3\xA9 \xF0\x9F\x8E\xB5.mp3\r\n", {"/music/caf\xC3\xA9 \xF0\x9F\x8E\xB5.mp3"}},
        {"UTF-8 without an end: a whole character lost", "/music/\xF0\x9F\x8E\xB5", {"/music/"}},
        {"Latin-1", "/music/caf\xE9.mp3\r\n", {"/music/caf\xE9.mp3"}},
        {"Latin-1 without an end: a byte lost", "/music/caf\xE9", {"/music/caf"}},
        {"UTF-16 of another program: no line end in it is one",
         Text("\xFF\xFE/\0a\0\r\0\n\0/\0b\0\r\0\n\0", 18),
         {Text("\xFF\xFE/\0a\0\r\0\n\0/\0b\0\r\0\n", 17)}},
        {"NUL bytes", Text("/a\0b.mp3\r\n\0\r\n", 13), {Text("/a\0b.mp3", 8), Text("\0", 1)}},
        {"a blank line after the header", "#EXTM3U\r\n\r\n/a.mp3\r\n", {"\r\n/a.mp3"}},
        {"a blank line between each two",
         "/a.mp3\r\n\r\n/b.mp3\r\n\r\n/c.mp3\r\n",
         {"/a.mp3", "\r\n/b.mp3", "\r\n/c.mp3"}},
        {"two blank lines: the second stays as one line end", "/a\r\n\r\n\r\n/b\r\n", {"/a", "\r\n", "/b"}},
        {"a blank line at the end", "/a.mp3\r\n\r\n", {"/a.mp3", "\r"}},
        {"a blank line before a tag: it shows", "\r\n#EXTM3U\r\n/a.mp3\r\n", {"\r\n#EXTM3U", "/a.mp3"}},
        {"tags of all kinds",
         "#EXTM3U\r\n#EXTENC:UTF-8\r\n#PLAYLIST:Mine\r\n#EXTALB:x\r\n# c\r\n#\r\n/a.mp3\r\n",
         {"/a.mp3"}},
        {"a file whose name begins with #", "#1.mp3\r\n/music/#1.mp3\r\n", {"/music/#1.mp3"}},
        {"blanks around", "  /a.mp3  \r\n\t/b.mp3\r\n", {"  /a.mp3  ", "\t/b.mp3"}},
        {"a lone line end", "\r\n", {"\r"}},
        {"two line ends", "\r\n\r\n", {"\r\n"}},
        {"a single character", "x", {""}},
        {"a header without an end", "#EXTM3U", {}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(opened(c.bytes) == c.rows);
    }
}

TEST_CASE("A list of four megabytes is read whole, in time in proportion to its size")
{
    const Foreign some(1u << 19);
    const Foreign many(1u << 22);
    CHECK(opened(many.bytes) == many.rows);
    const double one = openingTime(some);
    const double eight = openingTime(many);
    CHECK(eight < 24 * one); // a step for each pair of rows would make it sixty-four
    MESSAGE("half a megabyte ", one, " ms, four megabytes ", eight, " ms");
}

TEST_CASE("A row of four megabytes is one row")
{
    const Text line(4u << 20, 'x');
    CHECK(opened(line + "\r\n") == Lines{line});
    CHECK(opened(line) == Lines{line.substr(1)});
}

TEST_CASE("What a foreign list leaves in the rows goes back to the disk byte for byte")
{
    ListProgram start;
    const Text bytes("/caf\xE9.mp3\r\n/a\0b.mp3\r\n\xEF\xBB\xBF/c.mp3\r\n", 32);
    start.file("/foreign.m3u") = bytes;
    start.willChoose({"/foreign.m3u"});
    start.list.GoDoOpen();
    start.list.Timer1_Timer();
    CHECK(start.file("/app/deflist.vlp") == bytes);
}
