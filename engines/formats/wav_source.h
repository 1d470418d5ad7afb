// SPDX-License-Identifier: GPL-3.0-or-later
// The sound of a WAV file, as the encoder takes it.
#pragma once

#include "engines/formats/wav_file.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace formats
{

// Samples of the left and the right channel, 32768 being full scale; mono has the left alone.
struct SoundBlock {
    std::vector<float> left;
    std::vector<float> right;

    std::size_t frames() const { return left.size(); }
};

class WavSource
{
public:
    // Any WAV, extensible WAV or RF64 that libsndfile reads. Fails with 57 and the reason.
    explicit WavSource(const std::shared_ptr<const files::InputFile>& file);

    int rate() const { return wav_.rate(); }                      // hertz
    int channels() const { return std::min(wav_.channels(), 2); } // more are mixed down
    std::int64_t frames() const { return frames_; }

    void seek(std::int64_t frame); // fails with 57

    // Fills `block` with the next `frames` frames, fewer only at the end. What a damaged file announces and
    // does not hold is silence. Fails with 57 when the file cannot be read.
    void read(SoundBlock& block, std::size_t frames);

private:
    void fill(std::size_t count);
    void split(SoundBlock& block) const;
    std::size_t width() const { return static_cast<std::size_t>(wav_.channels()); }

    WavFile wav_;
    StereoMix mix_{2};
    std::int64_t frames_ = 0;
    std::int64_t at_ = 0;
    std::vector<float> interleaved_;
};

}
