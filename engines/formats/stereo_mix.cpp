#include "engines/formats/stereo_mix.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace
{

// L, C and R before the listener, l and r at the sides or behind, c behind, E the low-frequency effects.
constexpr const char* orders[] = {"", "C", "LR", "LRC", "LRlr", "LRClr", "LRCElr", "LRCEclr", "LRCElrlr"};

constexpr float halfPower = 0.70710678F;

struct Place {
    char name;
    StereoMix::Frame weight;
};

constexpr Place places[] = {
    {'L', {1, 0}},         {'R', {0, 1}},         {'C', {halfPower, halfPower}},
    {'l', {halfPower, 0}}, {'r', {0, halfPower}}, {'c', {halfPower / 2, halfPower / 2}},
    {'E', {0, 0}},
};

StereoMix::Frame weightOf(char name) { return std::ranges::find(places, name, &Place::name)->weight; }

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
