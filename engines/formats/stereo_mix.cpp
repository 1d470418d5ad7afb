// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/stereo_mix.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string>

namespace formats
{

namespace
{

// L, C and R before the listener, l and r at the sides or behind, c behind, E the low-frequency effects.
constexpr const char* orders[] = {"", "C", "LR", "LRC", "LRlr", "LRClr", "LRCElr", "LRCEclr", "LRCElrlr"};

// The loudspeakers of WAVE_FORMAT_EXTENSIBLE, bit by bit; those above the listener count as those below.
constexpr std::string_view loudspeakers = "LRCElrLRclrCLCRlcr";

constexpr float halfPower = 0.70710678F;

struct ChannelPlace {
    char name;
    StereoMix::StereoFrame weight;
};

constexpr ChannelPlace placeTable[] = {
    {'L', {1, 0}},         {'R', {0, 1}},         {'C', {halfPower, halfPower}},
    {'l', {halfPower, 0}}, {'r', {0, halfPower}}, {'c', {0.5F, 0.5F}},
    {'E', {0, 0}},
};

StereoMix::StereoFrame weightOf(char name)
{
    return std::ranges::find(placeTable, name, &ChannelPlace::name)->weight;
}

std::string usualOrder(std::size_t channels)
{
    std::string order = channels < std::size(orders) ? orders[channels] : "";
    while (order.size() < channels)
        order += order.size() % 2 == 0 ? 'L' : 'R';
    return order;
}

std::string orderOf(std::size_t channels, std::uint32_t places)
{
    std::string order;
    for (std::size_t bit = 0; bit < loudspeakers.size(); ++bit)
        if (places >> bit & 1)
            order += loudspeakers[bit];
    const bool isWhole =
        order.size() == channels && static_cast<std::size_t>(std::popcount(places)) == channels;
    return channels > 2 && isWhole ? order : usualOrder(channels);
}

float shareOf(float weight, float sum) { return sum > 0 ? weight / sum : 0; }

}

StereoMix::StereoMix(int channels, std::uint32_t places)
{
    StereoFrame sum{0, 0};
    for (const char place : orderOf(static_cast<std::size_t>(channels), places)) {
        weights_.push_back(weightOf(place));
        sum.left += weights_.back().left;
        sum.right += weights_.back().right;
    }
    for (auto& weight : weights_)
        weight = {shareOf(weight.left, sum.left), shareOf(weight.right, sum.right)};
}

StereoMix::StereoFrame StereoMix::operator()(std::span<const float> channels) const
{
    StereoFrame mixed{0, 0};
    for (std::size_t channel = 0; channel < weights_.size(); ++channel) {
        // What is no number would make one of neither side.
        const float value = std::isfinite(channels[channel]) ? channels[channel] : 0;
        mixed.left += value * weights_[channel].left;
        mixed.right += value * weights_[channel].right;
    }
    return mixed;
}

}
