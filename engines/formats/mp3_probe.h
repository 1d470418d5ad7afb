// SPDX-License-Identifier: GPL-3.0-or-later
// Finds out whether a file is MPEG Layer III, where its sound lies, and how long it is.
#pragma once

#include "files/input_file.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace formats
{

// Where the frames of an MP3 file lie.
struct Mp3Place {
    std::int64_t start = 0; // byte behind the tags before the sound
    std::int64_t begin = 0; // byte of the first frame, an Info frame included
    std::int64_t end = 0;   // byte behind the last frame; tags behind it are left out
    bool isWrapped = false; // as the sound of a WAV file, which has no room for an MP3 file's tags
    bool isShort = false;   // a few frames fill it, which a decoder must take without looking further
};

// Nothing for a file that is no MP3 file: another container, or one in which no four frames of Layer III
// follow each other within 64 KB behind the leading tags, nor fewer fill it. Only its two ends are read.
std::optional<Mp3Place> findMp3(const std::shared_ptr<const files::InputFile>& file);

// Frames of one sample rate that follow each other. Most files are one stretch; joined files may be several.
struct Mp3Stretch {
    std::int64_t frames = 0;
    int rate = 0;    // hertz
    int samples = 0; // in one frame
};

struct Mp3Facts {
    Mp3Place place;

    std::vector<Mp3Stretch> stretches; // at least one; an Info frame is not counted

    // Samples of encoder delay and padding, with the decoder's own delay, that belong to no sound; 0 without
    // an Info frame, and 0 where the file is joined from several rates.
    std::int64_t skipAtStart = 0;
    std::int64_t skipAtEnd = 0;

    std::int32_t bitsPerSecond = 0; // the file's own when constant, otherwise its average in whole thousands
    bool isWhole = true;            // the frames account for every byte of their place

    std::int64_t samples() const; // that are left to hear
};

// 2 where any of the frames there is stereo: those in mono are its two channels alike. All are looked at.
int channelsAt(const Mp3Place& place, const std::shared_ptr<const files::InputFile>& file);

// Nothing for a file that is no MP3 file. The length comes from an Info frame whose byte count agrees
// with the file; without one, every frame header is read.
std::optional<Mp3Facts> probeMp3(const std::shared_ptr<const files::InputFile>& file);

}
