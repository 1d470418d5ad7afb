// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"
#include "support/pointer.h"

#include <doctest/doctest.h>

namespace
{

constexpr auto left = ctl::Button::left;
constexpr Twips travel = 1215;

const Text song = "/m/a.mp3";
const Text opened = "Mp3Player.Open(/app/conf.mp3)\n";
const Text closed = "Mp3Player.Close\n";

Text setVolume(std::int32_t l, std::int32_t r)
{
    return "Mp3Player.SetVolume(" + textOf(l) + ", " + textOf(r) + ")\n";
}

// A player with known numbers, its thumbs at their places in the design.
struct Bars : Player {
    Bars()
    {
        window.volslider.setValue(50);
        window.balslider.setValue(0);
        window.vslider_img2.setLeft(960);
        window.balbar_img2.setLeft(960);
    }

    void dropOnVolume(Twips X) { window.vslider_bg.DragDrop.raise(window.vslider_img2, X, 0); }
    void dropOnBalance(Twips X) { window.balbar_bg.DragDrop.raise(window.balbar_img2, X, 0); }
    void pressVolume(Twips X) { window.vslider_bg.MouseDown.raise(left, 0, X, 0); }
    void pressBalance(Twips X) { window.balbar_bg.MouseDown.raise(left, 0, X, 0); }
};

struct Drop {
    Text where;
    Twips X;
    std::int32_t value;
};

struct Press {
    Text where;
    Twips thumb; // its place before
    Twips X;     // of the track
    Twips stands;
    bool calls;
};

}

TEST_CASE("A drop on the volume track takes thumb and number there and tells the engine")
{
    const Drop drops[] = {
        {"the left end", 0, 0},
        {"the middle", travel / 2, 50},
        {"the right end", travel, 100},
        {"a quarter", 303.75F, 25},
        {"a pixel", 15, 1},
    };
    for (const auto& c : drops) {
        CAPTURE(c.where);
        Bars p;
        p.dropOnVolume(c.X);
        CHECK(p.window.volslider.Value() == c.value);
        CHECK(p.window.vslider_img2.Left() == 360 + c.X);
        CHECK(p.window.vslider_img2.ToolTipText() == "Volume: " + textOf(c.value) + "%");
        CHECK(p.calls() == opened + setVolume(c.value, c.value) + closed);
    }
}

TEST_CASE("A drop past the travel of the volume track does nothing at all")
{
    for (const Twips X : {std::nextafter(travel, 2000.0F), 1216.0F, 1319.0F}) {
        Bars p;
        p.window.vslider_img2.setToolTipText("as it was");
        p.dropOnVolume(X);
        CHECK(p.calls().empty());
        CHECK(p.window.volslider.Value() == 50);
        CHECK(p.window.vslider_img2.Left() == 960);
        CHECK(p.window.vslider_img2.ToolTipText() == "as it was");
    }
}

TEST_CASE("A drop on the balance track takes thumb and number there and tells the engine")
{
    const Drop drops[] = {
        {"the left end", 0, -100},
        {"the middle", travel / 2, 0},
        {"the right end", travel, 100},
        {"a quarter", 303.75F, -50},
    };
    for (const auto& c : drops) {
        CAPTURE(c.where);
        Bars p;
        p.dropOnBalance(c.X);
        CHECK(p.window.balslider.Value() == c.value);
        CHECK(p.window.balbar_img2.Left() == 360 + c.X);
        CHECK(p.calls() == opened + setVolume(50 - std::max(c.value, 0), 50 + std::min(c.value, 0)) + closed);
    }
}

TEST_CASE("A drop past the travel of the balance track changes nothing to see and still calls the engine")
{
    for (const Twips X : {std::nextafter(travel, 2000.0F), 1216.0F, 1319.0F}) {
        Bars p;
        p.window.balslider.setValue(-20);
        p.dropOnBalance(X);
        CHECK(p.calls() == opened + setVolume(50, 30) + closed);
        CHECK(p.window.balslider.Value() == -20);
        CHECK(p.window.balbar_img2.Left() == 960);
    }
}

TEST_CASE("The bars reckon with the controls as they stand, not with the design's figures")
{
    Bars p;
    p.window.vslider_bg.setLeft(400);
    p.window.balbar_bg.setLeft(300);
    p.dropOnVolume(100);
    CHECK(p.window.vslider_img2.Left() == 500);
    p.dropOnBalance(100);
    CHECK(p.window.balbar_img2.Left() == 400);
}

