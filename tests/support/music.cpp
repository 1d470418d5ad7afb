// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/music.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <utility>

namespace
{

class Musician
{
public:
    Musician(int rate, unsigned seed) : rate_(rate), random_(seed) {}

    // The next sample of the left and the right channel, full scale being 1.
    std::pair<double, double> next()
    {
        if (at_++ % (rate_ / 4) == 0)
            strike();
        double left = 0;
        double right = 0;
        for (auto& tone : tones_) {
            const double sine = tone.turn();
            const double value =
                0.15 * sine * (2 - sine * sine * 4 / 3); // with a third of its third harmonic
            left += value * tone.place;
            right += value * (1 - tone.place);
        }
        drum_ *= 1 - 30.0 / rate_;
        const double hit = drum_ * noise();
        const bool isSilent = at_ / rate_ % 37 == 36;
        return isSilent ? std::pair{0.0, 0.0}
                        : std::pair{left + 0.8 * hit, right + 0.6 * hit + 0.002 * noise()};
    }

private:
    // A decaying oscillation, turned on from sample to sample: the sines for minutes of music would take as
    // long as encoding it.
    struct Tone {
        double sine, cosine, stepSine, stepCosine, place;

        double turn()
        {
            const double turned = sine * stepCosine + cosine * stepSine;
            cosine = cosine * stepCosine - sine * stepSine;
            return sine = turned;
        }
    };

    double noise() { return static_cast<double>(random_()) / 1073741823.5 - 1; }

    void strike()
    {
        if (tones_.size() > 9)
            tones_.erase(tones_.begin(), tones_.begin() + 3);
        for (int i = 0; i < 3; ++i) {
            const double hertz = 110 * std::pow(2, random_() % 36 / 12.0);
            const double step = 2 * std::numbers::pi * hertz / rate_;
            const double decay = 1 - 2.5 / rate_;
            tones_.push_back({0, 1, decay * std::sin(step), decay * std::cos(step), 0.5 + 0.4 * noise()});
        }
        drum_ = 0.4;
    }

    int rate_;
    std::minstd_rand random_;
    std::vector<Tone> tones_;
    double drum_ = 0;
    std::int64_t at_ = 0;
};

std::int16_t sampleOf(double value)
{
    return static_cast<std::int16_t>(std::lrint(std::clamp(value, -1.0, 0.99996) * 32768 * 0.75));
}

}

Pcm music(std::int64_t frames, int rate, int channels, unsigned seed)
{
    Pcm pcm{rate, channels, {}};
    pcm.samples.reserve(static_cast<std::size_t>(frames * channels));
    Musician musician(rate, seed);
    for (std::int64_t i = 0; i < frames; ++i) {
        const auto [left, right] = musician.next();
        pcm.samples.push_back(sampleOf(left));
        for (int channel = 1; channel < channels; ++channel)
            pcm.samples.push_back(sampleOf(right));
    }
    return pcm;
}
