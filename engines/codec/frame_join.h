// SPDX-License-Identifier: GPL-3.0-or-later
// Joins the frames of two encoders in a stretch that both have encoded.
#pragma once

#include "engines/codec/lame_encoder.h"

#include <span>

namespace codec
{

// `before` and `after` hold the same frames of a constant bit rate as two encoders made them, and the first
// frame of `after` leans on none before it. Gives those of `before` up to one from which on those of `after`
// follow. That one begins its main data (main_data_begin, ISO/IEC 11172-3, 2.4.1.7) where the frame in
// `before` does, or as little later as can be: its encoder goes on with the reservoir that the other had.
// Fails with 57 for anything else.
Mp3Bytes joinFrames(std::span<const std::uint8_t> before, std::span<const std::uint8_t> after);

}
