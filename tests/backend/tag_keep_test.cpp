// SPDX-License-Identifier: GPL-3.0-or-later
// What writing a tag must leave as it is.
#include "engines/tags/tag_file.h"

#include "tests/support/mp3_files.h"

#include <doctest/doctest.h>

using namespace tags;

namespace
{

const Text audio = mp3Frames(40);

Text changed(const Text& bytes, void (*change)(Tag&))
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, bytes);
    Tag tag = readTag(path);
    change(tag);
    CHECK(writeTag(path, tag) == "");
    return fileBytes(path);
}

Text retitled(const Text& bytes)
{
    return changed(bytes, [](Tag& tag) { tag.title = "New"; });
}

// The reason why the file's title cannot be changed; the file is as it was.
Text refusal(const Text& bytes)
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, bytes);
    Tag tag = readTag(path);
    tag.title = "New";
    const Text reason = writeTag(path, tag);
    CHECK(fileBytes(path) == bytes);
    CHECK(holdsOnlyTheSong(folder));
    return reason;
}

// By the definition, bit by bit.
std::uint32_t crc32Of(const Text& bytes)
{
    std::uint32_t sum = ~0u;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320u : 0);
    }
    return ~sum;
}

bool has(const Text& bytes, const Text& part) { return bytes.find(part) != Text::npos; }

Text text3(const Text& id, const Text& value) { return v2Frame(3, id, latin1Text(value)); }
Text text4(const Text& id, const Text& value) { return v2Frame(4, id, utf8Text(value)); }

}

TEST_CASE("Fields that do not change keep their frames byte for byte")
{
    const Text kept[] = {
        v2Frame(4, "TDRC", latin1Text("2004-05-06")),
        v2Frame(4, "TPE1", utf16Text(u"A") + Text(2, '\0') + utf16Text(u"B").substr(1)),
        v2Frame(4, "TALB", latin1Text(Text("Album\0", 6))),
        v2Frame(4, "TCON", latin1Text("(17)Rock")),
        v2Comment(4, "deu", "", "Kommentar"),
    };
    Text frames = text4("TIT2", "Old");
    for (const Text& frame : kept)
        frames += frame;
    const Text file = retitled(v2Tag(4, frames, 50) + audio);
    CHECK(has(file, v2Frame(4, "TIT2", latin1Text("New"))));
    for (const Text& frame : kept) {
        CAPTURE(frame);
        CHECK(has(file, frame));
    }
}

TEST_CASE("A long title that another field's change leaves alone stays whole")
{
    const Text title = text3("TIT2", Text(200, 'x'));
    CHECK(has(changed(v2Tag(3, title) + audio, [](Tag& tag) { tag.year = 1999; }), title));
}

TEST_CASE("A year that changes replaces the whole date")
{
    const Text file =
        changed(v2Tag(4, text4("TDRC", "2004-05-06")) + audio, [](Tag& tag) { tag.year = 2005; });
    CHECK(has(file, v2Frame(4, "TDRC", latin1Text("2005"))));
    CHECK_FALSE(has(file, "2004"));
}

TEST_CASE("Pictures, other frames and their order stay")
{
    const Text others[] = {
        v2Frame(3, "APIC", Text("\0image/png\0\3\0\x89PNG\0\0\xFF\x00\xFF\xE0", 23)),
        v2Frame(3, "UFID", Text("http://owner\0id", 15)),
        v2Frame(3, "TXXX", Text("\0name\0value", 11)),
        v2Frame(3, "XXXX", "unknown"),
        v2Frame(3, "TDAT", latin1Text("0605")),
        v2Frame(3, "PRIV", Text(300, '\xFF'), 0xE000),
        v2Frame(3, "GEOB", "secret", 0x0040),
        v2Frame(3, "USLT", Text("\0engx\0words", 11)),
        v2Comment(3, "eng", "iTunNORM", " 000002F1"),
        v2Comment(3, "eng", "Label", "described"),
    };
    Text all;
    for (const Text& frame : others)
        all += frame;
    CHECK(has(retitled(v2Tag(3, text3("TIT2", "Old") + all, 50) + audio), all));
    CHECK(has(retitled(v2Tag(3, all + text3("TIT2", "Old")) + audio), all));
    CHECK(has(changed(v2Tag(3, all) + audio, [](Tag& tag) { tag.comment = "New"; }), all));
}

