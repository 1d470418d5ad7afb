// SPDX-License-Identifier: GPL-3.0-or-later
// The two output levels, read by whoever plays.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace audio
{

class Levels
{
public:
    struct alignas(std::int32_t) Pair { // so that no lock stands behind reading it
        std::int16_t left = 100;        // 0 to 100
        std::int16_t right = 100;

        bool operator==(const Pair&) const = default;
    };

    Pair get() const { return pair_.load(); }
    void set(Pair pair) { pair_.store({held(pair.left), held(pair.right)}); }

private:
    static std::int16_t held(std::int16_t level) { return std::clamp<std::int16_t>(level, 0, 100); }

    std::atomic<Pair> pair_{Pair{}};
};

}
