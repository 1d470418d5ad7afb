// SPDX-License-Identifier: GPL-3.0-or-later
// Times on a machine that has other work, too.
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

inline double millisecondsSince(std::chrono::steady_clock::time_point then)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - then).count();
}

// The smallest of up to twenty measurements; the first below `wanted` is the last. A busy machine adds to any
// single one, but not to every one.
template <typename Measure>
double atBest(double wanted, Measure measure)
{
    double best = std::numeric_limits<double>::infinity();
    for (int tries = 0; tries < 20 && !(best < wanted); ++tries)
        best = std::min(best, static_cast<double>(measure()));
    return best;
}

// Whether a position is at `from` or as far behind it as the time since `then` allows, milliseconds. However
// late the question comes, what is right holds.
inline bool wentOn(double position, double from, std::chrono::steady_clock::time_point then)
{
    constexpr double leeway = 60;
    return position >= from && position <= from + millisecondsSince(then) + leeway;
}
