// SPDX-License-Identifier: GPL-3.0-or-later
// The frames of an MP3 file of which every byte is known, for decoding it in pieces.
#pragma once

#include "engines/formats/mpeg_header.h"
#include "files/input_file.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace formats
{

// Where sound begins and ends among the decoded samples.
struct Trim {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

// A file in which every byte is accounted for: tags around an unbroken run of like frames, of which each can
// be decoded from those shortly before it.
struct FrameTable {
    MpegHeader first;
    std::vector<std::int64_t> positions; // of each frame that sounds, and where the last one ends
    Trim trim;

    std::int64_t placeOf(std::int64_t frame) const { return positions[static_cast<std::size_t>(frame)]; }
    std::int64_t frames() const { return static_cast<std::int64_t>(positions.size()) - 1; }
};

// nullopt for any other file, and when the encoder's note at the front contradicts the frames.
std::optional<FrameTable> scanFrames(const std::shared_ptr<const files::InputFile>& file);

}
