// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/image_layout.h"

#include <doctest/doctest.h>

namespace
{

constexpr std::int64_t sector = 2352;

// Start and length of each track.
using Tracks = std::vector<std::pair<std::int32_t, std::int32_t>>;

Tracks tracksOf(const disc::ImageLayout& layout)
{
    Tracks tracks;
    for (const auto& track : layout.contents.tracks)
        tracks.emplace_back(track.start, track.sectors);
    return tracks;
}

std::optional<disc::ImageLayout> layoutOf(const Text& sheet, const std::vector<std::int64_t>& bytes)
{
    const auto read = disc::cueSheetIn(sheet);
    REQUIRE(read.has_value());
    return disc::layoutOf(*read, std::span<const std::int64_t>(bytes));
}

// What holds for every layout: no gap, no empty run, and the tracks lie in it.
void checkWhole(const disc::ImageLayout& layout)
{
    std::int32_t end = 0;
    for (const auto& extent : layout.extents) {
        CHECK(extent.start == end);
        CHECK(extent.sectors > 0);
        end = extent.end();
    }
    CHECK(end == layout.contents.leadOut);
}

}

TEST_CASE("Tracks lie where the sheet says")
{
    const Text track2At4s = "TRACK 02 AUDIO\nINDEX 01 00:04:00\n";
    const struct {
        const char* what;
        Text sheet;
        std::vector<std::int64_t> bytes;
        Tracks tracks;
        std::int32_t leadOut;
    } cases[] = {
        {"one track", "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n", {300 * sector}, {{0, 300}}, 300},
        {"two tracks of one file",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n" + track2At4s,
         {700 * sector},
         {{0, 300}, {300, 400}},
         700},
        {"a gap in the file belongs to the track before it",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 00 00:02:00\nINDEX 01 "
         "00:04:00\n",
         {700 * sector},
         {{0, 300}, {300, 400}},
         700},
        {"a hidden track before the first",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 00 00:00:00\nINDEX 01 00:02:00\n" + track2At4s,
         {700 * sector},
         {{150, 150}, {300, 400}},
         700},
        {"a first track that begins late in its file",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:02:00\n" + track2At4s,
         {700 * sector},
         {{150, 150}, {300, 400}},
         700},
        {"silence before the first track",
         "FILE a BINARY\nTRACK 01 AUDIO\nPREGAP 00:02:00\nINDEX 01 00:00:00\n",
         {300 * sector},
         {{150, 300}},
         450},
        {"silence before a later track belongs to the one before it",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nPREGAP 00:02:00\nINDEX 01 "
         "00:04:00\n",
         {700 * sector},
         {{0, 450}, {450, 400}},
         850},
        {"silence behind tracks",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nPOSTGAP 00:01:00\nTRACK 02 AUDIO\nINDEX 01 "
         "00:04:00\nPOSTGAP 00:02:00\n",
         {700 * sector},
         {{0, 375}, {375, 550}},
         925},
        {"a file a track",
         "FILE a WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nFILE b WAVE\nTRACK 02 AUDIO\nINDEX 01 00:00:00\n",
         {300 * sector, 310 * sector},
         {{0, 300}, {300, 310}},
         610},
        {"the gap in the file of the track before",
         "FILE a WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nINDEX 00 00:03:00\nFILE b "
         "WAVE\nINDEX 01 00:00:00\n",
         {300 * sector, 310 * sector},
         {{0, 300}, {300, 310}},
         610},
        {"the gap in front of the track in its own file",
         "FILE a WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nFILE b WAVE\nTRACK 02 AUDIO\nINDEX 00 "
         "00:00:00\nINDEX 01 00:01:00\n",
         {300 * sector, 310 * sector},
         {{0, 375}, {375, 235}},
         610},
        {"a file that ends within a sector",
         "FILE a WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nFILE b WAVE\nTRACK 02 AUDIO\nINDEX 01 00:00:00\n",
         {300 * sector + 4, 310 * sector - 4},
         {{0, 301}, {301, 310}},
         611},
        {"indexes within a track",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nINDEX 02 00:01:00\nINDEX 03 00:02:00\n",
         {300 * sector},
         {{0, 300}},
         300},
        {"a missing file",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n" + track2At4s,
         {0},
         {{0, 300}, {300, 0}},
         300},
        {"a file that ends before its last track",
         "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n" + track2At4s,
         {100 * sector},
         {{0, 300}, {300, 0}},
         300},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const auto layout = layoutOf(c.sheet, c.bytes);
        REQUIRE(layout.has_value());
        CHECK(tracksOf(*layout) == c.tracks);
        CHECK(layout->contents.leadOut == c.leadOut);
        checkWhole(*layout);
    }
}

