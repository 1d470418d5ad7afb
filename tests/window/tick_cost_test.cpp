// SPDX-License-Identifier: GPL-3.0-or-later
#include "program.h"
#include "support/counted_calls.h"
#include "support/real_parts.h"
#include "support/skip.h"

#include <QApplication>
#include <QPaintEvent>
#include <QWidget>
#include <doctest/doctest.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

struct Run {
    RealParts parts;
    Program program{parts};
    StartUp& player = program.startUp();
    PlayListEditor& list = program.playListEditor();

    Run()
    {
        for (int row = 0; row < 100; ++row)
            list.PlayListLB.AddItem("/music/" + std::to_string(row) + ".mp3");
        player.Show();
        list.Show();
        tickAndShow();
    }

    void play()
    {
        const Text song = parts.place / "song.mp3";
        putFile(song, mp3Bytes(noise(20 * 44100)));
        REQUIRE(player.Mp3Player->Open(song, "") == 0);
        player.Mp3Player->Play();
        REQUIRE(waitUntil([&] { return player.Mp3Player->CurrentFrame() > 2; }));
    }

    void tickAndShow()
    {
        tick(player, list);
        QApplication::processEvents();
    }

    Text shown() const { return player.Label1.Caption() + " " + textOf(player.posbar_img2.Left()); }
};

// What a window paints of itself.
class Painted final : public QObject
{
public:
    explicit Painted(QWidget& window) { window.installEventFilter(this); }

    QRegion region;

    int pixels() const
    {
        int sum = 0;
        for (const QRect& rect : region)
            sum += rect.width() * rect.height();
        return sum;
    }

private:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }
};

}

TEST_CASE("What a test counts as a system call is one, and is carried out")
{
    long answer = 0;
    const long first = systemCalls::firstOf([&] { answer = syscall(SYS_getppid); });
    CHECK(answer == getppid());
    if (first != systemCalls::unknown)
        CHECK(first == SYS_getppid);
    CHECK(systemCalls::firstOf([] {}) != SYS_getppid);
}

TEST_CASE("While only the position changes, a tick asks the system for nothing but a look each second")
{
    Run run;
    run.play();
    run.tickAndShow();
    const auto begin = std::chrono::steady_clock::now();
    const Text position = run.player.elapsed_ms;
    int quiet = 0;
    int calls = 0;
    Text numbers;
    for (int time = 0; time < 150; ++time) {
        const Text before = run.shown();
        const long first = systemCalls::firstOf([&] { tick(run.player, run.list); });
        if (first == systemCalls::unknown)
            return skipCase("this system does not tell of a thread's calls");
        if (run.shown() == before && first != systemCalls::none) {
            ++calls;
            numbers += std::to_string(first) + ' ';
        }
        quiet += first == systemCalls::none;
        QApplication::processEvents();
        usleep(5000);
    }
    CHECK(run.player.elapsed_ms != position);
    CHECK(quiet > 50);
    const auto looks = (std::chrono::steady_clock::now() - begin) / files::Trust::length + 1;
    CAPTURE(numbers);
    // The settings, the list and the profile are looked at together or one behind the other.
    CHECK(calls <= 3 * looks);
}

TEST_CASE("A tick that changes nothing paints nothing")
{
    Run run;
    Painted player(*run.player.page());
    Painted list(*run.list.page());
    for (int time = 0; time < 20; ++time)
        run.tickAndShow();
    CHECK(player.pixels() == 0);
    CHECK(list.pixels() == 0);
}

TEST_CASE(
    "A thumb that moves costs the place that it leaves, the place that it takes, and the groove between them")
{
    Run run;
    const auto& thumb = run.player.posbar_img2;
    const QSize size(pixelsOf(thumb.Width()), pixelsOf(thumb.Height()));
    const int groove = pixelsOf(run.player.posbar_bg.Height());
    Painted painted(*run.player.page());
    for (const int value : {1, 2, 60}) {
        CAPTURE(value);
        painted.region = {};
        const int before = pixelsOf(thumb.Left());
        run.player.pbar.setValue(value);
        run.player.posbar_tim1_Timer();
        QApplication::processEvents();
        const int between = std::max(0, pixelsOf(thumb.Left()) - before - size.width()); // none of a step
        CHECK(painted.pixels() > 0);
        CHECK(painted.pixels() <= 2 * size.width() * size.height() + between * groove);
    }
}

TEST_CASE("A second that passes costs the place of its digits")
{
    Run run;
    Painted painted(*run.player.page());
    const auto& label = run.player.Label1;
    run.player.Label1.setCaption("0:09");
    QApplication::processEvents();
    CHECK(painted.pixels() > 0);
    CHECK(painted.pixels() <= pixelsOf(label.Width()) * pixelsOf(label.Height()));
}
