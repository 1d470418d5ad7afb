// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/cue_sheet.h"

#include <doctest/doctest.h>

namespace
{

constexpr const char* oneTrack = "FILE \"a.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n";

Text withFileLine(const Text& line) { return line + "\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"; }
Text withIndex(const Text& time) { return "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 " + time + "\n"; }

}

TEST_CASE("A sheet is read whatever the writing system makes of it")
{
    const struct {
        const char* what;
        Text sheet;
    } cases[] = {
        {"as usual", oneTrack},
        {"lines of CR and LF", "FILE \"a.bin\" BINARY\r\n  TRACK 01 AUDIO\r\n    INDEX 01 00:00:00\r\n"},
        {"lines of CR", "FILE \"a.bin\" BINARY\rTRACK 01 AUDIO\rINDEX 01 00:00:00\r"},
        {"no end of the last line", "FILE \"a.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00"},
        {"a byte order mark", Text("\xEF\xBB\xBF") + oneTrack},
        {"small letters", "file \"a.bin\" binary\ntrack 01 audio\nindex 01 00:00:00\n"},
        {"mixed letters", "File \"a.bin\" Binary\nTrack 01 Audio\nIndex 01 00:00:00\n"},
        {"tabs and blanks", "\t FILE\t \"a.bin\" \tBINARY \n TRACK  01\tAUDIO\t\n\tINDEX\t01   00:00:00  \n"},
        {"one digit a number", "FILE \"a.bin\" BINARY\nTRACK 1 AUDIO\nINDEX 1 0:0:0\n"},
        {"no quotes", "FILE a.bin BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"},
        {"empty lines", "\n\n\r\nFILE \"a.bin\" BINARY\n\nTRACK 01 AUDIO\n\nINDEX 01 00:00:00\n\n"},
        {"remarks, texts and flags",
         "REM GENRE \"FILE\"\nCATALOG 1234567890123\nPERFORMER \"Somebody\"\nTITLE \"TRACK 02 AUDIO\"\n"
         "CDTEXTFILE \"a.cdt\"\nFILE \"a.bin\" BINARY\nTRACK 01 AUDIO\nFLAGS DCP 4CH PRE\nISRC ABCDE1234567\n"
         "SONGWRITER\nINDEX 01 00:00:00\nREM INDEX 99\n"},
        {"the file repeated", Text(oneTrack).insert(20, "FILE \"a.bin\" BINARY\n")},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto sheet = disc::cueSheetIn(c.sheet);
        REQUIRE(sheet.has_value());
        REQUIRE(sheet->files.size() == 1);
        CHECK(sheet->files[0].name == "a.bin");
        CHECK(sheet->files[0].kind == disc::CueSheet::Kind::binary);
        REQUIRE(sheet->tracks.size() == 1);
        CHECK(sheet->tracks[0].isAudio);
        CHECK(sheet->tracks[0].indexes.size() == 1);
    }
}

TEST_CASE("A file's name and kind are told apart")
{
    const struct {
        const char* line;
        const char* name;
        disc::CueSheet::Kind kind;
    } cases[] = {
        {"FILE \"a b.bin\" BINARY", "a b.bin", disc::CueSheet::Kind::binary},
        {"FILE a b.bin BINARY", "a b.bin", disc::CueSheet::Kind::binary},
        {"FILE \"a.img\" MOTOROLA", "a.img", disc::CueSheet::Kind::motorola},
        {"FILE \"01 - a.wav\" WAVE", "01 - a.wav", disc::CueSheet::Kind::wave},
        {"FILE \"say \"ah\".wav\" WAVE", "say \"ah\".wav", disc::CueSheet::Kind::wave},
        {"FILE \"a.bin\"BINARY", "a.bin", disc::CueSheet::Kind::binary},
        {"FILE \"BINARY\" BINARY", "BINARY", disc::CueSheet::Kind::binary},
        {"FILE \"C:\\discs\\a.bin\" BINARY", "C:\\discs\\a.bin", disc::CueSheet::Kind::binary},
        {"FILE \"\xFF\xC3 \xE4.bin\" BINARY", "\xFF\xC3 \xE4.bin", disc::CueSheet::Kind::binary},
        {"FILE \" a.bin\" BINARY", " a.bin", disc::CueSheet::Kind::binary},
    };
    for (const auto& c : cases) {
        CAPTURE(c.line);
        const auto sheet = disc::cueSheetIn(withFileLine(c.line));
        REQUIRE(sheet.has_value());
        CHECK(sheet->files[0].name == c.name);
        CHECK(sheet->files[0].kind == c.kind);
    }
}