TEST_CASE("Sectors of several sizes in one file are found by their bytes")
{
    const auto layout =
        layoutOf("FILE a BINARY\nTRACK 01 MODE1/2048\nINDEX 01 00:00:00\nTRACK 02 MODE2/2336\nINDEX 01 "
                 "00:04:00\nTRACK 03 AUDIO\nINDEX 00 00:08:00\nINDEX 01 00:10:00\n",
                 {300 * 2048 + 300 * 2336 + 400 * 2352});
    REQUIRE(layout.has_value());
    CHECK(tracksOf(*layout) == Tracks{{0, 300}, {300, 450}, {750, 250}});
    CHECK_FALSE(layout->contents.tracks[0].isAudio);
    CHECK_FALSE(layout->contents.tracks[1].isAudio);
    CHECK(layout->contents.tracks[2].isAudio);
    REQUIRE(layout->extents.size() == 4);
    CHECK(layout->extents[1].offset == 300 * 2048);
    CHECK(layout->extents[2].offset == 300 * 2048 + 300 * 2336);
    CHECK(layout->extents[3].offset == 300 * 2048 + 300 * 2336 + 150 * 2352);
    CHECK(layout->extents[3].isAudio);
    checkWhole(*layout);
}

TEST_CASE("Silence that is in no file is laid between the files' sectors")
{
    const auto layout =
        layoutOf("FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nPOSTGAP 00:00:10\nTRACK 02 AUDIO\nPREGAP "
                 "00:00:20\nINDEX 00 00:02:00\nINDEX 01 00:04:00\n",
                 {700 * sector});
    REQUIRE(layout.has_value());
    const std::vector<disc::SectorExtent> extents = {
        {0, 150, 0, 0, 2352, true},
        {150, 10},
        {160, 20},
        {180, 150, 0, 150 * sector, 2352, true},
        {330, 400, 0, 300 * sector, 2352, true},
    };
    CHECK(layout->extents == extents);
    CHECK(tracksOf(*layout) == Tracks{{0, 330}, {330, 400}});
}

TEST_CASE("What no disc can hold is no disc")
{
    const Text oneTrack = "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n";
    const struct {
        const char* what;
        Text sheet;
        std::int64_t bytes;
        bool fits;
    } cases[] = {
        {"as long as a disc can be", oneTrack, disc::mostSectors * sector, true},
        {"one byte longer", oneTrack, disc::mostSectors * sector + 1, false},
        {"the longest file that there is", oneTrack, INT64_MAX, false},
        {"a silence too long", "FILE a BINARY\nTRACK 01 AUDIO\nPREGAP 999:00:00\nINDEX 01 00:00:00\n", sector,
         false},
        {"an index too far", "FILE a BINARY\nTRACK 01 AUDIO\nINDEX 01 999:00:00\n", sector, false},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        CHECK(layoutOf(c.sheet, {c.bytes}).has_value() == c.fits);
    }
}

TEST_CASE("A track stands at its number, and numbers that the sheet leaves out are empty")
{
    const auto layout = layoutOf("FILE a BINARY\nTRACK 04 AUDIO\nINDEX 01 00:00:00\n"
                                 "TRACK 06 AUDIO\nINDEX 01 00:04:00\n",
                                 {700 * sector});
    REQUIRE(layout.has_value());
    CHECK(tracksOf(*layout) == Tracks{{0, 0}, {0, 0}, {0, 0}, {0, 300}, {300, 0}, {300, 400}});
    for (const std::size_t row : {0, 1, 2, 4}) {
        CAPTURE(row);
        CHECK(layout->contents.tracks[row].isMissing);
        CHECK_FALSE(layout->contents.tracks[row].isAudio);
    }
    CHECK_FALSE(layout->contents.tracks[3].isMissing);
    checkWhole(*layout);
}
