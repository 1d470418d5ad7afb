// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/tag_file.h"

#include "tests/support/mp3_files.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

using namespace tags;

namespace
{

const Text audio = mp3Frames(40);

Tag read(const Text& bytes)
{
    const TemporaryFolder folder;
    return readTag(putSong(folder, bytes));
}

Tag readV2(int version, const Text& frames) { return read(v2Tag(version, frames, 100) + audio); }

Text titled(const Text& content) { return readV2(3, v2Frame(3, "TIT2", content)).title; }

}

TEST_CASE("A file without a tag has an empty one")
{
    CHECK(read(audio) == Tag());
    CHECK(read(audio).genreIndex == -1);
}

TEST_CASE("Every version of ID3v2 is read")
{
    const Tag wanted{"Title", "Artist", "Album", "Comment", 1987, 17};
    const Text v22 = v2Frame(2, "TT2", latin1Text("Title")) + v2Frame(2, "TP1", latin1Text("Artist")) +
                     v2Frame(2, "TAL", latin1Text("Album")) + v2Frame(2, "TYE", latin1Text("1987")) +
                     v2Frame(2, "TCO", latin1Text("(17)")) + v2Comment(2, "eng", "", "Comment");
    CHECK(readV2(2, v22) == wanted);
    for (const int version : {3, 4}) {
        CAPTURE(version);
        const auto text = [&](const Text& id, const Text& value) {
            return v2Frame(version, id, latin1Text(value));
        };
        CHECK(readV2(version, text("TIT2", "Title") + text("TPE1", "Artist") + text("TALB", "Album") +
                                  text(version == 3 ? "TYER" : "TDRC", "1987") + text("TCON", "Rock") +
                                  v2Comment(version, "eng", "", "Comment")) == wanted);
    }
}

TEST_CASE("Every encoding of ID3v2 text is read")
{
    const Text cyrillic = "\xD0\x9F\xD1\x80\xD0\xB8";
    const Text note = "\xF0\x9F\x8E\xB5";
    CHECK(titled(latin1Text("caf\xE9")) == "caf\xC3\xA9");
    CHECK(titled(utf16Text(u"\u041F\u0440\u0438")) == cyrillic);
    CHECK(titled('\1' + Text("\xFE\xFF\x04\x1F\x04\x40\x04\x38", 8)) == cyrillic);
    CHECK(titled(utf16Text(u"\u041F\u0440\u0438", true, false)) == cyrillic);
    CHECK(titled(utf8Text(cyrillic)) == cyrillic);
    CHECK(titled(utf16Text(u"\U0001F3B5")) == note);
    CHECK(titled(utf8Text(note)) == note);
}

TEST_CASE("Text that a program closed with a zero, or damaged, is read as far as it goes")
{
    CHECK(titled(latin1Text(Text("abc\0\0", 5))) == "abc");
    CHECK(titled(utf16Text(u"abc") + Text(2, '\0')) == "abc");
    CHECK(titled(utf16Text(u"a\xD83C"
                           u"b")) == "a\xEF\xBF\xBD"
                                     "b");         // half a surrogate pair
    CHECK(titled(utf16Text(u"ab") + "c") == "ab"); // half a code unit
    CHECK(isValidUtf8(titled(utf8Text("a\xFF\xC3"))));
    CHECK(titled(Text("\x09"
                      "abc")) == titled(Text("\x09"
                                             "abc")));
    CHECK(titled("") == "");
    CHECK(titled(Text(1, '\0')) == "");
}

TEST_CASE("Markup and blanks are characters like others")
{
    for (const Text text : {"R&B", "<b>bold</b>", "a  b", " a ", "%s%n", "\"'\\"}) {
        CAPTURE(text);
        CHECK(titled(latin1Text(text)) == text);
    }
}

TEST_CASE("A value is one line: the ends of lines and other control characters are blanks")
{
    CHECK(titled(latin1Text("two\r\nlines\n")) == "two  lines ");
    CHECK(titled(latin1Text("a\tb\x01\x1B\x7F")) == "a b   ");
    CHECK(titled(latin1Text("a\x85\x9F\xA0")) == "a  \xC2\xA0");
    CHECK(titled(utf16Text(u"a\nb\u2028c\u2029d\u0085e")) == "a b c d e");
    CHECK(titled(utf8Text("\xD0\x9F\n\xD0\x9F")) == "\xD0\x9F \xD0\x9F");
    CHECK(readV2(3, v2Comment(3, "eng", "", "one\r\ntwo")).comment == "one  two");
    CHECK(readV2(3, v2Frame(3, "TCON", latin1Text("Folk\nMetal"))).genreName == "Folk Metal");
    CHECK(read(audio + v1Tag({"v1\ntitle"})).title == "v1 title");
    CHECK(read(audio + apeTag({apeItem("Title", "APE\ntitle")})).title == "APE title");
}

