// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/event.h"
#include "toolkit/container.h"

#include <chrono>
#include <memory>

class QTimer;
class Toolkit;

namespace ctl
{

// A timer that is enabled from the moment its form exists. Of its interval and the rate that `Pace` gives to
// all the longer one holds: one of a millisecond runs at the rate. It does not tick again while its own
// handler runs.
class IntervalTimer final
{
public:
    IntervalTimer(Container& container, const char* name, std::chrono::milliseconds interval);
    ~IntervalTimer();

    Event<> Timer;

    bool Enabled() const { return enabled_; }
    void setEnabled(bool enabled);

    // The toolkit's own: the rate of all timers changes together, or they stop for good.
    void setPace(std::chrono::milliseconds rate);
    void stop();

private:
    void apply();

    Toolkit& toolkit_;
    const std::chrono::milliseconds interval_;
    std::unique_ptr<QTimer> timer_;
    bool enabled_ = true;
    bool stopped_ = false;
};

}