TEST_CASE("A new comment takes the place of the plain one, in its language, and leaves the described ones")
{
    const Text described = v2Comment(3, "eng", "Label", "described");
    const auto comment = [](Tag& tag) { tag.comment = "New"; };
    const auto none = [](Tag& tag) { tag.comment = ""; };
    const Text file = changed(v2Tag(3, described + v2Comment(3, "deu", "", "Alt")) + audio, comment);
    CHECK(has(file, described + v2Comment(3, "deu", "", "New")));
    CHECK_FALSE(has(file, "Alt"));
    CHECK(
        has(changed(v2Tag(3, v2Comment(3, "deu", "", "")) + audio, comment), v2Comment(3, "deu", "", "New")));
    CHECK(has(changed(v2Tag(3, described) + audio, comment), described + v2Comment(3, "XXX", "", "New")));
    CHECK(has(changed(v2Tag(3, described) + audio, none), described + v2Comment(3, "XXX", "", "")));
    CHECK_FALSE(has(changed(v2Tag(3, v2Comment(3, "deu", "", "Alt")) + audio, none), "COMM"));
}

TEST_CASE("Of several frames of a kind one remains after a change")
{
    const Text file =
        retitled(v2Tag(3, text3("TIT2", "one") + text3("TALB", "Album") + text3("TIT2", "two")) + audio);
    CHECK(has(file, text3("TIT2", "New") + text3("TALB", "Album")));
    CHECK_FALSE(has(file, "two"));
}

TEST_CASE("A genre that has no number outlives the change of another field")
{
    const Text genre = text3("TCON", "Chillwave");
    CHECK(has(retitled(v2Tag(3, genre) + audio), genre));

    // The window that edits tags shows such a file as 80 and says so when it saves.
    const Text saved = changed(v2Tag(3, genre) + audio + apeTag({apeItem("Genre", "Chillwave")}),
                               [](Tag& tag) { tag.genreIndex = 80; });
    CHECK(has(saved, genre));
    CHECK(has(saved, apeItem("Genre", "Chillwave")));
    CHECK(v1Of(saved).genre == 80);

    const Text other = changed(v2Tag(3, genre) + audio, [](Tag& tag) { tag.genreIndex = 17; });
    CHECK_FALSE(has(other, "Chillwave"));
    const Text none =
        changed(v2Tag(3, text3("TCON", "Blues")) + audio, [](Tag& tag) { tag.genreIndex = 80; });
    CHECK_FALSE(has(none, "Blues")); // the first of the genres is one that the window tells from none
}

TEST_CASE("A common genre that the tag editor has no row for survives a saving in every format")
{
    const Text genre = text4("TCON", "Heavy Metal");
    V1 v1{"Old"};
    v1.genre = 137;
    const Text file = v2Tag(4, genre) + audio + apeTag({apeItem("Genre", "Thrash")}) + v1Tag(v1);
    const Text saved = changed(file, [](Tag& tag) { tag.genreIndex = 80; });
    CHECK(has(saved, genre));
    CHECK(has(saved, apeItem("Genre", "Thrash")));
    CHECK(v1Of(saved).genre == 80);

    CHECK(v1Of(retitled(file)).genre == 137);

    const Text rock = changed(file, [](Tag& tag) { tag.genreIndex = 17; });
    CHECK(has(rock, v2Frame(4, "TCON", latin1Text("Rock"))));
    CHECK(has(rock, apeItem("Genre", "Rock")));
    CHECK(v1Of(rock).genre == 17);
}

TEST_CASE("A genre's name in APE is not hidden by a number in an ID3v2 tag that had none")
{
    const Text file = v2Tag(3, text3("TIT2", "Old")) + audio + apeTag({apeItem("Genre", "Chillwave")});
    const Text saved = changed(file, [](Tag& tag) { tag.genreIndex = 80; });
    CHECK_FALSE(has(saved, "TCON"));
    CHECK(has(saved, apeItem("Genre", "Chillwave")));
}

