// SPDX-License-Identifier: GPL-3.0-or-later
// Waits for a condition, never for a fixed time. The limit is for what never comes true, and for no machine.
#pragma once

#include <chrono>
#include <thread>

template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(120))
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}
