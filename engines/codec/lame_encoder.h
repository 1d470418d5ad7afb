// SPDX-License-Identifier: GPL-3.0-or-later
// One libmp3lame encoder.
#pragma once

#include "engines/codec/encode_plan.h"
#include "engines/codec/mp3_settings.h"
#include "engines/formats/wav_source.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace codec
{

using Mp3Bytes = std::vector<std::uint8_t>;

class LameEncoder
{
public:
    // `settings` make the output, `rate` and `channels` come in. Fails with 57.
    LameEncoder(const Mp3Settings& settings, int rate, int channels);
    ~LameEncoder();

    EncodeClock clock() const;
    std::int64_t frames() const; // encoded so far

    // Each appends what is ready to `out`. Before the first frame comes the place for the info tag, if it has
    // one.
    void encode(const formats::SoundBlock& block, Mp3Bytes& out);
    void flushAtFrame(Mp3Bytes& out); // the frames so far stand alone: the next one leans on none before it
    void finish(Mp3Bytes& out);

    // The tag frame as libmp3lame fills it; after `finish`. Empty where frames are too small to hold one.
    Mp3Bytes infoTag() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}
