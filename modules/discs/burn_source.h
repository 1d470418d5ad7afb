// SPDX-License-Identifier: GPL-3.0-or-later
// A track's sound as libburn fetches it: whole sectors, silent behind the file's end.
#pragma once

#include "engines/disc/cd_sound.h"

#include <atomic>
#include <memory>
#include <span>

namespace burn
{
struct burn_source;
}

namespace disc
{

class BurnSource
{
public:
    explicit BurnSource(CdSound sound) : sound_(std::move(sound)), left_(sound_.frames()) {}

    const Text& path() const { return sound_.path(); }
    std::int64_t sectors() const { return sound_.sectors(); }

    // True when the file ended before its time.
    bool wasCutShort() const { return wasCutShort_; }

    void read(std::span<std::byte> samples);

private:
    CdSound sound_;
    std::int64_t left_; // frames of the file
    std::atomic<bool> wasCutShort_ = false;
};

// The library's own object over it, with one reference.
burn::burn_source* newBurnSource(std::shared_ptr<BurnSource> source);

}
