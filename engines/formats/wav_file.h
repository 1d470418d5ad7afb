// SPDX-License-Identifier: GPL-3.0-or-later
// A WAV file as libsndfile reads it: extensible WAV, RIFX and RF64 as well, also with a size that was never
// filled in. For one thread at a time.
#pragma once

#include "engines/formats/stereo_mix.h"
#include "files/input_file.h"
#include "platform/text.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace formats
{

class WavFile
{
public:
    explicit WavFile(std::shared_ptr<const files::InputFile> file);
    ~WavFile();
    WavFile(const WavFile&) = delete;
    WavFile& operator=(const WavFile&) = delete;

    bool isOpen() const;
    const Text& reason() const; // why it is not

    int rate() const; // hertz
    int channels() const;
    std::int64_t frames() const; // as announced
    std::int32_t bitsPerSecond() const;
    bool isPcm16() const;
    bool isFloat() const; // its samples may be anything
    StereoMix stereoMix() const;

    // False where the sound cannot be entered, and nothing more can be read then. Some codings are decoded
    // from their start to the place.
    bool seek(std::int64_t frame);

    // Whole frames, the channels in turn; returns how many, fewer at the end of the sound, or of what is
    // there.
    std::size_t read(std::span<std::int16_t> samples);
    std::size_t read(std::span<float> samples); // 1 is full scale

    // True when the file could not be read, or has become shorter since it was opened.
    bool hasFailed() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}
