// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes WAV files to MP3 files, one job at a time, each with the paths and settings it was opened with.
#pragma once

#include "platform/mp3_enc.h"
#include "platform/part_notes.h"
#include "platform/post.h"
#include "platform/shell.h"

#include <memory>

namespace codec
{

// The events come through `post`; a failed conversion is told to the desktop through `shell`. Both, and
// `notes`, outlive the encoder.
std::unique_ptr<Mp3Enc> makeEncodeJobs(Post& post, Shell& shell, PartNotes& notes);

}
