// SPDX-License-Identifier: GPL-3.0-or-later
// The side information of a layer III frame (ISO/IEC 11172-3, 2.4.1.7; 13818-3, 2.4.1.7).
#pragma once

#include "engines/formats/mpeg_header.h"

#include <cstdint>

namespace formats
{

// How many bytes before the frame its main data begin.
int mainDataBegin(const std::uint8_t* frame, const MpegHeader& header);

// The bits of sound that the frame claims to have in its main data.
int soundBits(const std::uint8_t* frame, const MpegHeader& header);

// No sound, but the main data of this frame and `reservoir` bytes before it are handed on to the next one.
void silence(std::uint8_t* frame, const MpegHeader& header, int reservoir);

// Of the last granule that has values, those become as loud as can be, and all before it as quiet. What a
// decoder finds wrong in the frame, it finds all the same.
void keepLastSound(std::uint8_t* frame, const MpegHeader& header);

// False for side information that no encoder writes: reserved values, more values than a granule has, or
// sound that would reach beyond the frame.
bool isPossible(const std::uint8_t* frame, const MpegHeader& header);

// True for a frame of silence that any decoder takes: it has no values at all.
bool isEmpty(const std::uint8_t* frame, const MpegHeader& header);

}
