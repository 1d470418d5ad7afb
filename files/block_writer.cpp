// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/block_writer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace files
{

namespace
{

// Beside those that the runs fill: enough for a disk that is at times slow.
constexpr std::size_t waitingBlocks = 3;

}

void BlockWriter::Run::write(std::span<const std::byte> bytes)
{
    while (!bytes.empty()) {
        if (!block_) {
            block_ = to_.take();
            base_ = end_ / unitBytes * unitBytes;
            begin_ = end_;
        }
        const auto room = base_ + blockBytes - end_;
        const auto count = std::min(static_cast<std::int64_t>(bytes.size()), room);
        std::memcpy(block_.get() + (end_ - base_), bytes.data(), static_cast<std::size_t>(count));
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        end_ += count;
        if (count == room)
            handOver();
    }
}

std::int64_t BlockWriter::Run::finish()
{
    if (block_)
        handOver();
    return end_;
}

void BlockWriter::Run::handOver()
{
    const auto from = std::min(end_, (begin_ + unitBytes - 1) / unitBytes * unitBytes);
    const auto to = std::max(from, end_ / unitBytes * unitBytes);
    writeThroughCache(begin_, from);
    writeThroughCache(to, end_);
    if (from < to)
        to_.put({std::move(block_), from - base_, to - from, from});
    to_.giveBack(std::move(block_));
}

void BlockWriter::Run::writeThroughCache(std::int64_t from, std::int64_t to) const
{
    to_.to_.write({block_.get() + (from - base_), static_cast<std::size_t>(to - from)}, from);
}

BlockWriter::BlockWriter(OutputFile& to, unsigned runs) :
    to_(to), direct_(to.openPastCache()), unmade_(runs + waitingBlocks), thread_([this] { writeInTurn(); })
{
}

BlockWriter::~BlockWriter()
{
    {
        const std::lock_guard lock(mutex_);
        full_.clear();
    }
    end();
}

void BlockWriter::finish()
{
    end();
    if (failure_)
        throw *failure_;
}

void BlockWriter::end()
{
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    isFull_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

BlockWriter::Block BlockWriter::take()
{
    std::unique_lock lock(mutex_);
    isFree_.wait(lock, [this] { return failure_ || !free_.empty() || unmade_ > 0; });
    if (failure_)
        throw *failure_;
    if (free_.empty()) {
        Block made(static_cast<std::byte*>(std::aligned_alloc(blockBytes, blockBytes)), &std::free);
        if (!made)
            throw Failure(Trouble::outOfMemory);
        madvise(made.get(), blockBytes, MADV_HUGEPAGE);
        --unmade_;
        return made;
    }
    Block block = std::move(free_.back());
    free_.pop_back();
    return block;
}

void BlockWriter::giveBack(Block block)
{
    if (!block)
        return;
    {
        const std::lock_guard lock(mutex_);
        free_.push_back(std::move(block));
    }
    isFree_.notify_one();
}

void BlockWriter::put(Full full)
{
    {
        const std::lock_guard lock(mutex_);
        full_.push_back(std::move(full));
    }
    isFull_.notify_one();
}

// What the disk does not take directly goes through the cache, which also knows why it cannot be written.
void BlockWriter::write(const Full& full) noexcept
{
    const std::span<const std::byte> bytes(full.block.get() + full.skipped,
                                           static_cast<std::size_t>(full.count));
    if (direct_ && pwrite(direct_.number(), bytes.data(), bytes.size(), full.at) == full.count)
        return;
    direct_ = Descriptor();
    try {
        to_.write(bytes, full.at);
    } catch (const Failure& failure) {
        const std::lock_guard lock(mutex_);
        failure_ = failure;
        isFree_.notify_all();
    }
}

void BlockWriter::writeInTurn()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        isFull_.wait(lock, [this] { return isEnding_ || !full_.empty(); });
        if (full_.empty())
            return;
        Full next = std::move(full_.front());
        full_.pop_front();
        lock.unlock();
        write(next);
        giveBack(std::move(next.block));
        lock.lock();
    }
}

}