TEST_CASE("Each kind of track has its sectors")
{
    const struct {
        const char* mode;
        bool isAudio;
        std::int32_t bytes;
    } cases[] = {
        {"AUDIO", true, 2352},       {"CDG", true, 2448},         {"MODE1/2048", false, 2048},
        {"MODE1/2352", false, 2352}, {"MODE2/2048", false, 2048}, {"MODE2/2324", false, 2324},
        {"MODE2/2336", false, 2336}, {"MODE2/2352", false, 2352}, {"CDI/2336", false, 2336},
        {"CDI/2352", false, 2352},
    };
    for (const auto& c : cases) {
        CAPTURE(c.mode);
        const auto sheet =
            disc::cueSheetIn("FILE a BINARY\nTRACK 01 " + Text(c.mode) + "\nINDEX 01 00:00:00\n");
        REQUIRE(sheet.has_value());
        CHECK(sheet->tracks[0].isAudio == c.isAudio);
        CHECK(sheet->tracks[0].bytesOfSector == c.bytes);
    }
}

TEST_CASE("Times count minutes, seconds and 75ths")
{
    const struct {
        const char* time;
        std::int32_t sector;
    } cases[] = {
        {"00:00:00", 0},    {"00:00:74", 74},     {"00:01:00", 75},
        {"01:00:00", 4500}, {"99:59:74", 449999}, {"100:00:00", 450000},
    };
    for (const auto& c : cases) {
        CAPTURE(c.time);
        const auto sheet = disc::cueSheetIn(withIndex(c.time));
        REQUIRE(sheet.has_value());
        CHECK(sheet->tracks[0].indexes[0].sector == c.sector);
    }
}

TEST_CASE("Gaps and indexes are kept with their tracks and files")
{
    const auto sheet =
        disc::cueSheetIn("FILE \"1.wav\" WAVE\nTRACK 01 AUDIO\nPREGAP 00:02:00\nINDEX 01 00:00:00\n"
                         "INDEX 02 00:10:00\nPOSTGAP 00:00:10\nTRACK 02 AUDIO\nINDEX 00 03:00:00\n"
                         "FILE \"2.wav\" WAVE\nINDEX 01 00:00:00\n");
    REQUIRE(sheet.has_value());
    REQUIRE(sheet->tracks.size() == 2);
    const auto& first = sheet->tracks[0];
    CHECK(first.pregap == 150);
    CHECK(first.postgap == 10);
    REQUIRE(first.indexes.size() == 2);
    CHECK(first.indexes[1].sector == 750);
    const auto& second = sheet->tracks[1];
    REQUIRE(second.indexes.size() == 2);
    CHECK(second.indexes[0].number == 0);
    CHECK(second.indexes[0].file == 0);
    CHECK(second.indexes[0].sector == 13500);
    CHECK(second.indexes[1].number == 1);
    CHECK(second.indexes[1].file == 1);
    CHECK(second.indexes[1].sector == 0);
}

