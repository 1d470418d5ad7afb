// SPDX-License-Identifier: GPL-3.0-or-later
#include "playlist/playlist_format.h"

#include <doctest/doctest.h>
#include <limits>

TEST_CASE("The line for other players counts whole seconds, less one")
{
    struct Case {
        std::int32_t milliseconds;
        Text artist, title, line;
    };
    const Case cases[] = {
        {185999, "Artist", "Title", "#EXTINF:184,Artist - Title"},
        {186000, "Artist", "Title", "#EXTINF:185,Artist - Title"},
        {1000, "", "", "#EXTINF:0, - "},
        {999, "", "", "#EXTINF:-1, - "},
        {0, "A", "", "#EXTINF:-1,A - "},
        {-1, "", "T", "#EXTINF:-1, - T"},
        {std::numeric_limits<std::int32_t>::max(), "", "", "#EXTINF:2147482, - "},
        {2000, " blank ", "  T ", "#EXTINF:1, blank  -   T "},
        {2000, "a - b", "c, d", "#EXTINF:1,a - b - c, d"},
        {2000, "caf\xE9", "\xFF", "#EXTINF:1,caf\xE9 - \xFF"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.milliseconds);
        CAPTURE(c.artist);
        CHECK(m3uInformationLine(c.milliseconds, c.artist, c.title) == c.line);
    }
}

TEST_CASE("Three letters at the end of a name make it an M3U list, with or without a point, in any case")
{
    for (const Text name : {"/a.m3u", "/a.M3U", "/a.m3U", "am3u", "m3u", ".m3u", "/m3u", "/caf\xE9m3u"}) {
        CAPTURE(name);
        CHECK(isM3uName(name));
    }
    for (const Text name : {"", "3u", "/a.m3u8", "/a.m3u ", "/a.m3", "/a.vlp", "/m3u/a", "/a.m\xC2\xB3u"}) {
        CAPTURE(name);
        CHECK_FALSE(isM3uName(name));
    }
}

TEST_CASE("A name gets its filter's letters unless it ends in them")
{
    struct Case {
        std::int16_t filter;
        Text typed, saved;
    };
    const Case cases[] = {
        {1, "/a", "/a.vlp"},
        {1, "/a.vlp", "/a.vlp"},
        {1, "/a.VlP", "/a.VlP"},
        {1, "/avlp", "/avlp"},
        {1, "/a.vlpx", "/a.vlpx.vlp"},
        {1, "/a.m3u", "/a.m3u.vlp"},
        {1, "vlp", "vlp"},
        {1, "lp", "lp.vlp"},
        {1, "", ".vlp"},
        {2, "/a", "/a.m3u"},
        {2, "/a.M3U", "/a.M3U"},
        {2, "/am3u", "/am3u"},
        {2, "/a.vlp", "/a.vlp.m3u"},
        {2, "/a.m3u8", "/a.m3u8.m3u"},
        {2, "", ".m3u"},
        {3, "/a", "/a"},
        {3, "/a.m3u", "/a.m3u"},
        {3, "", ""},
        {0, "/a", "/a"},
        {4, "/a", "/a"},
        {-1, "/a", "/a"},
        {1, "/caf\xE9", "/caf\xE9.vlp"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.filter);
        CAPTURE(c.typed);
        CHECK(listFileName(c.typed, c.filter) == c.saved);
    }
}
