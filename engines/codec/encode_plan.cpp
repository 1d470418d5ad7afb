// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_plan.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace codec
{

namespace
{

constexpr std::int64_t paddingPeriod = 49; // frames, at 44.1 and 22.05 kHz for every bit rate
constexpr std::int64_t leadIn = 24;        // frames after which an encoder has settled

// Enough chunks for many cores, few enough that little is encoded twice. An even number, for two cores. None
// is shorter than four seconds, which is more than twice the frames that it shares.
std::int64_t chunkCount(std::int64_t seconds)
{
    if (seconds <= 8)
        return 1;
    const auto pairs = [seconds](std::int64_t length) { return 2 * ((seconds + length - 1) / length); };
    return std::max(std::min<std::int64_t>(8, pairs(40)), pairs(150));
}

}

EncodeClock EncodeClock::of(int rateIn, int rateOut, int frameSamples)
{
    const bool isNear = std::abs(rateIn - rateOut) <= rateOut / 1800;
    return {isNear ? rateOut : rateIn, rateOut, frameSamples};
}

std::int64_t EncodeClock::inputSamples(std::int64_t frame) const
{
    return (frame * frameSamples * rateIn + rateOut / 2) / rateOut;
}

std::int64_t EncodeClock::outputSamples(std::int64_t inputCount) const
{
    return (inputCount * rateOut + rateIn / 2) / rateIn;
}

std::int64_t EncodeClock::startUnit() const
{
    const std::int64_t inputOfPeriod = paddingPeriod * frameSamples * rateIn;
    return paddingPeriod * (rateOut / std::gcd<std::int64_t>(rateOut, inputOfPeriod));
}

std::vector<EncodeChunk> planChunks(std::int64_t frames, const EncodeClock& clock)
{
    const std::int64_t unit = clock.startUnit();
    const std::int64_t count = chunkCount(frames * clock.frameSamples / clock.rateOut);
    std::vector<EncodeChunk> chunks{{}};
    for (std::int64_t i = 1; i < count; ++i) {
        const std::int64_t start = frames * i / count / unit * unit;
        const std::int64_t first = start + leadIn;
        if (first < chunks.back().bodyFirst())
            continue;
        chunks.back().end = first + EncodeChunk::overlap;
        chunks.push_back({start, first, 0});
    }
    chunks.back().end = EncodeChunk::toTheEnd;
    return chunks;
}

std::int64_t bytesBefore(std::int64_t frame, int kilobits, const EncodeClock& clock)
{
    const std::int64_t timesRate = std::int64_t{clock.frameSamples} / 8 * 1000 * kilobits;
    const std::int64_t rest = timesRate % clock.rateOut;
    const std::int64_t padded = frame == 0 ? 0 : ((frame - 1) * rest + clock.rateOut - 1) / clock.rateOut;
    return frame * (timesRate / clock.rateOut) + padded;
}

}
