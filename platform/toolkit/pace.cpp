#include "platform/toolkit/pace.h"

#include "platform/toolkit/interval_timer.h"

#include <QEvent>
#include <algorithm>

using namespace std::chrono_literals;

namespace
{

constexpr auto fullRate = 16ms;
constexpr auto slowRate = 500ms;
constexpr auto stillness = 2s;

// What a user or a window manager does; paints and timers are the program's own doing.
bool isActivity(QEvent::Type type)
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
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::WindowStateChange:
        return true;
    default:
        return false;
    }
}

}

Pace::Pace(bool running) : running_(running) {}

void Pace::add(ctl::IntervalTimer& timer)
{
    timers_.push_back(&timer);
    if (!running_)
        timer.stop();
    timer.setPace(slow_ ? slowRate : fullRate);
}

void Pace::remove(ctl::IntervalTimer& timer) { std::erase(timers_, &timer); }

void Pace::stop()
{
    for (auto* timer : timers_)
        timer->stop();
    running_ = false;
}

void Pace::saw(const QEvent& event)
{
    if (isActivity(event.type()))
        wake();
    else if (event.type() == QEvent::Timer && !slow_)
        rest();
}

void Pace::begin()
{
    ++sounding_;
    QMetaObject::invokeMethod(
        this, [this] { wake(); }, Qt::QueuedConnection);
}

void Pace::end() { --sounding_; }

void Pace::wake()
{
    lastActivity_ = Clock::now();
    if (std::exchange(slow_, false))
        setAll(fullRate);
}

void Pace::rest()
{
    if (sounding_ > 0 || Clock::now() - lastActivity_ < stillness)
        return;
    slow_ = true;
    setAll(slowRate);
}

void Pace::setAll(std::chrono::milliseconds interval)
{
    for (auto* timer : timers_)
        timer->setPace(interval);
}
