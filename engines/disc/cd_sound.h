// SPDX-License-Identifier: GPL-3.0-or-later
// A WAV file that is fit for an audio CD: PCM of 16 bits, 2 channels, 44100 Hz. It stays readable when the
// file is renamed or removed.
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace disc
{

class CdSound
{
public:
    static constexpr std::int64_t frameBytes = 4;

    // Nothing for whatever is no such file, or holds not one frame.
    static std::optional<CdSound> open(const Text& path);

    CdSound(CdSound&&) noexcept;
    CdSound& operator=(CdSound&&) noexcept;
    ~CdSound();

    const Text& path() const; // that it was opened under
    std::int64_t frames() const;
    std::int64_t sectors() const; // that it fills on a disc: whole ones, and at least 300 (IEC 60908)

    void seek(std::int64_t frame);

    // Fills `samples`, whole frames, from the current frame on with 16-bit little-endian samples, left and
    // right in turn. Returns the bytes that it filled: fewer only at the end, or where the file cannot be
    // read.
    std::size_t read(std::span<std::byte> samples);

private:
    struct Opened;
    explicit CdSound(std::unique_ptr<Opened> opened);

    std::unique_ptr<Opened> opened_;
};

}
