// SPDX-License-Identifier: GPL-3.0-or-later
// A time to live: for how long a file is taken to hold what it was last seen to hold. What is saved many
// times a second asks the disk only once: what somebody else did to the file is noticed a moment later.
#pragma once

#include <chrono>
#include <functional>

namespace files
{

class Trust
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Now = std::function<TimePoint()>;

    // So much under a second that a tick late is still within one and a tenth.
    static constexpr std::chrono::milliseconds length{950};

    explicit Trust(Now now = std::chrono::steady_clock::now) : now_(std::move(now)) {}

    bool holds() const { return now_() < until_; }
    void begin() { until_ = now_() + length; }
    void end() { until_ = {}; }

private:
    Now now_;
    TimePoint until_{};
};

}
