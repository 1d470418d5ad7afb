// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/interval_timer.h"

#include "toolkit/form.h"
#include "toolkit/toolkit.h"

#include <QTimer>
#include <algorithm>

namespace ctl
{

IntervalTimer::IntervalTimer(Container& container, const char* name, std::chrono::milliseconds interval) :
    toolkit_(container.form().toolkit()), interval_(interval), timer_(std::make_unique<QTimer>())
{
    timer_->setObjectName(name);
    QObject::connect(timer_.get(), &QTimer::timeout,
                     [this] { toolkit_.outermost([this] { Timer.raise(); }); });
    toolkit_.add(*this);
}

IntervalTimer::~IntervalTimer() { toolkit_.remove(*this); }

void IntervalTimer::setEnabled(bool enabled)
{
    if (std::exchange(enabled_, enabled) != enabled)
        apply();
}

void IntervalTimer::setPace(std::chrono::milliseconds rate)
{
    const auto interval = std::max(rate, interval_);
    // Slow timers may fall together, which is what lets a still program sleep.
    timer_->setTimerType(interval < std::chrono::milliseconds(100) ? Qt::PreciseTimer : Qt::CoarseTimer);
    timer_->setInterval(interval);
    apply();
}

void IntervalTimer::stop()
{
    stopped_ = true;
    timer_->stop();
}

void IntervalTimer::apply()
{
    if (enabled_ && !stopped_)
        timer_->start();
    else
        timer_->stop();
}

}
