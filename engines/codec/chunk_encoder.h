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

class ChunkEncoder
{
public:
    ChunkEncoder(const EncodeJob& job, const EncodeChunk& chunk);

    // Fails with the reason. Throws `Stopped` when asked to stop.
    EncodedChunk run(const std::stop_token& stop);

private:
    void leadIn(const std::stop_token& stop);
    void encodeUntil(std::int64_t frame, const std::stop_token& stop);
    void encodeToTheEnd(const std::stop_token& stop);
    bool encodeBlock(std::size_t samples, const std::stop_token& stop);
    void advance();
    std::size_t blockBefore(std::int64_t frame) const;
    std::int64_t frame() const { return chunk_.start + encoder_.frames(); }
    void write();
    std::span<const std::uint8_t> takeUntil(std::int64_t place, std::span<const std::uint8_t>& music);

    const EncodeJob& job_;
    EncodeChunk chunk_;
    formats::WavSource source_;
    LameEncoder encoder_;
    formats::SoundBlock block_;
    Mp3Bytes out_;
    std::size_t tagInOut_; // bytes at the front of `out_` that are the room for the tag
    std::int64_t at_;      // in the file, of what is written next
    std::int64_t bodyAt_;
    std::int64_t tailAt_;
    EncodedChunk result_;
};

}
