// SPDX-License-Identifier: GPL-3.0-or-later
// Tells a place that was jumped to from one that playing has led to.
#pragma once

#include <chrono>
#include <cstdint>

class PlaceWatch
{
public:
    using Time = std::chrono::steady_clock::time_point;

    struct Seen {
        std::uint64_t track = 0;
        std::int32_t place = 0; // milliseconds
        bool plays = false;
        Time at{};
    };

    // True when the place is not explained by the time since the last call. Another track begins anew.
    bool jumped(const Seen& now);

    void expect(const Seen& now) { last_ = now; } // whatever was before

private:
    Seen last_;
};
