// SPDX-License-Identifier: GPL-3.0-or-later
// A track's WAV file in the making: 16-bit stereo sound of 44100 Hz.
#pragma once

#include "files/output_file.h"

namespace disc
{

class WavOutput
{
public:
    // All fail with 57, 61, 70, 75 or 76; without `finish` nothing is left behind.
    WavOutput(const Text& path, PartNotes& notes);

    void append(std::span<const std::byte> samples); // 16-bit little-endian, left and right in turn
    std::int64_t soundBytes() const;                 // appended so far

    // What was appended has the file's name. A disk that is slow is waited for where the name has an old
    // file, which a power cut must not take, too.
    void finish();

    // The same for a track that was broken off, but an older file is worth more than a fragment, and stays.
    void breakOff();

private:
    void completeHeader();

    files::OutputFile output_;
};

}
