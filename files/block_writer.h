// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a large file past the system's file cache: nobody reads it soon, what others have in the cache stays
// there, and no thread waits for another one's copying. Whole blocks go to the disk from a thread of their
// own. The ends of each run, and everything where the file system has no such way, go through the cache.
#pragma once

#include "files/output_file.h"
#include "platform/failure.h"
#include "platform/mutex.h"
#include "platform/worker.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

namespace files
{

class BlockWriter
{
    using Block = std::unique_ptr<std::byte[], decltype(&std::free)>;

public:
    // A large page of memory, which the system finds and holds for the disk in one step.
    static constexpr std::int64_t blockBytes = 1 << 21;

    // Every known disk's unit, and every page of memory, divides it.
    static constexpr std::int64_t unitBytes = 1 << 16;

    // A stretch of the file, written from its beginning on by one thread. Fails as OutputFile does, also with
    // what an earlier block of any run failed with.
    class Run
    {
    public:
        Run(BlockWriter& to, std::int64_t at) : to_(to), end_(at) {}
        ~Run() { to_.giveBack(std::move(block_)); }
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;

        void write(std::span<const std::byte> bytes);

        // The place in the file behind what was written.
        std::int64_t finish();

    private:
        void handOver();
        void writeThroughCache(std::int64_t from, std::int64_t to) const;

        BlockWriter& to_;
        Block block_{nullptr, &std::free};
        std::int64_t base_ = 0;  // of the block, in the file
        std::int64_t begin_ = 0; // of what the block holds
        std::int64_t end_;
    };

    // For at most as many runs at a time as there are `runs`.
    BlockWriter(OutputFile& to, unsigned runs);
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    // Waits until every block is written. No run is written after.
    void finish();

private:
    struct Full {
        Block block;
        std::int64_t skipped; // bytes of the block
        std::int64_t count;
        std::int64_t at; // in the file
    };

    Block take();
    void giveBack(Block block);
    void put(Full full);
    void write(const Full& full) noexcept;

    OutputFile& to_;
    Descriptor direct_;
    Mutex mutex_;
    Condition isFree_;
    std::size_t unmade_ GUARDED_BY(mutex_);
    std::vector<Block> free_ GUARDED_BY(mutex_);
    std::exception_ptr failure_ GUARDED_BY(mutex_);
    Worker worker_{Worker::AtEnd::joins}; // the last member: it ends first
};

}
