// SPDX-License-Identifier: GPL-3.0-or-later
// What the chunks of a WAV file say: how the sound is coded, and where it lies. RIFF, RIFX and RF64.
#pragma once

#include "files/input_file.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace formats
{

struct WavLayout {
    static constexpr int mpegLayerThree = 0x55;

    int coding = 0; // the format's number; of an extensible format, the one that it stands for
    int channels = 0;
    std::uint32_t places = 0; // a bit for each loudspeaker that has a channel, in their order; 0: not told
    std::int64_t begin = 0;   // byte of the sound
    std::int64_t end = 0;     // behind it, within the file
    std::int64_t sizeAt = 0;  // where the sound's size stands,
    int sizeBytes = 4;        // in so many bytes,
    bool isBigEndian = false; // in this order
    bool isUnfilled = false;  // whoever wrote the file did not fill that size in: the sound goes to the end

    // Of the sound's true size, as it is to stand there.
    std::uint8_t sizeByte(int place) const;
};

// Nothing for what is no WAV file, or has no sound.
std::optional<WavLayout> wavLayout(const std::shared_ptr<const files::InputFile>& file);

}