TEST_CASE("Several values of a field become one line")
{
    CHECK(readV2(4, v2Frame(4, "TPE1", utf8Text(Text("A\0B", 3)))).artist == "A / B");
    CHECK(readV2(3, v2Frame(3, "TPE1", utf16Text(u"A") + Text(2, '\0') + utf16Text(u"B").substr(1))).artist ==
          "A / B");
}

TEST_CASE("Of two frames of a kind the first answers")
{
    CHECK(readV2(3, v2Frame(3, "TIT2", latin1Text("one")) + v2Frame(3, "TIT2", latin1Text("two"))).title ==
          "one");
}

TEST_CASE("The genre of ID3v2 is a number, whatever way it is written")
{
    const auto genre = [](const Text& text) {
        return readV2(3, v2Frame(3, "TCON", latin1Text(text))).genreIndex;
    };
    CHECK(genre("(17)") == 17);
    CHECK(genre("17") == 17);
    CHECK(genre("rOCK") == 17);
    CHECK(genre("(17)Rock") == 17);
    CHECK(genre("(4)Eurodisco") == 4);
    CHECK(genre("(80)") == 80);
    CHECK(genre("(147)") == 147);
    CHECK(genre("Chillwave") == -1);
    CHECK(genre("Heavy Metal") == -1);
    CHECK(genre("(137)") == 137);
    CHECK(genre("(255)") == -1);
    CHECK(genre("") == -1);
    CHECK(readV2(4, v2Frame(4, "TCON", utf8Text(Text("Chillwave\0Rock", 14)))).genreIndex == 17);
}

TEST_CASE("The year is the number that a date begins with")
{
    const auto year = [](const Text& text) { return readV2(4, v2Frame(4, "TDRC", latin1Text(text))).year; };
    CHECK(year("2004") == 2004);
    CHECK(year("2004-05-06") == 2004);
    CHECK(year("2004-05-06T12:00:00") == 2004);
    CHECK(year("20040506") == 2004);
    CHECK(year(" 2004") == 2004);
    CHECK(year("32767") == 32767);
    CHECK(year("0") == 0);
    CHECK(year("soon") == 0);
    CHECK(year("") == 0);
    CHECK(readV2(4, v2Frame(4, "TYER", latin1Text("1999"))).year == 1999);
    CHECK(readV2(3, v2Frame(3, "TDRC", latin1Text("1999-01-01"))).year == 1999);
    CHECK(readV2(3, v2Frame(3, "TDRC", latin1Text("1999")) + v2Frame(3, "TYER", latin1Text("2001"))).year ==
          2001);
}

TEST_CASE("The comment without a description is the comment")
{
    const auto comment = [](const Text& frames) { return readV2(3, frames).comment; };
    const Text plain = v2Comment(3, "deu", "", "plain");
    const Text described = v2Comment(3, "eng", "Label", "described");
    const Text numbers = v2Comment(3, "eng", "iTunNORM", " 000002F1");
    CHECK(comment(plain) == "plain");
    CHECK(comment(described + plain) == "plain");
    CHECK(comment(numbers + described) == "described");
    CHECK(comment(numbers) == "");
    CHECK(comment(plain + v2Comment(3, "eng", "", "second")) == "plain");
    CHECK(comment(v2Comment(3, "eng", "", " ")) == " ");
    CHECK(comment(v2Frame(3, "COMM",
                          utf16Text(u"").substr(0, 1) + "rus" + "\xFF\xFE" + Text(2, '\0') +
                              utf16Text(u"\u041F").substr(1))) == "\xD0\x9F");
    CHECK(comment(v2Frame(3, "COMM", Text("\0en", 3))) == "");
}

