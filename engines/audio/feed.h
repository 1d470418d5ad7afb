// SPDX-License-Identifier: GPL-3.0-or-later
// A lock-free ring buffer of decoded sound from one place of a source on. The thread that decodes it writes,
// the one that plays it reads, and neither ever waits for the other.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace audio
{

class Feed
{
public:
    // Begins with the source's frame `start`. `serial` tells this feed from those before it.
    Feed(int rate, std::int64_t start, std::uint64_t serial);

    int rate() const { return rate_; }
    std::uint64_t serial() const { return serial_; }
    std::size_t capacity() const { return capacity_; } // frames

    // The writer's side: samples put at the start of `space`, whole frames, count when they are committed.
    std::span<std::int16_t> space();
    void commit(std::size_t frames);
    void finish(); // nothing more will come
    std::int64_t end() const
    {
        return start_ + written_.load();
    } // the source's frame behind what was committed

    // The reader's side.
    std::size_t read(std::int16_t* samples, std::size_t frames);    // returns the frames that were there
    std::int64_t position() const { return start_ + read_.load(); } // the source's frame that comes next
    std::size_t available() const { return static_cast<std::size_t>(written_.load() - read_.load()); }
    bool isFinished() const { return finished_.load(); }

private:
    std::size_t indexOf(std::int64_t frame) const { return static_cast<std::size_t>(frame) % capacity_; }

    const int rate_;
    const std::int64_t start_;
    const std::uint64_t serial_;
    const std::size_t capacity_; // frames
    std::vector<std::int16_t> samples_;
    std::atomic<std::int64_t> written_{0};
    std::atomic<std::int64_t> read_{0};
    std::atomic<bool> finished_{false};
};

}
