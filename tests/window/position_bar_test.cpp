// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/player.h"
#include "support/pointer.h"

#include <QApplication>
#include <QKeyEvent>
#include <doctest/doctest.h>

namespace
{

constexpr auto left = ctl::Button::left;
constexpr Twips travel = 4020;

const Text song = "/m/a.mp3";
const Text wave = "/m/b.wav";
const Text reopened = "MMControl1.Close\nMMControl1.FileName = /m/b.wav\nMMControl1.Open\n";

struct Bar : Player {
    Bar()
    {
        mp3().frameDuration = 26.122F;
        mp3().length = 180000;
        wav().length = 180000;
    }

    void drop(Twips X) { window.posbar_bg.DragDrop.raise(window.posbar_img2, X, 0); }
};

struct Drop {
    Text where;
    Twips X;
    std::int32_t value;
    std::int32_t from; // milliseconds of 180000; 0: none set
};

struct Seek {
    Text what;
    std::int32_t value;
    std::int32_t length;
    float frameDuration;
    std::int32_t frame;
};

}

TEST_CASE(
    "The groove is lit as far as the file has played, and from the middle as far as the balance is moved")
{
    Bar p;
    p.window.Show();
    const auto isLit = [&](const char* track, int percent) {
        auto* groove = p.window.page()->findChild<QWidget*>(track);
        const QColor seen = groove->grab().toImage().pixelColor(groove->width() * percent / 100, 2);
        return seen.value() > 100;
    };
    p.window.posbar_tim1.Timer.raise();
    CHECK_FALSE(isLit("posbar_bg", 4));
    p.window.pbar.setValue(50);
    p.window.posbar_tim1.Timer.raise();
    CHECK(isLit("posbar_bg", 4));
    CHECK(isLit("posbar_bg", 46));
    CHECK_FALSE(isLit("posbar_bg", 54));
    p.window.balslider.moveByUser(p.window.balslider.Min() / 2);
    CHECK(isLit("balbar_bg", 40));
    CHECK_FALSE(isLit("balbar_bg", 60));
    CHECK_FALSE(isLit("balbar_bg", 15));
}

TEST_CASE("On each tick the thumb stands at its share of the track")
{
    struct Row {
        std::int32_t value;
        Twips stands;
    };
    for (const Row& row :
         {Row{0, 1920}, Row{1, 1960.2F}, Row{50, 3930}, Row{99, 5899.8F}, Row{100, 5940}, Row{33, 3246.6F}}) {
        CAPTURE(row.value);
        Bar p;
        p.window.pbar.setValue(row.value);
        p.window.posbar_tim1.Timer.raise();
        CHECK(p.window.posbar_img2.Left() == row.stands);
        CHECK(p.calls().empty());
    }
}

TEST_CASE("The thumb reckons with the controls as they stand")
{
    Bar p;
    p.window.pbar.setValue(100);
    p.window.posbar_bg.setLeft(1000);
    p.window.posbar_tim1_Timer();
    CHECK(p.window.posbar_img2.Left() == 5020);
}

TEST_CASE("The clock runs while the position thumb's drop on another track waits for conf.mp3")
{
    for (const auto track : {&StartUp::vslider_bg, &StartUp::balbar_bg}) {
        Bar p;
        p.window.Show();
        p.mp3().openResults = {1, 1};
        p.platform.scriptedPump.steps = {{}, {}};
        Text clock;
        p.platform.log.onCall = [&](const Text& call) {
            if (call == "Mp3Player.Open(/app/conf.mp3)")
                clock += p.window.Timer.Enabled() ? "runs\n" : "stands\n";
        };
        Pointer(p.window).to(p.window.posbar_img2).press().to(p.window.*track).release();
        CHECK(clock == "runs\nruns\nruns\n");
        CHECK(p.window.Timer.Enabled());
    }
}

TEST_CASE("The clock stands until the position thumb's drop on its own track has sought")
{
    Bar p;
    p.current(song, kind::mp3);
    p.window.Show();
    Text clock;
    p.platform.log.onCall = [&](const Text& call) {
        if (call.starts_with("Mp3Player.Seek"))
            clock += p.window.Timer.Enabled() ? "runs\n" : "stands\n";
    };
    Pointer(p.window).to(p.window.posbar_img2).press().to(p.window.posbar_bg).release();
    CHECK(clock == "stands\n");
    CHECK(p.window.Timer.Enabled());
}

