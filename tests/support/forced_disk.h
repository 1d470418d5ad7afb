// SPDX-License-Identifier: GPL-3.0-or-later
// What this process asks the disk to have for good, counted; a disk that takes its time for it; and one of a
// file system that promises no order.
#pragma once

#include <linux/magic.h>

#include <atomic>
#include <chrono>
#include <functional>

class ForcedDisk
{
public:
    static inline std::atomic<int> forces = 0;             // of all threads
    static inline thread_local int forcesOfThisThread = 0; // for which it has waited
    static inline thread_local std::function<void()> beforeForce;
    static inline std::atomic<long> fileSystem = EXT4_SUPER_MAGIC; // of every file

    // Every force takes so long while this lives.
    explicit ForcedDisk(std::chrono::milliseconds each) { takes_ = each; }
    ~ForcedDisk() { takes_ = std::chrono::milliseconds(0); }

    static void waitAndCount();

private:
    static inline std::atomic<std::chrono::milliseconds> takes_{};
};
