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

// A timer that is enabled from the moment its form exists. An interval that is shorter than the platform's
// rate runs at that rate. It does not tick again while its own handler runs.
class IntervalTimer final
{
public:
    IntervalTimer(Container& container, const char* name, std::chrono::milliseconds interval);
    ~IntervalTimer();

    Event<> Timer;

    bool Enabled() const { return enabled_; }
    void setEnabled(bool enabled);

    // The toolkit's own: the rate of all timers changes together, or they stop for good.
    void setPace(std::chrono::milliseconds interval);
    void stop();

private:
    void apply();

    Toolkit& toolkit_;
    std::unique_ptr<QTimer> timer_;
    bool enabled_ = true;
    bool stopped_ = false;
};

}
