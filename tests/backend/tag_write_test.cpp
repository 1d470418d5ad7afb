// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/tag_file.h"

#include "tests/support/mp3_files.h"

#include <doctest/doctest.h>

using namespace tags;

namespace
{

const Text audio = mp3Frames(40);
const Text cyrillic = "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82";
const Text chinese = "\xE9\x9F\xB3\xE4\xB9\x90";
const Tag usual{"Title", "Artist", "Album", "Comment", 1987, 17};

// The file's bytes after a successful writing, its audio unharmed and nothing left beside it.
Text written(const Text& bytes, const Tag& tag)
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, bytes);
    CHECK(writeTag(path, tag) == "");
    CHECK(holdsOnlyTheSong(folder));
    const Text result = fileBytes(path);
    CHECK(result.find(audio) != Text::npos);
    return result;
}

Tag readBack(const Text& bytes)
{
    const TemporaryFolder folder;
    return readTag(putSong(folder, bytes));
}

bool has(const Text& bytes, const Text& part) { return bytes.find(part) != Text::npos; }

Text padded(const Text& bytes, std::size_t size) { return bytes + Text(size - bytes.size(), '\0'); }

}

TEST_CASE("A file without a tag gets ID3v1 alone where that can say everything")
{
    const Text file = written(audio, usual);
    CHECK(file.size() == audio.size() + 128);
    CHECK(file.substr(0, audio.size()) == audio);
    const V1Bytes tag = v1Of(file);
    CHECK(tag.all.substr(0, 3) == "TAG");
    CHECK(tag.title == padded("Title", 30));
    CHECK(tag.artist == padded("Artist", 30));
    CHECK(tag.album == padded("Album", 30));
    CHECK(tag.year == "1987");
    CHECK(tag.comment == padded("Comment", 30));
    CHECK(tag.genre == 17);
    CHECK(readBack(file) == usual);
}

TEST_CASE("What is written is read back")
{
    const Tag cases[] = {
        {},
        usual,
        {"", "", "", " ", 0, 80},
        {cyrillic, chinese, "\xF0\x9F\x8E\xB5", cyrillic, 2004, 80},
        {Text(60, 't'), Text(60, 'a'), Text(60, 'l'), Text(60, 'c'), 1, 0},
        {"R&B", "<b>bold</b>", "a  b", "100 %s", 9999, 79},
        {"caf\xC3\xA9", "\xC3\x83\xC2\xA9", " blank ", "?", -5, 191},
        {"", "", "", "", 32767, 254},
        {"", "", "", "", -32768, -1},
    };
    const Text starts[] = {
        audio,
        audio + v1Tag({"old", "old", "old", "1900", "old", 5, 3}),
        v2Tag(2, v2Frame(2, "TT2", latin1Text("old")), 10) + audio,
        v2Tag(3, v2Frame(3, "TIT2", latin1Text("old")) + v2Comment(3, "eng", "", "old"), 10) + audio,
        v2Tag(4, v2Frame(4, "TDRC", latin1Text("1900-01-01")) + v2Frame(4, "TCON", latin1Text("Pop"))) +
            audio,
        audio + apeTag({apeItem("Title", "old"), apeItem("Year", "1900")}),
        v2Tag(3, "") + audio + apeTag({}) + v1Tag({"old"}),
    };
    for (std::size_t start = 0; start < std::size(starts); ++start)
        for (std::size_t i = 0; i < std::size(cases); ++i) {
            CAPTURE(start);
            CAPTURE(i);
            const Text file = written(starts[start], cases[i]);
            CHECK(readBack(file) == cases[i]);
            CHECK(written(file, cases[i]) == file);
        }
}

TEST_CASE("ID3v1 takes thirty bytes of a field, one a character, with a question mark for what it cannot say")
{
    const V1Bytes tag =
        v1Of(written(audio, {"caf\xC3\xA9", cyrillic + "!", Text(60, 'x'), chinese, 1987, 17}));
    CHECK(tag.title == padded("caf\xE9", 30));
    CHECK(tag.artist == padded(Text(6, '?') + "!", 30));
    CHECK(tag.album == Text(30, 'x'));
    CHECK(tag.comment == padded(Text(2, '?'), 30));
}