TEST_CASE("Fields are taken from ID3v2, then APE, then ID3v1, one by one")
{
    const Text v2 = v2Tag(3, v2Frame(3, "TIT2", latin1Text("title of v2")));
    const Text ape = apeTag({apeItem("TITLE", "title of APE"), apeItem("artist", "artist of APE"),
                             apeItem("Year", "1990"), apeItem("Genre", "Chillwave")});
    const Text v1 = v1Tag({"title of v1", "artist of v1", "album of v1", "1980", "comment of v1", 0, 17});
    CHECK(read(v2 + audio + ape + v1) ==
          Tag{"title of v2", "artist of APE", "album of v1", "comment of v1", 1990, -1, "Chillwave"});
    CHECK(read(audio + ape + v1).title == "title of APE");
    CHECK(read(audio + v1) == Tag{"title of v1", "artist of v1", "album of v1", "comment of v1", 1980, 17});
    CHECK(read(audio + ape) == Tag{"title of APE", "artist of APE", "", "", 1990, -1, "Chillwave"});
}

TEST_CASE("A genre that is no row of the tag editor is a name, not the number of the same tag's other format")
{
    const auto genre = [](const Text& text, unsigned char number) {
        V1 v1;
        v1.genre = number;
        return read(v2Tag(3, v2Frame(3, "TCON", latin1Text(text))) + audio + v1Tag(v1));
    };
    CHECK(genre("Heavy Metal", 137).genreIndex == -1);
    CHECK(genre("Heavy Metal", 137).genreName == "Heavy Metal");
    CHECK(genre("(255)", 17).genreIndex == 17);
    CHECK(genre("(255)", 17).genreName == "");
    CHECK(genre("Rock", 17).genreName == "");
    CHECK(readV2(4, v2Frame(4, "TCON", utf8Text(Text("Folk Metal\0(RX)", 15)))).genreName ==
          "Folk Metal / (RX)");
}

TEST_CASE("An APE tag is read with and without its header, and several values become one line")
{
    for (const bool header : {true, false}) {
        CAPTURE(header);
        const Text ape = apeTag({apeItem("Cover Art (Front)", Text(5000, '\0'), 2),
                                 apeItem("Artist", Text("A\0\0B", 4)), apeItem("Title", "caf\xC3\xA9")},
                                header);
        CHECK(read(audio + ape).artist == "A / B");
        CHECK(read(audio + ape).title == "caf\xC3\xA9");
    }
    CHECK(read(audio + apeTag({apeItem("Title", "caf\xE9")})).title == "caf\xC3\xA9");
    CHECK(read(audio + apeTag({apeItem("Title", "binary", 2)})).title == "");
}

TEST_CASE("An APE item's key has two hundred and fifty-five letters at most")
{
    const Text title = apeItem("Title", "Title");
    CHECK(read(audio + apeTag({apeItem(Text(255, 'k'), "x"), title})).title == "Title");
    CHECK(read(audio + apeTag({apeItem(Text(256, 'k'), "x"), title})).title == "");
}

