// SPDX-License-Identifier: GPL-3.0-or-later
// Many channels become two. Nothing is lost to clipping, the low-frequency channel is left out; centre and
// surround go in at -3 dB, as ITU-R BS.775 has it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace formats
{

class StereoMix
{
public:
    // `places` has a bit for each loudspeaker that a WAV file gives a channel; where they are not as many as
    // the channels, their usual order holds.
    explicit StereoMix(int channels, std::uint32_t places = 0);

    struct StereoFrame {
        float left;
        float right;
    };
    StereoFrame operator()(std::span<const float> channels) const;

private:
    std::vector<StereoFrame> weights_;
};

}
