// SPDX-License-Identifier: GPL-3.0-or-later
// Sound that keeps an encoder busy: chords, drums, noise, and silence in between.
#pragma once

#include <cstdint>
#include <vector>

// 16-bit samples, channels interleaved.
struct Pcm {
    int rate = 44100;
    int channels = 2;
    std::vector<std::int16_t> samples;

    std::int64_t frames() const { return static_cast<std::int64_t>(samples.size()) / channels; }
};

Pcm music(std::int64_t frames, int rate = 44100, int channels = 2, unsigned seed = 1);