TEST_CASE("An APE tag of ten thousand items is read, and of one more is not")
{
    std::vector<Text> items{apeItem("Title", "Title")};
    for (int number = 1; number < 10'000; ++number)
        items.push_back(apeItem("Key" + std::to_string(number), "x"));
    CHECK(read(audio + apeTag(items)).title == "Title");
    items.push_back(apeItem("More", "x"));
    CHECK(read(audio + apeTag(items)).title == "");
}

TEST_CASE("ID3v1 text is UTF-8 where it can be, otherwise Latin-1")
{
    const auto title = [](const Text& bytes) { return read(audio + v1Tag({bytes})).title; };
    CHECK(title("plain") == "plain");
    CHECK(title("caf\xE9") == "caf\xC3\xA9");
    CHECK(title("caf\xC3\xA9") == "caf\xC3\xA9");
    CHECK(title("\xD0\x9F\xD1\x80") == "\xD0\x9F\xD1\x80");
    CHECK(title("caf\xC3\xA9 \xE9") == "caf\xC3\x83\xC2\xA9 \xC3\xA9");
}

TEST_CASE("ID3v1 fields end with a zero, or are padded with blanks")
{
    const auto read1 = [](const V1& tag) { return read(audio + v1Tag(tag)); };
    CHECK(read1({"abc" + Text(27, ' ')}).title == "abc");
    CHECK(read1({Text("abc\0junk", 8)}).title == "abc");
    CHECK(read1({Text(30, 'x')}).title == Text(30, 'x'));
    CHECK(read1({" a "}).title == " a ");
    CHECK(read1({"", "", "", "", " "}).comment == " ");
    CHECK(read1({"", "", "", "", Text(30, ' ')}).comment == "");
}

TEST_CASE("ID3v1 genre, year and track")
{
    const auto read1 = [](const V1& tag) { return read(audio + v1Tag(tag)); };
    CHECK(read1({"", "", "", "", "", 0, 255}).genreIndex == -1);
    CHECK(read1({"", "", "", "", "", 0, 0}).genreIndex == 0);
    CHECK(read1({"", "", "", "", "", 0, 80}).genreIndex == 80);
    CHECK(read1({"", "", "", "", "", 0, 200}).genreIndex == 200);
    CHECK(read1({"", "", "", "1987"}).year == 1987);
    CHECK(read1({"", "", "", "    "}).year == 0);
    CHECK(read1({"", "", "", "19xx"}).year == 19);
    CHECK(read1({"", "", "", "", Text(30, 'c')}).comment == Text(30, 'c'));
    CHECK(read1({"", "", "", "", Text(28, 'c'), 7}).comment == Text(28, 'c'));
}

TEST_CASE("Tags of unusual form are read")
{
    const Text title = v2Frame(3, "TIT2", latin1Text("Title"));
    const Text title4 = v2Frame(4, "TIT2", utf8Text("Title"));
    const Text longTitle(200, 'x');
    const Text plainSize = "TIT2" + bigEndian(201, 4) + Text(2, '\0') + latin1Text(longTitle);
    const Text extended3 = bigEndian(6, 4) + Text(2, '\0') + bigEndian(100, 4);
    const Text extended4 = syncSafe(6) + Text("\1\0", 2);
    const Text footer = "3DI" + Text("\4\0\x10", 3) + syncSafe(title4.size());

    CHECK(read(v2Tag(3, extended3 + title, 100, 0x40) + audio).title == "Title");
    CHECK(read(v2Tag(4, extended4 + title4, 100, 0x40) + audio).title == "Title");
    CHECK(read(v2Tag(4, title4, 0, 0x10) + footer + audio).title == "Title");
    CHECK(read(v2Tag(4, plainSize + title4) + audio).title == longTitle);
    CHECK(read(v2Tag(3, v2Frame(3, "PRIV", Text("a\0\xFF\0", 4)) + title, 0, 0x80) + audio).title == "");
    CHECK(read(v2Tag(3, v2Frame(3, "PRIV", Text("a\0\xFF", 3)).insert(13, 1, '\0') + title, 0, 0x80) + audio)
              .title == "Title");
    CHECK(read(v2Tag(4, v2Frame(4, "TIT2", utf16Text(u"\u00FF")).replace(7, 1, "\x06").insert(14, 1, '\0'), 0,
                     0x80) +
               audio)
              .title == "\xC3\xBF");
    CHECK(read(v2Tag(3, title) + v2Tag(3, v2Frame(3, "TIT2", latin1Text("second"))) + audio).title ==
          "Title");
}

TEST_CASE("A long frame of 2.4 whose size is stored plainly is read wherever that leads on")
{
    const Text longTitle(300, 'x');
    const Text plain = "TIT2" + bigEndian(301, 4) + Text(2, '\0') + latin1Text(longTitle);
    const Text album = v2Frame(4, "TALB", utf8Text("Album"));
    const Text v1 = v1Tag({"v1"});
    CHECK(read(v2Tag(4, plain + album) + audio).title == longTitle);
    CHECK(read(v2Tag(4, plain + album) + audio).album == "Album");
    CHECK(read(v2Tag(4, plain) + audio).title == longTitle);
    CHECK(read(v2Tag(4, plain, 50) + audio).title == longTitle);
    CHECK(read(v2Tag(4, v2Frame(4, "TIT2", utf8Text(longTitle)) + album) + audio).title == longTitle);
    CHECK(read(v2Tag(4, plain + "no frame") + audio + v1).title ==
          longTitle.substr(0, 172)); // as 2.4 says it
}

TEST_CASE("A frame of 2.4 may say its length before its text, and be unsynchronised by itself")
{
    CHECK(read(v2Tag(4, v2Frame(4, "TIT2", syncSafe(6) + utf8Text("Title"), 0x0001)) + audio).title ==
          "Title");
    const Text scrambled = utf16Text(u"\u00FF").insert(2, 1, '\0').insert(5, 1, '\0');
    CHECK(read(v2Tag(4, v2Frame(4, "TIT2", scrambled, 0x0002)) + audio).title == "\xC3\xBF");
}

TEST_CASE("Half a character of UTF-16 is a mark that something is missing")
{
    const Text mark = "\xEF\xBF\xBD";
    CHECK(titled('\1' + Text("\xFF\xFE\x00\xD8", 4)) == mark);
    CHECK(titled('\1' + Text("\xFF\xFE\x00\xD8\x61\x00", 6)) == mark + "a");
    CHECK(titled('\1' + Text("\xFF\xFE\x61\x00\x00\xDC", 6)) == "a" + mark);
}

TEST_CASE("A tag that is scrambled and too long for the memory says nothing, and cannot be changed")
{
    const TemporaryFolder folder;
    const std::size_t size = (64 << 20) + 1;
    const Text path = putSong(folder, Text("ID3\3\0\x80", 6) + syncSafe(size) + Text(10, '\0'));
    std::filesystem::resize_file(path, 10 + size);
    std::ofstream(path, std::ios::binary | std::ios::app) << audio << v1Tag({"v1"});
    CHECK(readTag(path).title == "v1");
    CHECK(writeTag(path, {"New", "", "", "", 0, -1}) == "Its ID3v2 tag is too long.");
}

TEST_CASE("An APE tag whose items do not end, or are too long to be shown, leaves the field to the next tag")
{
    const Text v1 = v1Tag({"v1"});
    const Text endless = littleEndian(5) + littleEndian(0) + Text(300, 'k');
    CHECK(read(audio + apeTag({endless}) + v1).title == "v1");
    CHECK(read(audio + apeTag({apeItem("Title", Text(70'000, 'x'))}) + v1).title == "v1");
}

TEST_CASE("A frame whose name has the outermost letters and digits hides nothing behind it")
{
    const Text title = v2Frame(3, "TIT2", latin1Text("Title"));
    CHECK(readV2(3, v2Frame(3, "AZ09", "any") + title).title == "Title");
    CHECK(readV2(2, v2Frame(2, "ZA9", "any") + v2Frame(2, "TT2", latin1Text("Title"))).title == "Title");
}

TEST_CASE("A tag that announces an extended header and has none is read from where the header would be")
{
    for (const int version : {3, 4}) {
        CAPTURE(version);
        const Text title = v2Frame(version, "TIT2", latin1Text("Title"));
        CHECK(read(v2Tag(version, title, 100, 0x40) + audio).title == "Title");
        CHECK(read(v2Tag(version, title, 0, 0x40) + audio).title == "Title");
        CHECK(read(v2Tag(version, "", 100, 0x40) + audio + v1Tag({"v1"})).title == "v1");
    }
}

TEST_CASE("A tag that announces more than the file has says nothing")
{
    const Text v1 = v1Tag({"v1"});
    const Text title = v2Frame(4, "TIT2", latin1Text("Title"));
    const Text huge = "ID3" + Text("\4\0", 2);
    for (const unsigned flags : {0x00, 0x10, 0x40, 0x80, 0xF0}) {
        CAPTURE(flags);
        const Text header = huge + static_cast<char>(flags) + syncSafe((1 << 28) - 1);
        CHECK(read(header) == Tag());
        CHECK(read(header + Text(10, '\0')) == Tag());
        CHECK(read(header + title + audio + v1) == Tag());
    }
}

TEST_CASE("A damaged extended header leaves the fields to the next tag, and costs no memory")
{
    const auto title = [](int version, const Text& extended) {
        const Text frames = v2Frame(version, "TIT2", latin1Text("Title"));
        return read(v2Tag(version, extended + frames, 20, 0x40) + audio + v1Tag({"v1"})).title;
    };
    for (const Text& size : {Text("\0\0\0\1", 4), Text("\0\0\x7F\x7F", 4), Text("\x7F\x7F\x7F\x7F", 4),
                             Text("\xFF\xFF\xFF\xFF", 4)}) {
        CAPTURE(size);
        CHECK(title(3, size) == "v1");
        CHECK(title(4, size) == "v1");
    }
}

TEST_CASE("An encrypted, compressed or grouped frame leaves the field to the next tag")
{
    const auto title = [](int version, unsigned flags) {
        return read(v2Tag(version, v2Frame(version, "TIT2", latin1Text("hidden"), flags)) + audio +
                    v1Tag({"open"}))
            .title;
    };
    for (const unsigned flags : {0x80, 0x40, 0x20})
        CHECK(title(3, flags) == "open");
    for (const unsigned flags : {0x40, 0x08, 0x04})
        CHECK(title(4, flags) == "open");
    CHECK(title(3, 0x001F) == "hidden"); // flags that mean nothing
    CHECK(title(4, 0x00B0) == "hidden");
    CHECK(title(3, 0xE000) == "hidden"); // what other programs should do with the frame
    CHECK(title(4, 0x7000) == "hidden");
}

TEST_CASE("A large picture before and behind the title does not hide it")
{
    const Text picture = v2Frame(3, "APIC", Text("\0image/jpeg\0\3\0", 14) + Text(300'000, '\xFF'));
    const Text title = v2Frame(3, "TIT2", latin1Text("Title"));
    CHECK(readV2(3, picture + title).title == "Title");
    CHECK(readV2(3, title + picture).title == "Title");
}

TEST_CASE("Files that are no MP3 have no tag, whatever they carry")
{
    const Text v1 = v1Tag({"Title"});
    const Text v2 = v2Tag(3, v2Frame(3, "TIT2", latin1Text("Title")));
    const Text layer2 = [] {
        Text frames;
        for (int i = 0; i < 10; ++i)
            frames += Text("\xFF\xFD\x80\x04", 4) + Text(413, '\0');
        return frames;
    }();
    struct Case {
        const char* what;
        Text bytes;
    };
    const Case cases[] = {
        {"nothing", ""},
        {"one byte", "\xFF"},
        {"a tag alone", v1},
        {"two tags alone", v2 + v1},
        {"text", "Not a song. " + Text(3000, 'x') + v1},
        {"WAV", "RIFF" + littleEndian(audio.size()) + "WAVEfmt " + audio + v1},
        {"Ogg", "OggS" + Text(30, '\0') + audio + v1},
        {"FLAC behind a tag", v2 + "fLaC" + Text(30, '\0') + audio + v1},
        {"MP4", Text("\0\0\0\x18", 4) + "ftypM4A " + Text(30, '\0') + audio + v1},
        {"Layer II", layer2 + v1},
        {"a lone frame among other bytes", mp3Frames(1) + Text(500, 'x') + v1},
        {"one frame header and noise", audio.substr(0, 4) + Text(3000, 'x') + v1},
        {"frames that come too late", Text(70'000, '\0') + audio + v1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(read(c.bytes) == Tag());
    }
}

TEST_CASE("A short, an unusual or a little damaged MP3 file is one")
{
    const Text v1 = v1Tag({"Title"});
    Text freeFormat;
    for (int i = 0; i < 10; ++i)
        freeFormat += Text("\xFF\xFB\x00\x64", 4) + Text(900, '\0');
    CHECK(read(mp3Frames(2) + v1).title == "Title");
    CHECK(read(mp3Frames(3).substr(0, 1000) + v1).title == "Title");
    CHECK(read(Text(5000, '\0') + audio + v1).title == "Title");
    CHECK(read(audio + Text(5000, 'x') + v1).title == "Title");
    CHECK(read(freeFormat + v1).title == "Title");
}

TEST_CASE("What is no regular file has no tag and keeps nobody waiting")
{
    const TemporaryFolder folder;
    REQUIRE(mkfifo((folder / "pipe").c_str(), 0600) == 0);
    CHECK(readTag(folder / "pipe") == Tag());
    CHECK(readTag(folder.path()) == Tag());
    CHECK(readTag(folder / "missing") == Tag());
    CHECK(readTag("/dev/null") == Tag());
    CHECK(readTag("/dev/zero") == Tag());
    CHECK(readTag("") == Tag());
}

TEST_CASE("A file is found by its bytes, and through a link")
{
    const TemporaryFolder folder;
    const Text song = audio + v1Tag({"Title"});
    CHECK(readTag(putSong(folder, song, "caf\xE9 \xFF.mp3")).title == "Title");
    std::filesystem::create_symlink(folder / "caf\xE9 \xFF.mp3", folder / "link.mp3");
    CHECK(readTag(folder / "link.mp3").title == "Title");
}
