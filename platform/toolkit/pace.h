// The rate of all timers: full while something sounds, moves or is typed, slow in a still program, so that a
// program that nobody uses hardly wakes the machine.
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
    void saw(const QEvent& event);

    void begin() override;
    void end() override;

private:
    using Clock = std::chrono::steady_clock;

    void wake();
    void rest();
    void setAll(std::chrono::milliseconds interval);

    std::vector<ctl::IntervalTimer*> timers_;
    std::atomic<int> sounding_ = 0;
    Clock::time_point lastActivity_ = Clock::now();
    bool running_;
    bool slow_ = false;
};