TEST_CASE("The thumb follows its number while the clock is off, too")
{
    Bar p;
    p.window.Timer.setEnabled(false);
    p.window.pbar.setValue(10);
    p.window.posbar_tim1_Timer();
    CHECK(p.window.posbar_img2.Left() == 2322);
}

TEST_CASE("A drop on an MP3 file seeks to a frame and nothing else")
{
    Bar p;
    p.current(song, kind::mp3);
    p.drop(travel / 2);
    CHECK(p.window.pbar.Value() == 50);
    CHECK(p.calls() == "Mp3Player.Seek(3445)\n"); // 90000 / 26.122 is 3445.4
    p.drop(travel);
    CHECK(p.window.pbar.Value() == 100);
    CHECK(p.calls() == "Mp3Player.Seek(6891)\n");
    p.drop(0);
    CHECK(p.calls() == "Mp3Player.Seek(0)\n");
}

TEST_CASE("A seek's frame is worked out in floating point and rounded once")
{
    const Seek seeks[] = {
        {"half a frame goes to the even neighbour below", 50, 5, 1, 2},
        {"half a frame goes to the even neighbour above", 50, 7, 1, 4},
        {"a whole frame", 50, 6, 1, 3},
        {"many frames do not overflow", 100, 2147483647, 1, 2147483647},
        {"a fraction of a millisecond", 1, 180000, 26.122448F, 69},
        {"nothing open", 100, 0, 26.122F, 0},
    };
    for (const auto& c : seeks) {
        CAPTURE(c.what);
        Bar p;
        p.current(song, kind::mp3);
        p.mp3().length = c.length;
        p.mp3().frameDuration = c.frameDuration;
        p.window.pbar.setValue(c.value);
        p.window.pbar.Scroll.raise();
        CHECK(p.calls() == "Mp3Player.Seek(" + textOf(c.frame) + ")\n");
    }
}

TEST_CASE("A drop on a WAV file opens it anew and plays it from there")
{
    const Drop drops[] = {
        {"the beginning", 0, 0, 0},       {"less than half a per cent", 20, 0, 0},
        {"one per cent", 40.2F, 1, 1800}, {"the middle", travel / 2, 50, 90000},
        {"the end", travel, 100, 180000}, {"between two values, to the even one below", 100.5F, 2, 3600},
    };
    for (const auto& c : drops) {
        CAPTURE(c.where);
        Bar p;
        p.current(wave, kind::wav);
        p.drop(c.X);
        CHECK(p.window.pbar.Value() == c.value);
        const Text from = c.from ? "MMControl1.From = " + textOf(c.from) + "\n" : "";
        CHECK(p.calls() == reopened + from + "MMControl1.Play\n");
    }
}

TEST_CASE("The length of a WAV file is read after it is open again")
{
    Bar p;
    p.current(wave, kind::wav);
    p.wav().length = 0;
    p.platform.log.onCall = [&](const Text& call) {
        if (call == "MMControl1.Open")
            p.wav().length = 1001;
    };
    p.drop(travel / 2);
    CHECK(p.calls() == reopened + "MMControl1.From = 500\nMMControl1.Play\n");
}

TEST_CASE("A drop past the travel is lost")
{
    for (const auto fileKind : {kind::wav, kind::mp3})
        for (const Twips X : {std::nextafter(travel, 5000.0F), 4021.0F, 4124.0F}) {
            Bar p;
            p.current(song, fileKind);
            p.window.pbar.setValue(40);
            p.drop(X);
            CHECK(p.window.pbar.Value() == 40);
            CHECK(p.calls().empty());
            p.window.posbar_tim1_Timer();
            CHECK(p.window.posbar_img2.Left() == 3528);
        }
}

TEST_CASE("Any kind but that of WAV seeks in the MP3 engine")
{
    for (const std::int16_t fileKind : {0, 2, 3, -1}) {
        CAPTURE(fileKind);
        Bar p;
        p.current(song, fileKind);
        p.drop(0);
        CHECK(p.calls() == "Mp3Player.Seek(0)\n");
    }
}

