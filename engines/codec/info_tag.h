// SPDX-License-Identifier: GPL-3.0-or-later
// The tag frame at the front of an MP3 file: the Xing header ("Info" for constant bit rate) and LAME's
// extension of it
// ("MP3 Info Tag", revision 1).
#pragma once

#include <cstdint>
#include <span>

namespace codec
{

// CRC-16 of the polynomial x^16 + x^15 + x^2 + 1, bits reflected, from 0.
class Checksum
{
public:
    void add(std::span<const std::uint8_t> bytes);

    // As if `length` bytes with the checksum `next` had been added.
    void add(Checksum next, std::int64_t length);

    std::uint16_t value() const { return value_; }

private:
    std::uint16_t value_ = 0;
};

// What a tag says of the stream behind it.
struct StreamFacts {
    std::int64_t frames = 0;
    std::int64_t bytes = 0;   // without the tag frame
    Checksum checksum;        // of these bytes
    std::int64_t samples = 0; // of sound, without the encoder's delay and padding
};

// Makes the encoder's tag frame tell the truth about a stream of constant bit rate that several encoders
// wrote.
void rewriteInfoTag(std::span<std::uint8_t> tag, const StreamFacts& facts);

}
