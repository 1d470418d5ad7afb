// SPDX-License-Identifier: GPL-3.0-or-later
// The sound of a WAV file, as the encoder takes it.
#pragma once

#include "files/input_file.h"

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
    ~WavSource();

    int rate() const;     // hertz
    int channels() const; // 1 or 2: more are mixed down
    std::int64_t frames() const;

    void seek(std::int64_t frame); // fails with 57

    // Fills `block` with the next `frames` frames, fewer only at the end. What a damaged file announces and
    // does not hold is silence. Fails with 57 when the file cannot be read.
    void read(SoundBlock& block, std::size_t frames);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}