TEST_CASE("A genre's name in APE also stays beside a number that another tag keeps")
{
    for (const Text number : {"(17)", "(80)"}) {
        CAPTURE(number);
        const Text ape = apeTag({apeItem("Genre", "Odd")});
        const Text file = retitled(v2Tag(3, text3("TIT2", "Old") + text3("TCON", number)) + audio + ape);
        CHECK(has(file, apeItem("Genre", "Odd")));
        CHECK(has(file, text3("TCON", number)));
    }
}

TEST_CASE("A number above the tag editor's is written as a number")
{
    const Text saved =
        changed(v2Tag(3, text3("TIT2", "Old")) + audio, [](Tag& tag) { tag.genreIndex = 137; });
    CHECK(has(saved, text3("TCON", "(137)")));
}

TEST_CASE("A value with an end of a line in it keeps its bytes when its field does not change")
{
    const Text title = text3("TIT2", "two\r\nlines");
    const Text artist = text3("TPE1", "Old");
    const Text album = apeItem("Album", "two\nlines");
    const Text lines = field("two\nlines", 30);
    const Text file =
        changed(v2Tag(3, title + artist) + audio + apeTag({album}) + v1Tag({lines, "Old", lines}),
                [](Tag& tag) { tag.artist = "New"; });
    CHECK(has(file, title));
    CHECK(has(file, album));
    CHECK(v1Of(file).album == lines);
    CHECK(has(file, text3("TPE1", "New")));
}

TEST_CASE("What is set is written as one line")
{
    const Text file = changed(v2Tag(3, text3("TIT2", "Old")) + audio, [](Tag& tag) { tag.title = "a\r\nb"; });
    CHECK(has(file, text3("TIT2", "a  b")));
}

TEST_CASE("APE items that do not change stay, with their order, flags and spelling")
{
    const Text album = apeItem("ALBUM", "Album", 1);
    const Text cover = apeItem("Cover Art (Front)", Text("name\0\xFF\0", 7), 2);
    const Text artist = apeItem("Artist", Text("A\0B", 3));
    const Text file = retitled(audio + apeTag({apeItem("Title", "Old"), album, cover, artist}));
    CHECK(has(file, apeTag({album, cover, artist, apeItem("Title", "New")})));
}

TEST_CASE("The track number of ID3v1.1 stays unless the comment needs its bytes")
{
    const auto commented = [](const Text& comment, void (*change)(Tag&)) {
        return v1Of(changed(audio + v1Tag({"Old", "", "", "", comment, 7}), change)).comment;
    };
    CHECK(commented("", [](Tag& tag) { tag.title = "New"; }) == Text(28, '\0') + Text("\0\7", 2));
    CHECK(commented("abc", [](Tag& tag) { tag.comment = Text(28, 'x'); }) == Text(28, 'x') + Text("\0\7", 2));
    CHECK(commented("abc", [](Tag& tag) { tag.comment = Text(29, 'x'); }) == Text(29, 'x') + '\0');
    CHECK(commented("abc", [](Tag& tag) { tag.comment = Text(30, 'x'); }) == Text(30, 'x'));
    CHECK(commented("abc", [](Tag& tag) { tag.comment = Text(31, 'x'); }) == Text(28, 'x') + Text("\0\7", 2));
    CHECK(commented("abc", [](Tag& tag) { tag.comment = ""; }) == Text(28, '\0') + Text("\0\7", 2));
    CHECK(commented("abc", [](Tag& tag) { tag.comment = " "; }) == " " + Text(27, '\0') + Text("\0\7", 2));
}

TEST_CASE("A track number also stays under a long comment that only ID3v2 holds whole")
{
    const Text file = retitled(v2Tag(3, text3("TIT2", "Old") + v2Comment(3, "eng", "", Text(30, 'x'))) +
                               audio + v1Tag({"Old", "", "", "", Text(28, 'x'), 7}));
    CHECK(v1Of(file).comment == Text(28, 'x') + Text("\0\7", 2));
}

TEST_CASE("ID3v1 fields that say the same keep their bytes")
{
    const Text blanks = "abc" + Text(27, ' ');
    const Text junk = field(Text("abc\0junk", 8), 30);
    const V1Bytes tag = v1Of(retitled(audio + v1Tag({"Old", blanks, junk, "1987", "caf\xC3\xA9", 0, 17})));
    CHECK(tag.artist == blanks);
    CHECK(tag.album == junk);
    CHECK(tag.comment == field("caf\xC3\xA9", 30));
    CHECK(tag.genre == 17);
}

