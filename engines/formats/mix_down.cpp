#include "engines/formats/mix_down.h"

namespace formats
{

namespace
{

constexpr float shared = 0.70710678f; // -3 dB

// Quadraphonic sound has neither centre nor bass.
bool hasCentre(int channels) { return channels != 4; }
bool hasBass(int channels) { return channels >= 6; }

}

std::vector<MixWeights> mixDown(int channels)
{
    if (channels == 1)
        return {{1, 1}};
    std::vector<MixWeights> weights{{1, 0}, {0, 1}};
    if (channels > 2 && hasCentre(channels))
        weights.push_back({shared, shared});
    if (hasBass(channels))
        weights.push_back({0, 0});
    for (bool left = true; static_cast<int>(weights.size()) < channels; left = !left)
        weights.push_back(left ? MixWeights{shared, 0} : MixWeights{0, shared});

    float leftSum = 0;
    float rightSum = 0;
    for (const auto& row : weights) {
        leftSum += row.left;
        rightSum += row.right;
    }
    for (auto& row : weights)
        row = {row.left / leftSum, row.right / rightSum};
    return weights;
}

}