TEST_CASE("Whichever thumb is dropped on a track moves the track's own")
{
    Bars p;
    p.window.balbar_bg.DragDrop.raise(p.window.vslider_img2, 0, 12345);
    CHECK(p.window.balslider.Value() == -100);
    CHECK(p.window.balbar_img2.Left() == 360);
    CHECK(p.window.vslider_img2.Left() == 960);
    CHECK(p.window.volslider.Value() == 50);
    p.window.vslider_bg.DragDrop.raise(p.window.posbar_img2, travel, -9);
    CHECK(p.window.volslider.Value() == 100);
}

TEST_CASE("A press on a track steps the thumb 20 twips towards itself")
{
    // The track's left end is at 360; the thumb is 105 wide.
    const Press presses[] = {
        {"exactly 20 twips right of the thumb", 960, 725, 980, true},
        {"nearer than that", 960, 724, 960, false},
        {"on the thumb", 960, 640, 960, false},
        {"exactly 20 twips left of the thumb", 960, 580, 940, true},
        {"nearer than that", 960, 581, 960, false},
        {"the right end, once more", 1575, 1319, 1575, false},
        {"the right end, past the track: no step, and the engine is called", 1575, 1340, 1575, true},
        {"the last place from which the track's end steps", 1554, 1319, 1574, true},
        {"a twip further", 1555, 1319, 1555, false},
        {"past the track, 20 twips before the right end", 1555, 1320, 1575, true},
        {"past the track, a twip too far for another step", 1556, 1400, 1556, true},
        {"the left end of the track", 380, 0, 360, true},
        {"less than a step from the left end", 379, 0, 379, false},
    };
    for (const auto& c : presses) {
        CAPTURE(c.where);
        Bars p;
        p.window.vslider_img2.setLeft(c.thumb);
        p.window.balbar_img2.setLeft(c.thumb);
        p.pressVolume(c.X);
        CHECK(p.window.vslider_img2.Left() == c.stands);
        CHECK(p.calls().empty() == !c.calls);
        p.pressBalance(c.X);
        CHECK(p.window.balbar_img2.Left() == c.stands);
        CHECK(p.calls().empty() == !c.calls);
    }
}

TEST_CASE("A step is 20 twips, whole pixels or not, and the number follows it")
{
    Bars p;
    for (const Twips stands : {980, 1000, 1020, 1040}) {
        p.pressVolume(1300);
        CHECK(p.window.vslider_img2.Left() == stands);
    }
    CHECK(p.window.volslider.Value() == 56); // 680 of 1215
    CHECK(p.window.slider_step == 20);
    p.pressBalance(0);
    CHECK(p.window.balbar_img2.Left() == 940);
    CHECK(p.window.balslider.Value() == -5); // 580 of 1215, seen from the middle
    CHECK(p.window.slider_step == -20);
}

TEST_CASE("A press with the thumb at the right end moves nothing, and the engine is still called")
{
    Bars p;
    p.window.vslider_img2.setLeft(1560);
    p.window.volslider.setValue(99);
    p.window.vslider_img2.setToolTipText("");
    p.pressVolume(1400);
    CHECK(p.window.vslider_img2.Left() == 1560);
    CHECK(p.window.volslider.Value() == 99);
    CHECK(p.calls() == opened + setVolume(99, 99) + closed);
    CHECK(p.window.vslider_img2.ToolTipText() == "Volume: 99%");
    p.window.balbar_img2.setLeft(1560);
    p.window.balslider.setValue(90);
    p.pressBalance(1400);
    CHECK(p.window.balslider.Value() == 90);
    CHECK(p.calls() == opened + setVolume(9, 99) + closed);
}

TEST_CASE("A press beside nothing leaves the last step as it was")
{
    Bars p;
    p.pressVolume(1300);
    p.pressVolume(640);
    CHECK(p.window.slider_step == 20);
    p.pressBalance(640);
    CHECK(p.window.slider_step == 20);
}

TEST_CASE("Every button steps")
{
    for (const auto button : {ctl::Button::left, ctl::Button::right, ctl::Button::middle}) {
        Bars p;
        p.window.vslider_bg.MouseDown.raise(button, 0, 0, 0);
        CHECK(p.window.vslider_img2.Left() == 940);
    }
}

TEST_CASE("The balance lowers one channel; a volume gesture sets both alike and leaves the thumb")
{
    Bars p;
    p.window.volslider.setValue(80);
    p.window.balslider.setValue(-30);
    p.window.balslider_Scroll();
    CHECK(p.calls() == opened + setVolume(80, 50) + closed);
    p.window.vslider_img2.setLeft(960);
    p.pressVolume(0);
    CHECK(p.calls() == opened + setVolume(48, 48) + closed);
    CHECK(p.window.balslider.Value() == -30);
    CHECK(p.window.balbar_img2.Left() == 960);
    p.window.balslider_Scroll();
    CHECK(p.calls() == opened + setVolume(48, 18) + closed);
}

