// SPDX-License-Identifier: GPL-3.0-or-later
// Turns a WAV file into an MP3 file.
#pragma once

#include "engines/codec/mp3_settings.h"
#include "engines/codec/tasks.h"
#include "platform/part_notes.h"
#include "platform/text.h"

#include <stop_token>

namespace codec
{

// Encodes at a constant bit rate; mono stays mono, more than two channels are mixed down. The bytes do not
// depend on the number of `workers`. Fails with the reason; `output` is then as it was. Throws `Stopped` when
// asked to stop.
void encodeFile(
    const Text& input, const Text& output, const Mp3Settings& settings, unsigned workers,
    const Report& report = [](std::int32_t) {}, const std::stop_token& stop = {},
    PartNotes& notes = NoPartNotes::instance());

}
