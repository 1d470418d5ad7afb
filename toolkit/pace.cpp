// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/pace.h"

#include "toolkit/interval_timer.h"
#include "toolkit/later.h"

#include <QEvent>
#include <QWidget>
#include <utility>

using namespace std::chrono_literals;

namespace
{

constexpr auto fullRate = 16ms;
constexpr auto playingRate = 40ms; // smooth enough for a clock and a thumb
constexpr auto slowRate = 500ms;
constexpr auto stillness = 2s;

bool isWindow(const QObject& object)
{
    return object.isWidgetType() && static_cast<const QWidget&>(object).isWindow();
}

// What a user or a window manager does; paints, timers and the thumb of a bar that moves are the program's
// own doing.
bool isActivity(const QObject& receiver, QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::HoverMove:
    case QEvent::Wheel:
    case QEvent::Drop:
    case QEvent::DragMove:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::WindowStateChange:
        return true;
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
        return isWindow(receiver);
    default:
        return false;
    }
}

}

Pace::Pace(bool running) : rate_(fullRate), running_(running) {}

void Pace::add(ctl::IntervalTimer& timer)
{
    timers_.push_back(&timer);
    if (!running_)
        timer.stop();
    restartAll();
}

void Pace::remove(ctl::IntervalTimer& timer) { std::erase(timers_, &timer); }

void Pace::stop()
{
    for (auto* timer : timers_)
        timer->stop();
    running_ = false;
}

void Pace::saw(const QObject& receiver, const QEvent& event)
{
    if (isActivity(receiver, event.type()))
        wake();
    else if (event.type() == QEvent::Timer && Clock::now() - lastActivity_ >= stillness)
        setRate(restingRate());
}

void Pace::begin()
{
    ++sounding_;
    wakeFromAnyThread();
}

void Pace::end()
{
    --sounding_;
    wakeFromAnyThread();
}

// Who waits for the end of a file in the window thread waits for its next event: this is one.
void Pace::wakeFromAnyThread()
{
    later(this, [this] { wake(); });
}

void Pace::wake()
{
    lastActivity_ = Clock::now();
    setRate(fullRate);
}

std::chrono::milliseconds Pace::restingRate() const { return sounding_ > 0 ? playingRate : slowRate; }

void Pace::setRate(std::chrono::milliseconds rate)
{
    if (std::exchange(rate_, rate) != rate)
        restartAll();
}

// At one moment, so that they fall due together and the machine wakes once for all.
void Pace::restartAll()
{
    for (auto* timer : timers_)
        timer->setPace(rate_);
}