TEST_CASE("A sheet that cannot be followed is none")
{
    const struct {
        const char* what;
        Text sheet;
    } cases[] = {
        {"nothing", ""},
        {"a byte order mark alone", "\xEF\xBB\xBF"},
        {"rubbish", "\x01\x02\xFF\0\n\0garbage"},
        {"no track", "FILE \"a.bin\" BINARY\n"},
        {"a track before the file", "TRACK 01 AUDIO\nINDEX 01 00:00:00\nFILE \"a.bin\" BINARY\n"},
        {"a track without index", "FILE \"a.bin\" BINARY\nTRACK 01 AUDIO\n"},
        {"a track with index 0 alone", "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 00 00:00:00\n"},
        {"a track with index 2 alone", "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 02 00:00:00\n"},
        {"an index before any track",
         "FILE a BINARY\nINDEX 01 00:00:00\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"},
        {"no name", withFileLine("FILE BINARY")},
        {"an empty name", withFileLine("FILE \"\" BINARY")},
        {"no kind", withFileLine("FILE \"a.bin\"")},
        {"an open quote", withFileLine("FILE \"a.bin BINARY")},
        {"a kind of compressed sound", withFileLine("FILE \"a.mp3\" MP3")},
        {"a NUL in a name", withFileLine(Text("FILE \"a\0b\" BINARY", 17))},
        {"no mode", "FILE a BINARY\nTRACK 01\nINDEX 01 00:00:00\n"},
        {"an unknown mode", "FILE a BINARY\nTRACK 01 MODE9/2352\nINDEX 01 00:00:00\n"},
        {"track 0", "FILE a BINARY\nTRACK 00 AUDIO\nINDEX 01 00:00:00\n"},
        {"track 100", "FILE a BINARY\nTRACK 100 AUDIO\nINDEX 01 00:00:00\n"},
        {"a negative track", "FILE a BINARY\nTRACK -1 AUDIO\nINDEX 01 00:00:00\n"},
        {"a track twice", Text(oneTrack) + "TRACK 01 AUDIO\nINDEX 01 00:01:00\n"},
        {"tracks that fall",
         "FILE a BINARY\nTRACK 02 AUDIO\nINDEX 01 00:00:00\nTRACK 01 AUDIO\nINDEX 01 00:01:00\n"},
        {"an index twice", Text(oneTrack) + "INDEX 01 00:01:00\n"},
        {"index 100", Text(oneTrack) + "INDEX 100 00:01:00\n"},
        {"times that fall in a track", withIndex("00:02:00") + "INDEX 02 00:01:00\n"},
        {"times that fall in a file", withIndex("00:02:00") + "TRACK 02 AUDIO\nINDEX 01 00:01:00\n"},
        {"75 frames", withIndex("00:00:75")},
        {"60 seconds", withIndex("00:60:00")},
        {"1000 minutes", withIndex("1000:00:00")},
        {"a time of two numbers", withIndex("00:00")},
        {"a time of four numbers", withIndex("00:00:00:00")},
        {"no time", withIndex("")},
        {"letters for a time", withIndex("aa:bb:cc")},
        {"a negative time", withIndex("00:-1:00")},
        {"a gap behind its track's index", Text(oneTrack) + "PREGAP 00:02:00\n"},
        {"a gap of no time", "FILE a BINARY\nTRACK 01 AUDIO\nPREGAP\nINDEX 01 00:00:00\n"},
        {"a gap before any track", "FILE a BINARY\nPOSTGAP 00:01:00\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK_FALSE(disc::cueSheetIn(c.sheet).has_value());
    }
}

TEST_CASE("99 tracks are read, and no more files than any disc needs")
{
    Text sheet;
    for (int i = 1; i <= 99; ++i)
        sheet += "FILE \"" + std::to_string(i) + "\" WAVE\nTRACK " + std::to_string(i) +
                 " AUDIO\nINDEX 01 00:00:00\n";
    const auto read = disc::cueSheetIn(sheet);
    REQUIRE(read.has_value());
    CHECK(read->tracks.size() == 99);
    CHECK(read->files.size() == 99);
    Text files;
    for (int i = 1; i <= 201; ++i)
        files += "FILE \"" + std::to_string(i) + "\" WAVE\n";
    CHECK_FALSE(disc::cueSheetIn(files + sheet).has_value());
}

TEST_CASE("Ten thousand tracks are no disc, however they are numbered")
{
    for (const int numbers : {10'000, 100, 1}) {
        CAPTURE(numbers);
        Text sheet = "FILE a BINARY\n";
        for (int i = 1; i <= 10'000; ++i)
            sheet += "TRACK " + std::to_string(i % numbers + 1) + " AUDIO\nINDEX 01 00:00:00\n";
        CHECK_FALSE(disc::cueSheetIn(sheet).has_value());
    }
}
