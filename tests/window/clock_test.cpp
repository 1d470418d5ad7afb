// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"

#include <doctest/doctest.h>

namespace
{

struct Tick {
    Text what;
    std::int32_t position;
    std::int32_t length;
    Text shown;
    std::int32_t bar;
};

struct Frames {
    Text what;
    float duration;
    std::int16_t frame;
    Text elapsed;
    Text shown;
};

const Text mainPlace = "Position StartUp Window";
const Text listPlace = "Position PlayList Editor";

}

TEST_CASE("The clock shows the time and the share that have passed")
{
    const Tick ticks[] = {
        {"the beginning", 0, 10000, "0:00", 0},
        {"a second short of a minute", 59999, 600000, "0:59", 10},
        {"a minute", 60000, 600000, "1:00", 10},
        {"9.95 of 10 seconds", 9950, 10000, "0:09", 0},
        {"9.94 of 10 seconds", 9940, 10000, "0:09", 99},
        {"2.5 per cent", 25, 1000, "0:00", 2},
        {"3.5 per cent", 35, 1000, "0:00", 4},
        {"a position without a length", 5000, 0, "0:05", 0},
        {"past an hour", 3661000, 7200000, "61:01", 51},
        {"the end", 10000, 10000, "0:10", 0},
    };
    for (const auto& c : ticks) {
        CAPTURE(c.what);
        Player p;
        p.current("/m/b.wav", kind::wav);
        p.wav().position = c.position;
        p.wav().length = c.length;
        p.window.pbar.setValue(77);
        p.window.Timer_Timer();
        CHECK(p.window.Label1.Caption() == c.shown);
        CHECK(p.window.pbar.Value() == c.bar);
        CHECK(p.window.elapsed_ms == textOf(c.position));
        CHECK(p.window.total_ms == textOf(c.length));
        CHECK(p.window.elapsed_min + ":" + p.window.elapsed_sec == c.shown);
    }
}

