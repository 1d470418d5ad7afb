// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_header.h"

#include <algorithm>
#include <string_view>

namespace formats
{

namespace
{

class Writer
{
public:
    void word(std::string_view word) { at_ = std::copy(word.begin(), word.end(), at_); }

    void number(std::int64_t value, int bytes)
    {
        const auto held = static_cast<std::uint32_t>(std::min<std::int64_t>(value, UINT32_MAX));
        for (int i = 0; i < bytes; ++i)
            *at_++ = static_cast<std::uint8_t>(held >> 8 * i);
    }

    const WavHeader& header() const { return header_; }

private:
    WavHeader header_{};
    WavHeader::iterator at_ = header_.begin();
};

}

WavHeader wavHeader(int rate, int channels, std::int64_t bytes)
{
    const int frameBytes = 2 * channels;
    Writer to;
    to.word("RIFF");
    to.number(bytes + 36, 4);
    to.word("WAVEfmt ");
    to.number(16, 4); // bytes of the format that follows
    to.number(1, 2);  // PCM
    to.number(channels, 2);
    to.number(rate, 4);
    to.number(std::int64_t{rate} * frameBytes, 4);
    to.number(frameBytes, 2);
    to.number(16, 2); // bits of a sample
    to.word("data");
    to.number(bytes, 4);
    return to.header();
}

}