TEST_CASE("An ID3v1 text in some other code page is not replaced by question marks when its field stays")
{
    const Text windows1251 = "\xCF\xF0\xE8\xE2\xE5\xF2";
    const Text v2 = v2Tag(3, v2Frame(3, "TPE1", utf16Text(u"\u041F\u0440\u0438\u0432\u0435\u0442")) +
                                 text3("TIT2", "Old"));
    const Text v1 = v1Tag({"Old", windows1251});
    CHECK(v1Of(retitled(v2 + audio + v1)).artist == field(windows1251, 30));
    CHECK(v1Of(changed(v2 + audio + v1, [](Tag& tag) { tag.artist += "!"; })).artist ==
          field(Text(6, '?') + "!", 30));
}

TEST_CASE("A tag that says everything already leaves the file untouched")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, v2Tag(4, text4("TIT2", "Title") + text4("TDRC", "2004-05-06")) + audio +
                                          v1Tag({"Title", "", "", "2004"}));
    const auto before = std::filesystem::last_write_time(path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    CHECK(writeTag(path, readTag(path)) == "");
    CHECK(std::filesystem::last_write_time(path) == before);
}

TEST_CASE("Bytes around the tags are no business of theirs")
{
    const Text lyrics = "LYRICSBEGININD0000200" + Text("000016LYRICS200");
    const Text enhanced = "TAG+" + Text(223, 'e');
    const Text second = v2Tag(3, text3("TIT2", "second"));
    const Text v1 = v1Tag({"Old"});
    CHECK(has(retitled(audio + lyrics + v1), audio + lyrics + v1Tag({"New"})));
    CHECK(has(retitled(audio + enhanced + v1), audio + enhanced + v1Tag({"New"})));
    CHECK(has(retitled(v2Tag(3, text3("TIT2", "Old"), 50) + second + Text(100, '\0') + audio + v1),
              second + Text(100, '\0') + audio + v1Tag({"New"})));
    CHECK(has(retitled(audio + "APETAGEX" + Text(24, '\1') + v1),
              audio + "APETAGEX" + Text(24, '\1') + v1Tag({"New"})));
}

TEST_CASE("What lies behind the frames stays unless it is padding")
{
    const Text junk = "not a frame, and not zero";
    const Text cut = "APIC" + bigEndian(5000, 4) + Text(2, '\0') + Text(100, 'p');
    CHECK(has(retitled(v2Tag(3, text3("TIT2", "Old") + junk) + audio), text3("TIT2", "New") + junk));
    CHECK(has(retitled(v2Tag(3, text3("TIT2", "Old") + cut) + audio), text3("TIT2", "New") + cut));
}

TEST_CASE("Unusual tags keep their form")
{
    const Text old = text4("TIT2", "Old");
    const Text extended3 = bigEndian(6, 4) + Text(2, '\0') + bigEndian(100, 4);
    const Text extended4 = syncSafe(6) + Text("\1\0", 2);
    const Text footer = "3DI" + Text("\4\0\x10", 3) + syncSafe(old.size());
    const Text experimental = v2Tag(3, text3("TIT2", "Old"), 50, 0x20);

    const Text with3 = retitled(v2Tag(3, extended3 + text3("TIT2", "O"), 100, 0x40) + audio);
    CHECK(with3.substr(10, 10) == bigEndian(6, 4) + Text(2, '\0') + bigEndian(98, 4));
    CHECK(has(with3, text3("TIT2", "New") + Text(98, '\0') + audio));

    CHECK(has(retitled(v2Tag(4, extended4 + old, 50, 0x40) + audio),
              extended4 + v2Frame(4, "TIT2", latin1Text("New"))));
    CHECK(retitled(experimental + audio)[5] == 0x20);

    const Text ended = retitled(v2Tag(4, old, 0, 0x10) + footer + audio);
    CHECK(ended.substr(0, ended.size() - 128) ==
          v2Tag(4, v2Frame(4, "TIT2", latin1Text("New")), 0, 0x10) + footer + audio);
}

