#include "platform/codec/quiet_search.h"

#include <algorithm>
#include <cmath>

namespace codec
{

namespace
{

// A border empties the bit reservoir, and an encoder needs about so many quiet frames to save up again.
constexpr std::int64_t quietFrames = 8;

double power(const std::vector<float>& samples)
{
    float sum = 0;
    for (const float sample : samples)
        sum += sample * sample;
    return sum;
}

}

std::int64_t QuietSearch::operator()(std::int64_t first, std::int64_t count)
{
    const auto powers = framePowers(first, count + quietFrames);
    std::int64_t quietest = 0;
    double least = HUGE_VAL;
    for (std::int64_t i = 0; i < count; ++i) {
        double sum = 0;
        for (std::int64_t j = i; j < i + quietFrames; ++j)
            sum += powers[static_cast<std::size_t>(j)];
        if (sum < least) {
            least = sum;
            quietest = i;
        }
    }
    return first + quietest;
}

std::vector<double> QuietSearch::framePowers(std::int64_t first, std::int64_t count)
{
    std::vector<double> powers;
    source_.seek(clock_.inputSamples(first));
    for (std::int64_t frame = first; frame < first + count; ++frame) {
        const auto samples = clock_.inputSamples(frame + 1) - clock_.inputSamples(frame);
        source_.read(block_, static_cast<std::size_t>(samples));
        powers.push_back(power(block_.left) + power(block_.right));
    }
    return powers;
}

}
