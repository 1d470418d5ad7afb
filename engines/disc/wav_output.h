// SPDX-License-Identifier: GPL-3.0-or-later
// A track's WAV file in the making: 16-bit stereo sound of 44100 Hz.
#pragma once

#include "engines/formats/wav_header.h"
#include "files/block_writer.h"

namespace disc
{

class WavOutput
{
public:
    // All fail with 57, 61, 70, 75 or 76; without `finish` nothing is left behind.
    WavOutput(const Text& path, PartNotes& notes);

    void append(std::span<const std::byte> samples); // 16-bit little-endian, left and right in turn
    std::int64_t soundBytes() const { return soundBytes_; }

    // What was appended has the file's name, once the disk has it: a power cut must not take an old file for
    // nothing.
    void finish();

    // The same for a track that was broken off, but an older file is worth more than a fragment, and stays.
    void breakOff();

private:
    void complete();

    files::OutputFile output_;
    std::int64_t soundBytes_ = 0;
    files::BlockWriter blocks_{output_, 1};
    files::BlockWriter::Run run_{blocks_, sizeof(formats::WavHeader)};
};

}