TEST_CASE("A step on the volume bar leaves the balance thumb off centre")
{
    Bars p;
    p.dropOnVolume(972);
    p.dropOnBalance(425.25F);
    CHECK(p.calls().ends_with(opened + setVolume(80, 50) + closed));
    p.pressVolume(0);
    CHECK(p.calls() == opened + setVolume(78, 78) + closed);
    CHECK(p.window.balslider.Value() == -30);
    CHECK(p.window.balbar_img2.Left() == 785.25F);
}

TEST_CASE("A negative level goes to the engine as it stands")
{
    Bars p;
    p.window.volslider.setValue(20);
    p.window.balslider.setValue(-50);
    p.window.balslider_Scroll();
    CHECK(p.calls() == opened + setVolume(20, -30) + closed);
    p.window.balslider.setValue(50);
    p.window.balslider_Scroll();
    CHECK(p.calls() == opened + setVolume(-30, 20) + closed);
}

TEST_CASE("Each gesture opens conf.mp3 for its call alone, unless an MP3 file is current")
{
    struct Row {
        Text what;
        Text file;
        std::int16_t fileKind;
        bool opens;
    };
    const Row rows[] = {
        {"no file, no kind", "", 0, true},
        {"no file, though the kind is MP3", "", kind::mp3, true},
        {"a WAV file", "/m/b.wav", kind::wav, true},
        {"an MP3 file", song, kind::mp3, false},
        {"a file of no kind counts as MP3 here", song, 0, false},
        {"a file of a third kind, too", song, 3, false},
    };
    const std::function<void(Bars&)> gestures[] = {
        [](Bars& p) { p.dropOnVolume(travel / 2); },
        [](Bars& p) { p.dropOnBalance(travel / 2); },
        [](Bars& p) { p.window.volslider.Scroll.raise(); },
        [](Bars& p) { p.window.balslider.Scroll.raise(); },
        [](Bars& p) { p.window.re_set_volume(); },
    };
    for (const auto& c : rows)
        for (const auto& gesture : gestures) {
            CAPTURE(c.what);
            Bars p;
            p.current(c.file, c.fileKind);
            gesture(p);
            CHECK(p.calls() == (c.opens ? opened + setVolume(50, 50) + closed : setVolume(50, 50)));
        }
}

TEST_CASE("After Stop the MP3 file stands open for the levels, also without conf.mp3; a WAV file does not")
{
    for (const auto fileKind : {kind::mp3, kind::wav}) {
        CAPTURE(fileKind);
        Bars p;
        p.current(song, fileKind);
        p.window.Image1_Click();
        p.window.Image2_Click();
        CHECK(p.mp3().isOpen == (fileKind == kind::mp3));
        p.calls();
        p.mp3().openResults.assign(10, 1); // conf.mp3 is gone
        if (fileKind == kind::mp3)
            p.dropOnVolume(0);
        else
            CHECK_THROWS_AS(p.dropOnVolume(0), StillWaiting);
        CHECK(p.calls() == (fileKind == kind::mp3 ? setVolume(0, 0) : opened + "Pump.turn\n"));
    }
}

TEST_CASE("Whether conf.mp3 is closed again is asked anew after the call")
{
    Bars p;
    p.mp3().openResults = {1};
    p.platform.scriptedPump.steps = {[&] { p.current(song, kind::mp3); }};
    p.window.re_set_volume();
    CHECK(p.calls() == opened + "Pump.turn\n" + opened + setVolume(50, 50));

    p.current(song, kind::mp3);
    p.platform.log.onCall = [&](const Text& call) {
        if (call.starts_with("Mp3Player.SetVolume"))
            p.current("", 0);
    };
    p.window.re_set_volume();
    CHECK(p.calls() == setVolume(50, 50) + closed);
}

TEST_CASE("A gesture on a missing conf.mp3 waits without an end, and the number set meanwhile counts")
{
    Bars p;
    p.mp3().openResults.assign(10, 1);
    int turns = 0;
    p.platform.scriptedPump.steps.assign(4, [&] {
        ++turns;
        p.window.vslider_tim1_Timer();
    });
    CHECK_THROWS_AS(p.dropOnVolume(0), StillWaiting);
    CHECK(turns == 4);
    CHECK(p.platform.log.count("Mp3Player.Open(/app/conf.mp3)") == 5);
    CHECK(p.platform.log.count("Mp3Player.Close") == 0);
    CHECK(p.window.vslider_img2.ToolTipText() == "Volume: 0%");

    Bars q;
    q.mp3().openResults = {1};
    q.platform.scriptedPump.steps = {[&] { q.window.volslider.setValue(7); }};
    q.dropOnVolume(0);
    CHECK(q.calls().find(setVolume(7, 7)) != Text::npos);
}

