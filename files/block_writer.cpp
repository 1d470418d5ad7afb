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
    to_(to), direct_(to.openPastCache()), unmade_(runs + waitingBlocks)
{
    free_.reserve(unmade_); // the writing thread gives back without asking for memory
}

void BlockWriter::finish()
{
    worker_.finish();
    const Lock lock(mutex_);
    if (failure_)
        std::rethrow_exception(failure_);
}

BlockWriter::Block BlockWriter::take()
{
    Lock lock(mutex_);
    while (!failure_ && free_.empty() && unmade_ == 0)
        isFree_.wait(lock);
    if (failure_)
        std::rethrow_exception(failure_);
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
        const Lock lock(mutex_);
        free_.push_back(std::move(block));
    }
    isFree_.notifyOne();
}

void BlockWriter::put(Full full)
{
    worker_.add([this, full = std::make_shared<Full>(std::move(full))](const std::stop_token&) {
        write(*full);
        giveBack(std::move(full->block));
    });
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
    } catch (...) {
        const Lock lock(mutex_);
        if (!failure_) // who has been told of the first may still be reading it
            failure_ = std::current_exception();
        isFree_.notifyAll();
    }
}

}
