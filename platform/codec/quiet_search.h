// Finds where a border between two encoders disturbs least.
#pragma once

#include "platform/codec/encode_plan.h"
#include "platform/codec/wav_source.h"

#include <vector>

namespace codec
{

class QuietSearch
{
public:
    QuietSearch(WavSource& source, const EncodeClock& clock) : source_(source), clock_(clock) {}

    // The one of `count` frames from `first` on with the least power in it and the frames behind it; the
    // first of equals.
    std::int64_t operator()(std::int64_t first, std::int64_t count);

private:
    std::vector<double> framePowers(std::int64_t first, std::int64_t count);

    WavSource& source_;
    EncodeClock clock_;
    SoundBlock block_;
};

}
