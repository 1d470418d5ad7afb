// SPDX-License-Identifier: GPL-3.0-or-later
// The rate of all timers, with a debounce: full from a move or a key until there has been none for a while,
// lower while a file just plays, slow in a still program, which hardly wakes the machine. All tick together.
#pragma once

#include "platform/activity.h"

#include <QObject>
#include <atomic>
#include <chrono>
#include <vector>

class QEvent;

namespace ctl
{
class IntervalTimer;
}

class Pace final : public QObject, public Activity
{
public:
    explicit Pace(bool running);

    void add(ctl::IntervalTimer& timer);
    void remove(ctl::IntervalTimer& timer);
    void stop();

    // Each event of the program passes here first.
    void saw(const QObject& receiver, const QEvent& event);

    void begin() override;
    void end() override;

private:
    using Clock = std::chrono::steady_clock;

    void wake();
    void wakeFromAnyThread();
    std::chrono::milliseconds restingRate() const;
    void setRate(std::chrono::milliseconds rate);
    void restartAll();

    std::vector<ctl::IntervalTimer*> timers_;
    std::atomic<int> sounding_ = 0;
    Clock::time_point lastActivity_ = Clock::now();
    std::chrono::milliseconds rate_;
    bool running_;
};
