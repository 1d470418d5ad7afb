// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/encode_file.h"

#include "engines/codec/chunk_encoder.h"
#include "engines/codec/frame_join.h"
#include "files/folders.h"
#include "platform/failure.h"

#include <algorithm>

namespace codec
{

namespace
{

// Before any frame is ready, an encoder gives the room for its tag.
std::int64_t infoTagBytes(LameEncoder& fresh)
{
    Mp3Bytes out;
    fresh.encode({{0}, {0}}, out);
    return static_cast<std::int64_t>(out.size());
}

// One file's conversion.
class Encoding
{
public:
    Encoding(const std::shared_ptr<const files::InputFile>& file, const Mp3Settings& settings,
             files::OutputFile& part, const Report& report) :
        source_(file),
        progress_(std::max<std::int64_t>(1, source_.frames()), report), job_{file, settings, {},
                                                                             0,    part,     progress_}
    {
        LameEncoder encoder(settings, source_.rate(), source_.channels());
        job_.clock = encoder.clock();
        job_.tagBytes = infoTagBytes(encoder);
    }

    void run(unsigned workers, const std::stop_token& stop)
    {
        const auto frames = job_.clock.outputSamples(source_.frames()) / job_.clock.frameSamples;
        const auto plan = planChunks(frames, job_.clock);
        const auto chunks = encode(plan, workers, stop);
        requireFit(chunks, plan);
        writeTag(chunks.back().tag, join(chunks, plan));
        progress_.add(source_.frames()); // what rounding left out at the joins
    }

private:
    std::vector<EncodedChunk> encode(const std::vector<EncodeChunk>& plan, unsigned workers,
                                     const std::stop_token& stop)
    {
        std::vector<EncodedChunk> chunks(plan.size());
        runTasks(workers, plan.size(), stop, [&](std::size_t i, const std::stop_token& stopChunk) {
            chunks[i] = encodeChunk(job_, plan[i], stopChunk);
        });
        return chunks;
    }

    // Every chunk fills its place to the byte, or the file is not to be trusted.
    void requireFit(const std::vector<EncodedChunk>& chunks, const std::vector<EncodeChunk>& plan) const
    {
        for (std::size_t i = 0; i < chunks.size(); ++i) {
            const std::int64_t end = plan[i].first + chunks[i].frames;
            const bool isWhole = plan[i].isLast() || plan[i].end == end;
            if (!isWhole || chunks[i].bytes != job_.placeOf(end) - job_.placeOf(plan[i].first))
                throw Failure{Trouble::deviceInputOutput, "The encoder left gaps."};
        }
    }

    // Writes the frames that chunks share, and tells what the stream has become.
    StreamFacts join(const std::vector<EncodedChunk>& chunks, const std::vector<EncodeChunk>& plan)
    {
        StreamFacts facts;
        for (std::size_t i = 0; i < chunks.size(); ++i) {
            const auto& chunk = chunks[i];
            if (i > 0) {
                const auto joined = joinFrames(chunks[i - 1].tail, chunk.head);
                job_.part.write(std::as_bytes(std::span(joined)), job_.placeOf(plan[i].first));
                facts.checksum.add(joined);
            }
            facts.checksum.add(chunk.checksum, chunk.bytes - std::ssize(chunk.head) - std::ssize(chunk.tail));
        }
        facts.frames = plan.back().first + chunks.back().frames;
        facts.bytes = job_.placeOf(facts.frames) - job_.placeOf(0);
        facts.samples = job_.clock.outputSamples(source_.frames());
        return facts;
    }

    void writeTag(Mp3Bytes tag, const StreamFacts& facts)
    {
        if (tag.empty())
            return;
        rewriteInfoTag(tag, facts);
        job_.part.write(std::as_bytes(std::span(tag)), 0);
    }

    formats::WavSource source_;
    Progress progress_;
    EncodeJob job_;
};

}

void encodeFile(const Text& input, const Text& output, const Mp3Settings& settings, unsigned workers,
                const Report& report, const std::stop_token& stop, PartNotes& notes)
{
    if (files::isSameFile(input, output))
        throw Failure{Trouble::pathOrFileAccess, "The output would replace its own source."};
    const auto file = files::InputFile::openOrFail(input);
    auto part = files::outputNamed(output, output, notes);
    Encoding(file, settings, part, report).run(workers, stop);
    part.finish();
}

}
