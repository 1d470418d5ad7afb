// SPDX-License-Identifier: GPL-3.0-or-later
// One of the files that a disc image is made of.
#pragma once

#include "engines/disc/cue_sheet.h"

#include <cstddef>
#include <memory>
#include <span>

namespace disc
{

class ImageFile
{
public:
    // nullptr for what is no readable regular file, or no WAV file fit for a disc where the sheet says so.
    static std::unique_ptr<ImageFile> open(const Text& path, CueSheet::Kind kind);

    virtual ~ImageFile() = default;

    virtual std::int64_t bytes() const = 0; // of sectors or of samples, as it is now

    // Fills `into` from `offset` on, samples little-endian. Returns the bytes that it filled: fewer only at
    // the end, or where the file cannot be read.
    virtual std::size_t read(std::span<std::byte> into, std::int64_t offset) = 0;
};

}
