// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/feed.h"

#include <algorithm>

namespace audio
{

namespace
{

// How far decoding runs ahead: enough for a busy machine, little to throw away at a seek.
constexpr int feedsPerSecond = 2;
constexpr int smallestFeed = 1024; // frames

}

Feed::Feed(int rate, std::int64_t start, std::uint64_t serial) :
    rate_(rate), start_(start), serial_(serial),
    capacity_(static_cast<std::size_t>(std::max(rate / feedsPerSecond, smallestFeed))),
    samples_(capacity_ * 2)
{
}

std::span<std::int16_t> Feed::space()
{
    const std::size_t first = indexOf(written_.load());
    const std::size_t frames = std::min(capacity_ - available(), capacity_ - first);
    return std::span(samples_).subspan(first * 2, frames * 2);
}

void Feed::commit(std::size_t frames) { written_ += static_cast<std::int64_t>(frames); }

void Feed::finish() { finished_ = true; }

std::size_t Feed::read(std::int16_t* samples, std::size_t frames)
{
    std::size_t done = 0;
    while (done < frames && available() > 0) {
        const std::size_t first = indexOf(read_.load());
        const std::size_t part = std::min({frames - done, available(), capacity_ - first});
        std::copy_n(&samples_[first * 2], part * 2, samples + done * 2);
        read_ += static_cast<std::int64_t>(part);
        done += part;
    }
    return done;
}

}
