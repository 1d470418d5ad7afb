// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/chunk_encoder.h"

#include <algorithm>

namespace codec
{

namespace
{

constexpr std::size_t bufferedBytes = 1 << 16;

void append(Mp3Bytes& to, std::span<const std::uint8_t> bytes)
{
    to.insert(to.end(), bytes.begin(), bytes.end());
}

}

ChunkEncoder::ChunkEncoder(const EncodeJob& job, const EncodeChunk& chunk) :
    job_(job), chunk_(chunk), source_(job.file), encoder_(job.settings, source_.rate(), source_.channels()),
    tagInOut_(static_cast<std::size_t>(job.tagBytes)), at_(job.placeOf(chunk.first)),
    bodyAt_(job.placeOf(chunk.bodyFirst())),
    tailAt_(chunk.isLast() ? INT64_MAX : job.placeOf(chunk.bodyEnd()))
{
    source_.seek(job.clock.inputSamples(chunk.start));
}

EncodedChunk ChunkEncoder::run(const std::stop_token& stop)
{
    leadIn(stop);
    if (chunk_.isLast())
        encodeToTheEnd(stop);
    else
        encodeUntil(chunk_.end, stop);
    write();
    result_.frames = frame() - chunk_.first;
    return std::move(result_);
}

// The frames before the chunk's own teach the encoder the sound; the chunk before this one has them. With the
// flush the own ones begin without a reservoir, which the shared ones then fill as any encoder would.
void ChunkEncoder::leadIn(const std::stop_token& stop)
{
    if (chunk_.isFirst())
        return;
    while (frame() < chunk_.first && encodeBlock(blockBefore(chunk_.first), stop))
        ;
    encoder_.flushAtFrame(out_);
    out_.clear();
    tagInOut_ = 0;
}

void ChunkEncoder::encodeUntil(std::int64_t target, const std::stop_token& stop)
{
    while (frame() < target && encodeBlock(blockBefore(target), stop))
        advance();
    encoder_.flushAtFrame(out_);
}

void ChunkEncoder::encodeToTheEnd(const std::stop_token& stop)
{
    // A single frame is too little for some players to know an MP3 file; the tag tells the true length.
    if (source_.frames() == 0)
        encoder_.encode({{0}, {0}}, out_);
    while (encodeBlock(static_cast<std::size_t>(job_.clock.frameSamples), stop))
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

bool ChunkEncoder::encodeBlock(std::size_t samples, const std::stop_token& stop)
{
    throwIfStopped(stop);
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

void ChunkEncoder::write()
{
    std::span<const std::uint8_t> music = std::span(out_).subspan(tagInOut_);
    result_.bytes += static_cast<std::int64_t>(music.size());

    append(result_.head, takeUntil(bodyAt_, music));
    const auto bodyPlace = at_;
    const auto body = takeUntil(tailAt_, music);
    job_.part.write(std::as_bytes(body), bodyPlace);
    result_.checksum.add(body);
    append(result_.tail, music);
    at_ += static_cast<std::int64_t>(music.size());

    out_.clear();
    tagInOut_ = 0;
}

// Takes from the front of `music`, which belongs at `at_`, what comes before `place`.
std::span<const std::uint8_t> ChunkEncoder::takeUntil(std::int64_t place,
                                                      std::span<const std::uint8_t>& music)
{
    const auto left = static_cast<std::int64_t>(music.size());
    const auto count = std::clamp<std::int64_t>(place - at_, 0, left);
    const auto taken = music.first(static_cast<std::size_t>(count));
    music = music.subspan(taken.size());
    at_ += count;
    return taken;
}

}