TEST_CASE("An announced extended header that is not there is no longer announced after a writing")
{
    for (const int version : {3, 4}) {
        CAPTURE(version);
        const auto text = [&](const Text& value) { return v2Frame(version, "TIT2", latin1Text(value)); };
        const Text album = v2Frame(version, "TALB", latin1Text("Album"));
        CHECK(retitled(v2Tag(version, text("Old") + album, 50, 0x40) + audio) ==
              v2Tag(version, text("New") + album, 50) + audio + v1Tag({"New", "", "Album"}));
        CHECK(has(retitled(v2Tag(version, "", 50, 0x40) + audio), text("New")));
    }
}

TEST_CASE("A checksum in the extended header is made anew")
{
    const Text title = text3("TIT2", "New");
    const Text extended3 = bigEndian(10, 4) + Text("\x80\0", 2) + bigEndian(50, 4);
    const Text file3 = retitled(v2Tag(3, extended3 + "CRC!" + text3("TIT2", "Old"), 50, 0x40) + audio);
    CHECK(file3.substr(0, 10) == v2Tag(3, Text(14, '\0') + title, 50, 0x40).substr(0, 10));
    CHECK(has(file3, extended3 + bigEndian(crc32Of(title), 4) + title + Text(50, '\0') + audio));

    const Text unknown3 = bigEndian(6, 4) + Text("\x01\0", 2) + bigEndian(50, 4);
    CHECK(has(retitled(v2Tag(3, unknown3 + text3("TIT2", "Old"), 50, 0x40) + audio),
              unknown3 + title + Text(50, '\0') + audio)); // another flag, and no checksum

    const Text longer = changed(v2Tag(3, extended3 + "CRC!" + text3("TIT2", "Old"), 50, 0x40) + audio,
                                [](Tag& tag) { tag.title = Text(100, 'x'); });
    CHECK(has(longer, bigEndian(crc32Of(text3("TIT2", Text(100, 'x'))), 4) + text3("TIT2", Text(100, 'x'))));

    const Text frame4 = v2Frame(4, "TIT2", latin1Text("New")) + text4("TALB", "Album");
    const Text old4 = text4("TIT2", "Old") + text4("TALB", "Album");
    const auto sum4 = [](const Text& bytes) {
        const auto sum = crc32Of(bytes);
        return Text(1, static_cast<char>(sum >> 28)) + syncSafe(sum & 0xFFFFFFF);
    };
    const Text plain4 = syncSafe(12) + Text("\1\x20\5", 3);
    CHECK(has(retitled(v2Tag(4, plain4 + Text(5, '\0') + old4, 50, 0x40) + audio),
              plain4 + sum4(frame4 + Text(50, '\0')) + frame4 + Text(50, '\0') + audio));
    const Text all4 = syncSafe(15) + Text("\1\x70\0\5", 4);
    CHECK(has(retitled(v2Tag(4, all4 + Text(5, '\0') + Text("\1\x2A", 2) + old4, 50, 0x40) + audio),
              all4 + sum4(frame4 + Text(50, '\0')) + Text("\1\x2A", 2) + frame4));
}

TEST_CASE("The size of a long text is written as its version writes sizes")
{
    const Text longTitle(300, 'x');
    for (const int version : {3, 4}) {
        CAPTURE(version);
        const Text tag = v2Tag(version, v2Frame(version, "TIT2", latin1Text("Old")), 1000);
        const auto lengthen = [](Tag& shown) { shown.title = Text(300, 'x'); };
        CHECK(has(changed(tag + audio, lengthen), v2Frame(version, "TIT2", latin1Text(longTitle))));
    }
}

TEST_CASE("A tag with unsynchronisation keeps it")
{
    const Text plain = v2Frame(3, "PRIV", Text("a\0\xFF\xE0\xFF\0\xFF", 7));
    const Text stored = "PRIV" + bigEndian(7, 4) + Text(2, '\0') + Text("a\0\xFF\0\xE0\xFF\0\0\xFF", 9);
    const Text file = retitled(v2Tag(3, stored + text3("TIT2", "Old"), 100, 0x80) + audio);
    CHECK(file[5] == '\x80');
    CHECK(has(file, stored + text3("TIT2", "New")));

    const Text extended = bigEndian(6, 4) + Text(2, '\0') + bigEndian(0xFF, 4);
    const Text both = retitled(v2Tag(3, extended + stored + text3("TIT2", "Old"), 0xFF, 0xC0) + audio);
    CHECK(has(both, bigEndian(6, 4) + Text(6, '\0') + stored + text3("TIT2", "New") + audio));

    const Text byFrame = v2Frame(4, "PRIV", Text("a\0\xFF\0\xE0", 5), 0x0002);
    CHECK(has(retitled(v2Tag(4, byFrame + text4("TIT2", "Old"), 100, 0x80) + audio), byFrame));
}

