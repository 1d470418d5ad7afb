#include "platform/audio/stereo_mix.h"

#include <cmath>
#include <string>

namespace
{

// L and R before the listener, C between them, E the low-frequency effects, l and r at the sides and behind,
// c behind.
// clang-format off
constexpr const char* orders[] = {"", "C", "LR", "LRC", "LRlr", "LRClr", "LRCElr", "LRCEclr", "LRCElrlr"};
// clang-format on

constexpr float halfPower = 0.70710678F;

StereoMix::Frame weightOf(char place)
{
    switch (place) {
    case 'L':
        return {1, 0};
    case 'R':
        return {0, 1};
    case 'C':
        return {halfPower, halfPower};
    case 'l':
        return {halfPower, 0};
    case 'r':
        return {0, halfPower};
    case 'c':
        return {halfPower / 2, halfPower / 2};
    default:
        return {0, 0};
    }
}

std::string orderOf(std::size_t channels)
{
    std::string order = channels < std::size(orders) ? orders[channels] : "";
    while (order.size() < channels)
        order += order.size() % 2 == 0 ? 'L' : 'R';
    return order;
}

}

StereoMix::StereoMix(int channels)
{
    Frame sum{0, 0};
    for (const char place : orderOf(static_cast<std::size_t>(channels))) {
        weights_.push_back(weightOf(place));
        sum.left += weights_.back().left;
        sum.right += weights_.back().right;
    }
    for (auto& weight : weights_) {
        weight.left /= sum.left;
        weight.right /= sum.right;
    }
}

StereoMix::Frame StereoMix::operator()(std::span<const float> channels) const
{
    Frame mixed{0, 0};
    for (std::size_t channel = 0; channel < weights_.size(); ++channel) {
        // What is no number would make one of neither side.
        const float value = std::isfinite(channels[channel]) ? channels[channel] : 0;
        mixed.left += value * weights_[channel].left;
        mixed.right += value * weights_[channel].right;
    }
    return mixed;
}
