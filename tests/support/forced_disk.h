// SPDX-License-Identifier: GPL-3.0-or-later
// What this process asks the disk to have for good, counted; and a disk that takes its time for it.
#pragma once

#include <atomic>
#include <chrono>

class ForcedDisk
{
public:
    static inline std::atomic<int> forces = 0;             // of all threads
    static inline thread_local int forcesOfThisThread = 0; // for which it has waited

    // Every force takes so long while this lives.
    explicit ForcedDisk(std::chrono::milliseconds each) { takes_ = each; }
    ~ForcedDisk() { takes_ = std::chrono::milliseconds(0); }

    static void waitAndCount();

private:
    static inline std::atomic<std::chrono::milliseconds> takes_{};
};
