// SPDX-License-Identifier: GPL-3.0-or-later
// Encodes one chunk of a sound into its place in the MP3 file.
#pragma once

#include "engines/codec/info_tag.h"
#include "engines/codec/lame_encoder.h"
#include "engines/codec/tasks.h"
#include "files/output_file.h"

namespace codec
{

// What the chunks of one file share.
struct EncodeJob {
    std::shared_ptr<const files::InputFile> file;
    Mp3Settings settings;
    EncodeClock clock;
    std::int64_t tagBytes; // room for the info tag at the front; 0: the file has none
    files::OutputFile& part;
    Progress& progress; // counts input samples

    std::int64_t placeOf(std::int64_t frame) const
    {
        return tagBytes + bytesBefore(frame, kilobits(settings), clock);
    }
};

// What a chunk became.
struct EncodedChunk {
    std::int64_t frames = 0;
    std::int64_t bytes = 0;
    Mp3Bytes head;     // the frames that it shares with the chunk before,
    Mp3Bytes tail;     // and with the one behind: not in the file yet
    Checksum checksum; // of the bytes between, which are
    Mp3Bytes tag;      // of the last chunk: as its encoder fills it
};

// Fails with the reason. Throws `Stopped` when asked to stop.
EncodedChunk encodeChunk(const EncodeJob& job, const EncodeChunk& chunk, const std::stop_token& stop);

}
