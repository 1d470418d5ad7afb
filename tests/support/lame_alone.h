// SPDX-License-Identifier: GPL-3.0-or-later
// What libmp3lame makes of a sound when nothing stands between it and the file.
#pragma once

#include "tests/support/music.h"

#include <lame/lame.h>

#include <algorithm>
#include <string>
#include <vector>

// The plainest use of the library: one encoder from the first sample to the last, then the tag.
inline std::string lameAlone(const Pcm& pcm, int kilobits, int rateOut)
{
    lame_t lame = lame_init();
    lame_set_num_channels(lame, pcm.channels);
    lame_set_in_samplerate(lame, pcm.rate);
    lame_set_out_samplerate(lame, rateOut);
    lame_set_brate(lame, kilobits);
    lame_init_params(lame);

    std::vector<unsigned char> mp3(pcm.samples.size() * 2 + 20000);
    std::vector<short> left;
    std::vector<short> right;
    for (std::int64_t i = 0; i < pcm.frames(); ++i) {
        left.push_back(pcm.samples[static_cast<std::size_t>(i * pcm.channels)]);
        right.push_back(pcm.samples[static_cast<std::size_t>(i * pcm.channels + pcm.channels - 1)]);
    }
    int used = 0;
    const int block = lame_get_framesize(lame);
    for (std::size_t at = 0; at < left.size(); at += static_cast<std::size_t>(block)) {
        const int count = std::min(block, static_cast<int>(left.size() - at));
        used += lame_encode_buffer(lame, &left[at], &right[at], count, mp3.data() + used, 0);
    }
    used += lame_encode_flush(lame, mp3.data() + used, 0);
    std::vector<unsigned char> tag(2880);
    const auto tagBytes = lame_get_lametag_frame(lame, tag.data(), tag.size());
    std::copy_n(tag.begin(), tagBytes, mp3.begin());
    lame_close(lame);
    return {mp3.begin(), mp3.begin() + used};
}