TEST_CASE("An MP3 position is a product of single numbers, and so is its text")
{
    const Frames cases[] = {
        {"the beginning", 26.122F, 0, "0", "0:00"},
        {"one frame", 26.122448F, 1, "26.122448", "0:00"},
        {"a product that is not that of double numbers", 26.122448F, 2297, "60003.26", "1:00"},
        {"the highest frame", 26.122448F, 32767, "855954.25", "14:15"},
        {"half a millisecond goes to the even neighbour above", 999.5F, 1, "999.5", "0:01"},
        {"half a millisecond goes to the even neighbour below", 1000.5F, 2, "2001", "0:02"},
        {"half a millisecond before a minute", 59999.5F, 1, "59999.5", "1:00"},
        {"less than half a millisecond before a minute", 59999.4F, 1, "59999.4", "0:59"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Player p;
        p.current("/m/a.mp3", kind::mp3);
        p.mp3().frameDuration = c.duration;
        p.mp3().currentFrame = c.frame;
        p.mp3().length = 1'000'000;
        p.window.Timer_Timer();
        CHECK(p.window.elapsed_ms == c.elapsed);
        CHECK(p.window.Label1.Caption() == c.shown);
    }
}

TEST_CASE("Whatever is not WAV is asked of the MP3 engine, also before the first file")
{
    for (const std::int16_t fileKind : {0, 2, 3, -1}) {
        CAPTURE(fileKind);
        Player p;
        p.dialog().filterIndex = fileKind;
        p.mp3().frameDuration = 1000;
        p.mp3().currentFrame = 7;
        p.mp3().length = 14000;
        p.wav().position = 3000;
        p.wav().length = 4000;
        p.window.Timer_Timer();
        CHECK(p.window.Label1.Caption() == "0:07");
        CHECK(p.window.pbar.Value() == 50);
    }
}

TEST_CASE("The label shows 0:00 for any text of nought")
{
    Player p;
    p.mp3().frameDuration = 0;
    p.mp3().currentFrame = 12;
    p.window.Label1.setCaption("9:99");
    p.window.Timer_Timer();
    CHECK(p.window.Label1.Caption() == "0:00");
    CHECK(p.window.elapsed_sec == "00");
}

TEST_CASE("Each tick saves the window's place and whether the list shows, changed or not")
{
    Player p;
    p.window.setLeft(1500);
    p.window.setTop(-30);
    const Text saved = "Store.Position StartUp Window/Left = 1500\n"
                       "Store.Position StartUp Window/Top = -30\n"
                       "Store.Position PlayList Editor/SHOWN = NO\n";
    p.window.Timer_Timer();
    CHECK(p.calls() == saved);
    p.window.Timer_Timer();
    CHECK(p.calls() == saved);
}

TEST_CASE("A list that shows is docked and saved between the window's place and SHOWN")
{
    Player p;
    p.window.setLeft(1500);
    p.window.setTop(1500);
    p.list().Show();
    p.list().setLeft(30000);
    p.list().setTop(30000);
    p.calls();
    p.window.Timer_Timer();
    CHECK(p.calls() == "Store.Position StartUp Window/Left = 1500\n"
                       "Store.Position StartUp Window/Top = 1500\n"
                       "Store.Position PlayList Editor/Left = 30000\n"
                       "Store.Position PlayList Editor/Top = 30000\n"
                       "Store.Position PlayList Editor/POS = \n"
                       "Store.Position PlayList Editor/SHOWN = YES\n");
}

TEST_CASE("While the window is minimised its place stands and SHOWN goes on being written")
{
    Player p;
    p.window.setLeft(1500);
    p.window.setTop(1500);
    p.window.Timer_Timer();
    p.window.setWindowState(Form::minimized);
    p.window.setLeft(-480000);
    p.window.setTop(-480000);
    p.calls();
    p.window.Timer_Timer();
    CHECK(p.calls() == "Store.Position PlayList Editor/SHOWN = NO\n");
    CHECK(p.stored(mainPlace, "Left") == "1500");
    CHECK(p.stored(mainPlace, "Top") == "1500");
    p.list().Show();
    p.calls();
    p.window.Timer_Timer();
    CHECK(p.calls().find("Position StartUp Window") == Text::npos);
    CHECK(p.stored(listPlace, "SHOWN") == "YES");
}

TEST_CASE("A list that hides leaves its place as it was and is no longer shown")
{
    Player p;
    p.list().Show();
    p.window.Timer_Timer();
    p.list().Hide();
    p.calls();
    p.window.Timer_Timer();
    CHECK(p.calls().find("Position PlayList Editor/Left") == Text::npos);
    CHECK(p.stored(listPlace, "SHOWN") == "NO");
}

TEST_CASE("The clock moves no thumb and commands no engine, also at the end of a file")
{
    Player p;
    p.current("/m/b.wav", kind::wav);
    p.window.Image3.setEnabled(true);
    p.wav().position = p.wav().length = 10000;
    const Twips thumb = p.window.posbar_img2.Left();
    p.window.Timer_Timer();
    CHECK(p.platform.log.of("Mp3Player").empty());
    CHECK(p.platform.log.of("MMControl1").empty());
    CHECK(p.window.posbar_img2.Left() == thumb);
    CHECK(p.window.Image3.Enabled());
    CHECK(p.window.paused_flag == 0);
    CHECK(p.list().labtemp1.Caption() == "0");
    CHECK(p.window.Timer.Enabled());
}

TEST_CASE("A tick may find an engine in the middle of being opened again; the next one corrects it")
{
    Player p;
    p.current("/m/a.mp3", kind::mp3);
    p.mp3().frameDuration = 1000;
    p.mp3().length = 10000;
    p.mp3().openResults = {1};
    p.platform.scriptedPump.steps = {[&] {
        p.mp3().length = 0;
        p.mp3().currentFrame = 0;
        p.window.Timer_Timer();
        CHECK(p.window.Label1.Caption() == "0:00");
        CHECK(p.window.pbar.Value() == 0);
    }};
    p.window.playfunction1();
    p.mp3().length = 10000;
    p.mp3().currentFrame = 5;
    p.window.Timer_Timer();
    CHECK(p.window.Label1.Caption() == "0:05");
    CHECK(p.window.pbar.Value() == 50);
}

TEST_CASE("The timer raises the clock, and is on from the start")
{
    Player p;
    CHECK(p.window.Timer.Enabled());
    p.window.Timer.Timer.raise();
    CHECK(p.platform.log.count("Store.Position PlayList Editor/SHOWN = NO") == 1);
}
