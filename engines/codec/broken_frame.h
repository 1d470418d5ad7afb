// SPDX-License-Identifier: GPL-3.0-or-later
// Finds the frames that a decoder breaks off.
#pragma once

#include "engines/formats/frame_scan.h"

namespace codec
{

// For a frame that decoded to silence at its end, as one does that broke off: false when it surely did not. A
// frame without values cannot, one that counts on a reservoir before the file's first frame is silent by
// itself, and of a quiet one something is heard at full gain. Fails with 57.
bool mayHaveBrokenOff(const formats::SourceFile& file, const formats::FrameTable& table, std::int64_t frame);

}