TEST_CASE("A second gesture can run inside the wait of the first")
{
    Bars p;
    p.mp3().openResults = {1};
    p.platform.scriptedPump.steps = {[&] { p.pressVolume(0); }};
    p.pressVolume(1300);
    CHECK(p.calls() ==
          opened + "Pump.turn\n" + opened + setVolume(49, 49) + closed + opened + setVolume(49, 49) + closed);
    CHECK(p.window.slider_step == -20);
}

TEST_CASE("Only the volume's tool tip carries a percent sign")
{
    Bars p;
    p.window.balslider.setValue(-20);
    p.window.vslider_tim1.Timer.raise();
    p.window.balbar_tim1.Timer.raise();
    CHECK(p.window.vslider_img2.ToolTipText() == "Volume: 50%");
    CHECK(p.window.balbar_img2.ToolTipText() == "Balance: -20");
    p.window.balslider.setValue(100);
    p.window.volslider.setValue(0);
    p.window.vslider_tim1.Timer.raise();
    p.window.balbar_tim1.Timer.raise();
    CHECK(p.window.vslider_img2.ToolTipText() == "Volume: 0%");
    CHECK(p.window.balbar_img2.ToolTipText() == "Balance: 100");
    CHECK(p.calls().empty());
}

TEST_CASE("A tick writes over whatever a tool tip was")
{
    Bars p;
    for (const Text old : {"", "Volume", "Volume: 51%"}) {
        p.window.vslider_img2.setToolTipText(old);
        p.window.vslider_tim1_Timer();
        CHECK(p.window.vslider_img2.ToolTipText() == "Volume: 50%");
    }
}

TEST_CASE("The hidden sliders' own movement sends levels and no tool tip")
{
    Bars p;
    p.window.vslider_img2.setToolTipText("as it was");
    p.window.volslider.setValue(33);
    CHECK(p.calls().empty());
    p.window.volslider_Scroll();
    CHECK(p.calls() == opened + setVolume(33, 33) + closed);
    CHECK(p.window.vslider_img2.ToolTipText() == "as it was");
}

TEST_CASE("A number out of a slider's range fails and changes nothing")
{
    Bars p;
    for (const std::int32_t value : {-1, 101}) {
        CHECK_FALSE(succeeds([&] { p.window.volslider.setValue(value); }));
        CHECK(p.window.volslider.Value() == 50);
    }
    CHECK(succeeds([&] { p.window.balslider.setValue(-100); }));
    CHECK_FALSE(succeeds([&] { p.window.balslider.setValue(-101); }));
    CHECK(p.window.balslider.Value() == -100);
}

TEST_CASE("The timers tick from the start; the thumbs move by gestures alone")
{
    Bars p;
    CHECK(p.window.vslider_tim1.Enabled());
    CHECK(p.window.balbar_tim1.Enabled());
    p.window.volslider.setValue(90);
    p.window.balslider.setValue(90);
    p.window.vslider_tim1_Timer();
    p.window.balbar_tim1_Timer();
    CHECK(p.window.vslider_img2.Left() == 960);
    CHECK(p.window.balbar_img2.Left() == 960);
}

TEST_CASE("A new file starts without its levels being set anew")
{
    Bars p;
    p.current(song, kind::mp3);
    p.window.Image1_Click();
    p.window.playfunction1();
    CHECK(p.calls().find("SetVolume") == Text::npos);
}

TEST_CASE("With the pointer: a press steps, a drag drops")
{
    Bars p;
    p.current(song, kind::mp3);
    p.window.Show();
    Pointer pointer(p.window);
    pointer.to({30, 131}).press().release();
    CHECK(p.window.vslider_img2.Left() == 940);
    CHECK(p.calls().ends_with(setVolume(48, 48)));
    pointer.to(p.window.vslider_img2).press().to({24, 131}).release();
    CHECK(p.window.volslider.Value() == 0);
    CHECK(p.window.vslider_img2.Left() == 360);
    CHECK(p.calls() == setVolume(0, 0));
    pointer.to(p.window.balbar_img2).press().to({105, 150}).release();
    CHECK(p.window.balslider.Value() == 100);
    CHECK(p.calls() == setVolume(-100, 0));
    pointer.to(p.window.balbar_img2).press().to({111, 150}).release();
    CHECK(p.window.balslider.Value() == 100);
    CHECK(p.calls().empty());
    pointer.to(p.window.balbar_img2).press().to({108, 131}).release();
    CHECK(p.calls().empty());
}
