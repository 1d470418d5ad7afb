// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/list_program.h"

#include <doctest/doctest.h>

namespace
{

constexpr const char* file = "/app/vlmset.ini";

Text& stored(ListProgram& start, const Text& key) { return start.setting(key); }

Text read(ListProgram& start, const Text& key, const Text& fallback)
{
    return start.player.GetFromINI("Playlist Editor", key, fallback, file);
}

}

TEST_CASE("A value comes back as this table says, and a missing one plants its default")
{
    struct Case {
        Text what;
        std::optional<Text> before;
        Text fallback, result;
        std::optional<Text> after;
    };
    const Case cases[] = {
        {"a value", "/list.vlp", "", "/list.vlp", "/list.vlp"},
        {"a value wins over a default", "2", "1", "2", "2"},
        {"a missing key", {}, "1", "1", "1"},
        {"a missing key without a default", {}, "", "", {}},
        {"an empty value", "", "1", "1", "1"},
        {"an empty value without a default", "", "", "", ""},
        {"254 characters", Text(254, 'x'), "", Text(254, 'x'), Text(254, 'x')},
        {"255 characters", Text(255, 'x'), "", Text(254, 'x'), Text(255, 'x')},
        {"300 characters", Text(300, 'x'), "1", Text(254, 'x'), Text(300, 'x')},
        {"a long default", {}, Text(300, 'x'), Text(300, 'x'), Text(300, 'x')},
        {"bytes that are no text", "/caf\xE9.vlp", "", "/caf\xE9.vlp", "/caf\xE9.vlp"},
        {"what follows a NUL", Text("ab\0cd", 5), "1", "ab", Text("ab\0cd", 5)},
        {"a NUL first", Text("\0cd", 3), "1", "", Text("\0cd", 3)},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        ListProgram start;
        if (c.before)
            stored(start, "Key") = *c.before;
        CHECK(read(start, "Key", c.fallback) == c.result);
        CHECK(start.platform.profile.values.size() == (c.after ? 1 : 0));
        if (c.after)
            CHECK(stored(start, "Key") == *c.after);
    }
}

TEST_CASE("The reader is never handed the default: planting it is the program's own doing")
{
    ListProgram start;
    read(start, "Key", "1");
    CHECK(start.platform.log.all() == std::vector<Text>{"Profile.read Key", "Profile.write Key = 1"});
    read(start, "Key", "1");
    CHECK(start.platform.log.count("Profile.write Key = 1") == 1);
}

TEST_CASE("A list whose path is longer than a value can be does not come back at the next start")
{
    ListProgram start;
    const Text path = "/" + Text(260, 'x') + ".vlp";
    start.file(path) = "/a.mp3\r\n";
    start.willChoose({path});
    start.list.GoDoOpen();
    start.list.Timer1_Timer();
    const auto next = ListProgram::after(start);
    CHECK(next.rows().empty());
    CHECK(next.list.PlayListFileName.Text() == path.substr(0, 254));
}
