// SPDX-License-Identifier: GPL-3.0-or-later
// The disc in a real drive, over libcdio. For worker threads: each call waits as long as the drive takes.
#pragma once

#include "engines/disc/disc_contents.h"
#include "platform/text.h"

#include <cstddef>
#include <memory>
#include <span>
#include <stop_token>
#include <vector>

namespace disc
{

// The drive is open while this lives, beside whoever else has it open.
class CdioDisc
{
public:
    explicit CdioDisc(const Text& device);
    CdioDisc(CdioDisc&&) noexcept;
    ~CdioDisc();

    bool isOpen() const;

    // Whether there is a disc that can be read; one that was just put in is waited for.
    bool isReady() const;

    // Whether the drive says that none is in it, when it is not ready.
    bool isEmpty() const;

    // What the drive answers when asked for the disc's contents, in one command; empty without a disc. The
    // same for the same disc.
    std::vector<std::byte> table() const;

    // The tracks with their lengths as sound.
    DiscContents contents();

    // As many sectors as a drive reads at once.
    static constexpr std::int32_t mostSectors = 25;

    // Fills `samples` with whole sectors from `sector` on; false when one of them could not be read.
    bool read(std::int32_t sector, std::span<std::byte> samples);

    // The same for one sector that could not be read so, with all the patience there is; it ends soon after a
    // stop.
    bool rescue(std::int32_t sector, std::span<std::byte> samples, const std::stop_token& stop);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}