TEST_CASE("A tag that ID3v1 cannot hold gets ID3v2 in front of the audio")
{
    struct Case {
        const char* what;
        Tag tag;
        bool needsMore;
    };
    const Case cases[] = {
        {"thirty characters", {Text(30, 'x'), "", "", "", 0, -1}, false},
        {"thirty-one characters", {Text(31, 'x'), "", "", "", 0, -1}, true},
        {"Latin-1 letters", {"caf\xC3\xA9", "", "", "", 0, -1}, false},
        {"Cyrillic letters", {cyrillic, "", "", "", 0, -1}, true},
        {"Latin-1 letters that look like UTF-8", {"\xC3\x83\xC2\xA9", "", "", "", 0, -1}, true},
        {"a long comment", {"", "", "", Text(31, 'x'), 0, -1}, true},
        {"a comment of one blank", {"", "", "", " ", 0, -1}, false},
        {"a year of one digit", {"", "", "", "", 7, -1}, false},
        {"a year of four digits", {"", "", "", "", 9999, -1}, false},
        {"a year of five digits", {"", "", "", "", 10000, -1}, true},
        {"genre 80", {"", "", "", "", 0, 80}, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text file = written(audio, c.tag);
        CHECK((file.substr(0, 3) == "ID3") == c.needsMore);
        CHECK(readBack(file) == c.tag);
    }
    const Text file = written(audio, {cyrillic, "", "", "", 0, 80});
    CHECK(file.substr(0, 5) == Text("ID3\3\0", 5));
    CHECK(has(file, v2Frame(3, "TIT2", utf16Text(u"\u041F\u0440\u0438\u0432\u0435\u0442"))));
    CHECK(has(file, v2Frame(3, "TCON", latin1Text("(80)"))));
    CHECK(v1Of(file).genre == 80);
    CHECK_FALSE(has(file, "TALB"));
}

TEST_CASE("ID3v2 keeps its version, and each version its own names and encodings")
{
    const Tag tag{cyrillic, "Artist", "", "Comment", 1987, 80};
    const std::u16string units = u"\u041F\u0440\u0438\u0432\u0435\u0442";

    const Text file2 = written(v2Tag(2, v2Frame(2, "TT2", latin1Text("old")), 500) + audio, tag);
    CHECK(file2.substr(0, 5) == Text("ID3\2\0", 5));
    CHECK(has(file2, v2Frame(2, "TT2", utf16Text(units))));
    CHECK(has(file2, v2Frame(2, "TYE", latin1Text("1987"))));
    CHECK(has(file2, v2Frame(2, "TCO", latin1Text("(80)"))));
    CHECK(has(file2, v2Frame(2, "COM", Text("\0XXX\0", 5) + "Comment")));

    const Text file3 = written(v2Tag(3, v2Frame(3, "TIT2", latin1Text("old")), 500) + audio, tag);
    CHECK(file3.substr(0, 5) == Text("ID3\3\0", 5));
    CHECK(has(file3, v2Frame(3, "TIT2", utf16Text(units))));
    CHECK(has(file3, v2Frame(3, "TYER", latin1Text("1987"))));
    CHECK(has(file3, v2Frame(3, "TCON", latin1Text("(80)"))));

    const Text file4 = written(v2Tag(4, v2Frame(4, "TIT2", latin1Text("old")), 500) + audio, tag);
    CHECK(file4.substr(0, 5) == Text("ID3\4\0", 5));
    CHECK(has(file4, v2Frame(4, "TIT2", utf8Text(cyrillic))));
    CHECK(has(file4, v2Frame(4, "TDRC", latin1Text("1987"))));
    CHECK(has(file4, v2Frame(4, "TCON", latin1Text("80"))));
}

TEST_CASE("A genre with a name is written by its name")
{
    for (const int version : {3, 4}) {
        CAPTURE(version);
        const Text file = written(v2Tag(version, "", 100) + audio, {"", "", "", "", 0, 17});
        CHECK(has(file, v2Frame(version, "TCON", latin1Text("Rock"))));
    }
}

TEST_CASE("A comment outside ASCII is closed as its encoding asks")
{
    const Text comment3 = written(v2Tag(3, "", 200) + audio, {"", "", "", "\xD0\x9F", 0, -1});
    CHECK(has(comment3, v2Frame(3, "COMM", Text("\1XXX\xFF\xFE\0\0\xFF\xFE\x1F\x04", 12))));
    const Text comment4 = written(v2Tag(4, "", 200) + audio, {"", "", "", "\xD0\x9F", 0, -1});
    CHECK(has(comment4, v2Frame(4, "COMM", Text("\3XXX\0\xD0\x9F", 7))));
}

TEST_CASE("Changes that fit into the padding leave every byte behind the tag in its place")
{
    const Text before = v2Tag(3, v2Frame(3, "TIT2", latin1Text("old")), 500) + audio;
    const Text after = written(before, usual);
    CHECK(after.size() == before.size() + 128);
    CHECK(after.substr(before.size() - audio.size(), audio.size()) == audio);
}

TEST_CASE("A tag that grows leaves room for the next change")
{
    const Text once = written(v2Tag(3, v2Frame(3, "TIT2", latin1Text("old"))) + audio, usual);
    const Text twice = written(once, {"Another", "Someone", "Something", "Else", 1988, 8});
    CHECK(twice.size() == once.size());
}

TEST_CASE("An emptied field leaves every tag")
{
    const Text full =
        v2Tag(3, v2Frame(3, "TIT2", latin1Text("Title")) + v2Frame(3, "TPE1", latin1Text("Artist")) +
                     v2Frame(3, "TALB", latin1Text("Album")) + v2Frame(3, "TYER", latin1Text("1987")) +
                     v2Frame(3, "TDRC", latin1Text("1987")) + v2Frame(3, "TCON", latin1Text("Rock")) +
                     v2Comment(3, "eng", "", "Comment")) +
        audio + apeTag({apeItem("Title", "Title"), apeItem("YEAR", "1987"), apeItem("Genre", "Rock")}) +
        v1Tag({"Title", "Artist", "Album", "1987", "Comment", 0, 17});
    const Text file = written(full, Tag());
    CHECK(readBack(file) == Tag());
    for (const Text part :
         {"TIT2", "TPE1", "TALB", "TYER", "TDRC", "TCON", "COMM", "Title", "YEAR", "1987", "Rock"}) {
        CAPTURE(part);
        CHECK_FALSE(has(file, part));
    }
    CHECK(v1Of(file).all == "TAG" + Text(124, '\0') + '\xFF');
}

TEST_CASE("Year 0 removes the year and nothing else")
{
    Tag tag = usual;
    tag.year = 0;
    const Text file = written(
        v2Tag(4, v2Frame(4, "TDRC", latin1Text("1987-05-06")) + v2Frame(4, "TDOR", latin1Text("1970"))) +
            audio + apeTag({apeItem("Year", "1987")}) + v1Tag({"", "", "", "1987"}),
        tag);
    CHECK(readBack(file).year == 0);
    CHECK_FALSE(has(file, "1987"));
    CHECK(has(file, v2Frame(4, "TDOR", latin1Text("1970"))));
}

TEST_CASE("APE and ID3v2 follow where they are present, and are not made where they are not needed")
{
    const Text ape = apeTag({apeItem("Title", "old"), apeItem("ARTIST", "old")});
    const Text file = written(audio + ape, usual);
    CHECK(file.substr(0, audio.size()) == audio);
    CHECK(has(file,
              apeTag({apeItem("Title", "Title"), apeItem("Artist", "Artist"), apeItem("Album", "Album"),
                      apeItem("Comment", "Comment"), apeItem("Year", "1987"), apeItem("Genre", "Rock")})));
    CHECK(v1Of(file).title == padded("Title", 30));

    const Text both =
        written(v2Tag(3, v2Frame(3, "TIT2", latin1Text("old"))) + audio + ape + v1Tag({"old"}), usual);
    CHECK_FALSE(has(both, "old"));
}

TEST_CASE("An APE tag without a header stays without one")
{
    const Text file = written(audio + apeTag({apeItem("Title", "old")}, false), {"new", "", "", "", 0, -1});
    CHECK(has(file, audio + apeTag({apeItem("Title", "new")}, false) + "TAG"));
}

TEST_CASE("A text that is no valid UTF-8 is taken as Latin-1 letters, and a zero ends it")
{
    CHECK(readBack(written(audio, {"caf\xE9", "", "", "", 0, -1})).title == "caf\xC3\xA9");
    CHECK(readBack(written(v2Tag(3, "") + audio, {"\xFF\xFE", "", "", "", 0, -1})).title ==
          "\xC3\xBF\xC3\xBE");
    CHECK(readBack(written(v2Tag(3, "") + audio, {Text("ab\0cd", 5), "", "", "", 0, -1})).title == "ab");
}

TEST_CASE("A genre that no tag can say is none")
{
    for (const std::int16_t genre : {-2, 255, 256, 32767}) {
        CAPTURE(genre);
        CHECK(readBack(written(v2Tag(3, v2Frame(3, "TCON", latin1Text("Rock"))) + audio,
                               {"", "", "", "", 0, genre}))
                  .genreIndex == -1);
    }
}

TEST_CASE("A field that is too long for any tag is refused, and the file stays")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, audio);
    for (const std::size_t length : {65'526, 1'000'000}) {
        CAPTURE(length);
        CHECK(writeTag(path, {Text(length, 'x'), "", "", "", 0, -1}) ==
              "A text is too long for an ID3v2 tag.");
        CHECK(fileBytes(path) == audio);
    }
    CHECK(writeTag(path, {Text(65'525, 'x'), "", "", "", 0, -1}) == "");
    CHECK(readTag(path).title.size() == 65'525);
}
