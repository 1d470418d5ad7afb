// SPDX-License-Identifier: GPL-3.0-or-later
// Sound that can be read from any place of it, as 16-bit stereo, by one thread at a time. A frame is one
// sample of both channels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace audio
{

class PcmSource
{
public:
    virtual ~PcmSource() = default;

    // Sets whole frames from the start of `samples` on and returns how many; 0 at the end, when nothing more
    // can be read, and once where the rate changes: `rate` then says the new one, and reading goes on.
    virtual std::size_t read(std::span<std::int16_t> samples) = 0;

    virtual int rate() const = 0; // hertz, of what `read` gave last and gives next

    virtual void seek(std::int64_t frame) = 0;
};

}