TEST_CASE("A tag that cannot be kept is refused with a reason")
{
    const Text title = text3("TIT2", "Old");
    const Text checksum3 = bigEndian(6, 4) + Text("\x80\0", 2) + bigEndian(0, 4);
    const Text checksum4 = syncSafe(12) + Text("\1\x20\7", 3) + Text(5, '\0');
    const Text short4 = syncSafe(7) + Text("\1\x20\5", 3);
    struct Case {
        const char* what;
        Text bytes;
    };
    const Case cases[] = {
        {"longer than the file", "ID3" + Text(3, '\3') + syncSafe(10'000'000) + title + audio},
        {"of a version to come", v2Tag(5, title) + audio},
        {"of version 2.1", v2Tag(1, title) + audio},
        {"compressed as a whole", v2Tag(2, v2Frame(2, "TT2", latin1Text("Old")), 0, 0x40) + audio},
        {"with no room for its checksum in 2.3", v2Tag(3, checksum3 + title, 10, 0x40) + audio},
        {"with no room for its checksum in 2.4", v2Tag(4, short4 + text4("TIT2", "Old"), 10, 0x40) + audio},
        {"with an extended header that ends before its checksum in 2.4",
         v2Tag(4, syncSafe(6) + Text("\1\x20", 2) + text4("TIT2", "Old"), 10, 0x40) + audio},
        {"with a checksum of another length", v2Tag(4, checksum4 + text4("TIT2", "Old"), 10, 0x40) + audio},
        {"with a damaged extended header", v2Tag(3, bigEndian(5000, 4) + title, 10, 0x40) + audio},
        {"with an encrypted title", v2Tag(3, v2Frame(3, "TIT2", "x" + latin1Text("Old"), 0x40)) + audio},
        {"with a compressed title", v2Tag(3, v2Frame(3, "TIT2", "x" + latin1Text("Old"), 0x80)) + audio},
        {"with a grouped title", v2Tag(4, v2Frame(4, "TIT2", "x" + utf8Text("Old"), 0x40)) + audio},
        {"only claiming unsynchronisation",
         v2Tag(3, v2Frame(3, "PRIV", Text("a\0\xFF\xE0", 4)) + title, 10, 0x80) + audio},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(refusal(c.bytes) != "");
    }
}

TEST_CASE("A damaged end that a longer file would make swallow the sound is refused")
{
    const TemporaryFolder folder;
    const Text footer =
        "APETAGEX" + littleEndian(2000) + littleEndian(audio.size() + 500) + littleEndian(1) + Text(12, '\0');
    const Text path = putSong(folder, audio + footer);
    CHECK(writeTag(path, {Text(60, 'x'), "", "", "", 0, -1}) != "");
    CHECK(fileBytes(path) == audio + footer);
    CHECK(writeTag(path, {"fits ID3v1", "", "", "", 0, -1}) == "");
}

TEST_CASE("An encrypted frame beside the changed one is no hindrance")
{
    const Text secret = v2Frame(3, "TALB", "x" + latin1Text("secret"), 0x40);
    CHECK(has(retitled(v2Tag(3, secret + text3("TIT2", "Old")) + audio), secret));
}

TEST_CASE("A file that is no MP3 is refused and stays")
{
    for (const Text& bytes :
         {Text(), Text("text"), "RIFF" + littleEndian(36) + "WAVEfmt " + audio, "fLaC" + Text(100, '\0'),
          "OggS" + audio, v1Tag({"Old"}), v2Tag(3, text3("TIT2", "Old"))}) {
        CAPTURE(bytes.substr(0, 8));
        CHECK(refusal(bytes) == "It is not an MP3 file.");
    }
}