TEST_CASE("Whichever thumb is dropped on the track seeks")
{
    Bar p;
    p.current(song, kind::mp3);
    const Twips volumeThumb = p.window.vslider_img2.Left();
    p.window.posbar_bg.DragDrop.raise(p.window.vslider_img2, travel, 999);
    CHECK(p.calls() == "Mp3Player.Seek(6891)\n");
    CHECK(p.window.vslider_img2.Left() == volumeThumb);
}

TEST_CASE("A press on the track does nothing")
{
    Bar p;
    p.current(song, kind::mp3);
    CHECK_FALSE(p.window.posbar_bg.MouseDown.isWired());
    p.window.Show();
    Pointer(p.window).to({300, 157}).press().release();
    CHECK(p.calls().empty());
    CHECK(p.window.pbar.Value() == 0);
    CHECK(p.window.Timer.Enabled());
}

TEST_CASE("A seek in a pause is any other seek: WAV plays, MP3 only seeks, and the pause's flag stays")
{
    for (const std::int16_t flag : {0, 1}) {
        CAPTURE(flag);
        Bar p;
        p.window.paused_flag = flag;
        p.current(wave, kind::wav);
        p.drop(travel / 2);
        CHECK(p.calls() == reopened + "MMControl1.From = 90000\nMMControl1.Play\n");
        p.current(song, kind::mp3);
        p.drop(travel / 2);
        CHECK(p.calls() == "Mp3Player.Seek(3445)\n");
        CHECK(p.window.paused_flag == flag);
    }
}

TEST_CASE("A seek goes by whole per cents, however long the file is")
{
    struct Row {
        Text what;
        std::int32_t length;
        std::int32_t from;
    };
    for (const auto& c :
         {Row{"a second", 1000, 330}, Row{"an hour", 3600000, 1188000}, Row{"ten", 36000000, 11880000}}) {
        CAPTURE(c.what);
        for (const Twips X : {1307.0F, 1326.6F, 1346.0F}) { // from 32.51 to 33.48 per cent
            CAPTURE(X);
            Bar p;
            p.wav().length = p.mp3().length = c.length;
            p.mp3().frameDuration = 1;
            p.current(wave, kind::wav);
            p.drop(X);
            CHECK(p.calls() == reopened + "MMControl1.From = " + textOf(c.from) + "\nMMControl1.Play\n");
            p.current(song, kind::mp3);
            p.drop(X);
            CHECK(p.calls() == "Mp3Player.Seek(" + textOf(c.from) + ")\n");
        }
    }
}

TEST_CASE("A seek with no file goes to the engine all the same")
{
    Bar p;
    p.mp3().length = 0;
    p.drop(travel);
    CHECK(p.calls() == "Mp3Player.Seek(0)\n");
    p.dialog().filterIndex = kind::wav;
    p.wav().length = 0;
    p.drop(travel);
    CHECK(p.calls() == "MMControl1.Close\nMMControl1.FileName = \nMMControl1.Open\nMMControl1.From = 0\n"
                       "MMControl1.Play\n");
}

TEST_CASE("From the end the clock takes the bar back to its start")
{
    Bar p;
    p.current(song, kind::mp3);
    p.drop(travel);
    CHECK(p.window.pbar.Value() == 100);
    p.mp3().currentFrame = 6891;
    p.window.Timer_Timer();
    CHECK(p.window.pbar.Value() == 0);
}

TEST_CASE("A number set from code seeks nothing")
{
    Bar p;
    p.current(song, kind::mp3);
    for (const std::int32_t value : {1, 50, 100, 0})
        p.window.pbar.setValue(value);
    CHECK(p.calls().empty());
}

