// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/chunk_encoder.h"

#include <algorithm>

namespace codec
{

namespace
{

constexpr std::size_t bufferedBytes = 1 << 16;

using Bytes = std::span<const std::uint8_t>;

void append(Mp3Bytes& to, Bytes bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }

class ChunkEncoder
{
public:
    ChunkEncoder(const EncodeJob& job, const EncodeChunk& chunk, const std::stop_token& stop) :
        job_(job), chunk_(chunk), stop_(stop)
    {
        source_.seek(job.clock.inputSamples(chunk.start));
    }

    EncodedChunk run()
    {
        leadIn();
        if (chunk_.isLast())
            encodeToTheEnd();
        else
            encodeUntil(chunk_.end);
        write();
        result_.frames = frame() - chunk_.first;
        return std::move(result_);
    }

private:
    // Bytes by where they belong: to the chunk before as well, to this one alone, to the one behind as well.
    struct Split {
        Bytes head;
        Bytes body;
        Bytes tail;
    };

    void leadIn();
    void encodeUntil(std::int64_t target);
    void encodeToTheEnd();
    bool encodeBlock(std::size_t samples);
    void advance();
    std::size_t blockBefore(std::int64_t target) const;
    std::int64_t frame() const { return chunk_.start + encoder_.frames(); }
    Split split(Bytes music, std::int64_t at) const;
    void write();

    const EncodeJob& job_;
    const EncodeChunk& chunk_;
    const std::stop_token& stop_;
    formats::WavSource source_{job_.file};
    LameEncoder encoder_{job_.settings, source_.rate(), source_.channels()};
    formats::SoundBlock block_;
    Mp3Bytes out_;
    std::size_t tagInOut_ = static_cast<std::size_t>(job_.tagBytes); // at the front of `out_`, its room
    EncodedChunk result_;
};

// The frames before the chunk's own teach the encoder the sound; the chunk before this one has them. With the
// flush the own ones begin without a reservoir, which the shared ones then fill as any encoder would.
void ChunkEncoder::leadIn()
{
    if (chunk_.isFirst())
        return;
    while (frame() < chunk_.first && encodeBlock(blockBefore(chunk_.first)))
        ;
    encoder_.flushAtFrame(out_);
    out_.clear();
    tagInOut_ = 0;
}

void ChunkEncoder::encodeUntil(std::int64_t target)
{
    while (frame() < target && encodeBlock(blockBefore(target)))
        advance();
    encoder_.flushAtFrame(out_);
}

void ChunkEncoder::encodeToTheEnd()
{
    // A single frame is too little for some players to know an MP3 file; the tag tells the true length.
    if (source_.frames() == 0)
        encoder_.encode({{0}, {0}}, out_);
    while (encodeBlock(static_cast<std::size_t>(job_.clock.frameSamples)))
        advance();
    encoder_.finish(out_);
    result_.tag = encoder_.infoTag();
}

// Close to a border, small blocks: none may yield two frames, of which the second would lie beyond it.
std::size_t ChunkEncoder::blockBefore(std::int64_t target) const
{
    const auto& clock = job_.clock;
    if (target - frame() > clock.rateOut / clock.rateIn + 2)
        return static_cast<std::size_t>(clock.frameSamples);
    return static_cast<std::size_t>(std::max<std::int64_t>(1, clock.inputSamples(1) / 2));
}

bool ChunkEncoder::encodeBlock(std::size_t samples)
{
    throwIfStopped(stop_);
    source_.read(block_, samples);
    if (block_.frames() == 0)
        return false;
    encoder_.encode(block_, out_);
    return true;
}

void ChunkEncoder::advance()
{
    if (frame() > chunk_.bodyFirst())
        job_.progress.add(static_cast<std::int64_t>(block_.frames()));
    if (out_.size() > bufferedBytes)
        write();
}

// `music` lies at `at` in the file.
ChunkEncoder::Split ChunkEncoder::split(Bytes music, std::int64_t at) const
{
    const auto bytesBeforeFrame = [&](std::int64_t frame) {
        const auto bytes = std::clamp<std::int64_t>(job_.placeOf(frame) - at, 0, std::ssize(music));
        return static_cast<std::size_t>(bytes);
    };
    const auto body = bytesBeforeFrame(chunk_.bodyFirst());
    const auto tail = chunk_.isLast() ? music.size() : bytesBeforeFrame(chunk_.bodyEnd());
    return {music.first(body), music.subspan(body, tail - body), music.subspan(tail)};
}

void ChunkEncoder::write()
{
    const auto music = Bytes(out_).subspan(tagInOut_);
    const auto at = job_.placeOf(chunk_.first) + result_.bytes;
    const auto [head, body, tail] = split(music, at);
    append(result_.head, head);
    job_.part.write(std::as_bytes(body), at + std::ssize(head));
    result_.checksum.add(body);
    append(result_.tail, tail);
    result_.bytes += std::ssize(music);
    out_.clear();
    tagInOut_ = 0;
}

}

EncodedChunk encodeChunk(const EncodeJob& job, const EncodeChunk& chunk, const std::stop_token& stop)
{
    return ChunkEncoder(job, chunk, stop).run();
}

}
