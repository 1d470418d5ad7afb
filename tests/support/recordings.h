// SPDX-License-Identifier: GPL-3.0-or-later
// What a recording holds.
#pragma once

#include "tests/support/sound_server.h"

#include <algorithm>

// From the first sound to the last, silence between them included.
inline StereoFrames trimmed(StereoFrames frames)
{
    const auto sounds = [](const StereoFrame& frame) { return !frame.isSilent(); };
    frames.erase(std::find_if(frames.rbegin(), frames.rend(), sounds).base(), frames.end());
    frames.erase(frames.begin(), std::find_if(frames.begin(), frames.end(), sounds));
    return frames;
}

// Without its silent frames. A machine that is too busy to be in time leaves gaps; what is lost, doubled or
// changed shows all the same, where the sound itself has no silent frame.
inline StereoFrames sounding(StereoFrames frames)
{
    std::erase_if(frames, [](const StereoFrame& frame) { return frame.isSilent(); });
    return frames;
}

// Waits until the recording has been silent for a while behind all that came so far.
inline StereoFrames recordedToTheEnd(const Recorder& recorder)
{
    constexpr std::size_t quiet = 4410;
    waitUntil([&] {
        const auto frames = recorder.frames();
        return frames.size() > quiet &&
               std::all_of(frames.end() - quiet, frames.end(),
                           [](const StereoFrame& frame) { return frame.isSilent(); });
    });
    return recorder.frames();
}

// Between any two samples at the same place.
inline int largestDifference(const StereoFrames& one, const StereoFrames& other)
{
    int largest = 0;
    for (std::size_t n = 0; n < std::min(one.size(), other.size()); ++n)
        largest = std::max(
            {largest, std::abs(one[n].left - other[n].left), std::abs(one[n].right - other[n].right)});
    return largest;
}