TEST_CASE("The clock is held while the user has the bar in hand")
{
    struct Row {
        Text what;
        std::function<void(StartUp&)> act;
        bool before;
        bool after;
    };
    const Row rows[] = {
        {"the thumb is pressed", [](StartUp& w) { w.posbar_img2.MouseDown.raise(left, 0, 0, 0); }, true,
         false},
        {"the thumb is pressed again", [](StartUp& w) { w.posbar_img2.MouseDown.raise(left, 0, 0, 0); },
         false, false},
        {"the thumb is released", [](StartUp& w) { w.posbar_img2.MouseUp.raise(left, 0, 0, 0); }, false,
         true},
        {"the thumb is released once more", [](StartUp& w) { w.posbar_img2.MouseUp.raise(left, 0, 0, 0); },
         true, true},
        {"the slider is pressed", [](StartUp& w) { w.pbar.MouseDown.raise(); }, true, false},
        {"the slider is released", [](StartUp& w) { w.pbar.MouseUp.raise(); }, false, true},
        {"the left arrow goes down", [](StartUp& w) { w.pbar.KeyDown.raise(37); }, true, false},
        {"the up arrow goes down", [](StartUp& w) { w.pbar.KeyDown.raise(38); }, true, false},
        {"the right arrow goes down", [](StartUp& w) { w.pbar.KeyDown.raise(39); }, true, false},
        {"the down arrow goes down", [](StartUp& w) { w.pbar.KeyDown.raise(40); }, true, false},
        {"the key before the arrows goes down", [](StartUp& w) { w.pbar.KeyDown.raise(36); }, true, true},
        {"the key after the arrows goes down", [](StartUp& w) { w.pbar.KeyDown.raise(41); }, true, true},
        {"another key goes down", [](StartUp& w) { w.pbar.KeyDown.raise(36); }, false, false},
        {"an arrow comes up", [](StartUp& w) { w.pbar.KeyUp.raise(37); }, false, true},
        {"any other key comes up", [](StartUp& w) { w.pbar.KeyUp.raise(65); }, false, true},
        {"any key comes up while the clock runs", [](StartUp& w) { w.pbar.KeyUp.raise(65); }, true, true},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Bar p;
        p.window.Timer.setEnabled(row.before);
        row.act(p.window);
        CHECK(p.window.Timer.Enabled() == row.after);
        CHECK(p.calls().empty());
    }
}

TEST_CASE("After every gesture, however it ended, the clock runs again")
{
    struct Row {
        Text what;
        std::function<void(Pointer&, StartUp&)> end;
        Text calls;
    };
    const Row rows[] = {
        {"a drop on the track",
         [](Pointer& pointer, StartUp&) {
             pointer.to({262, 157}).release();
         },
         "Mp3Player.Seek(3445)\n"},
        {"a drop past the travel",
         [](Pointer& pointer, StartUp&) {
             pointer.to({400, 157}).release();
         },
         ""},
        {"a drop on another track",
         [](Pointer& pointer, StartUp&) {
             pointer.to({24, 131}).release();
         },
         "Mp3Player.SetVolume(0, 0)\n"},
        {"a drop on nothing",
         [](Pointer& pointer, StartUp&) {
             pointer.to({300, 60}).release();
         },
         ""},
        {"a mere click", [](Pointer& pointer, StartUp&) { pointer.release(); }, ""},
        {"the window hides", [](Pointer&, StartUp& window) { window.Hide(); }, ""},
        {"Escape",
         [](Pointer&, StartUp&) {
             QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
             QApplication::sendEvent(QWidget::keyboardGrabber(), &escape);
         },
         ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.what);
        Bar p;
        p.current(song, kind::mp3);
        p.window.Show();
        p.calls();
        Pointer pointer(p.window);
        pointer.to(p.window.posbar_img2).press();
        CHECK_FALSE(p.window.Timer.Enabled());
        row.end(pointer, p.window);
        CHECK(p.window.Timer.Enabled());
        CHECK(p.calls() == row.calls);
    }
}

TEST_CASE("A press of another button on the thumb holds the clock until it is released")
{
    Bar p;
    p.window.Show();
    Pointer pointer(p.window);
    pointer.to(p.window.posbar_img2).press(Qt::RightButton);
    CHECK_FALSE(p.window.Timer.Enabled());
    pointer.release(Qt::RightButton);
    CHECK(p.window.Timer.Enabled());
}

TEST_CASE("The clock is still held while a drop seeks")
{
    Bar p;
    p.current(song, kind::mp3);
    p.window.Show();
    p.calls();
    bool held = false;
    p.platform.log.onCall = [&](const Text& call) {
        if (call.starts_with("Mp3Player.Seek"))
            held = !p.window.Timer.Enabled();
    };
    Pointer(p.window).to(p.window.posbar_img2).press().to({200, 157}).release();
    CHECK(held);
}
