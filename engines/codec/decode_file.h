// SPDX-License-Identifier: GPL-3.0-or-later
// Turns an MP3 file into a WAV file.
#pragma once

#include "engines/codec/tasks.h"
#include "platform/part_notes.h"
#include "platform/text.h"

#include <stop_token>

namespace codec
{

// Decodes to 16-bit PCM at the MP3's own rate and channels, without the silence that its encoder noted as
// padding. The bytes are those that libmpg123 gives from the beginning to the end, whatever the number of
// `workers`. Where files of different formats were joined, the WAV has the rate of the first, two channels if
// any is stereo, and all of the sound. Fails with the reason; `output` is then as it was. Throws
// `Stopped` when asked to stop.
void decodeFile(
    const Text& input, const Text& output, unsigned workers, const Report& report = [](std::int32_t) {},
    const std::stop_token& stop = {}, PartNotes& notes = NoPartNotes::instance());

}
