// Many channels become two. The order of the channels is the usual one of WAVE files; nothing is lost to
// clipping, the low-frequency channel is left out.
#pragma once

#include <span>
#include <vector>

class StereoMix
{
public:
    explicit StereoMix(int channels);

    struct Frame {
        float left;
        float right;
    };
    Frame operator()(std::span<const float> channels) const;

private:
    std::vector<Frame> weights_;
};
