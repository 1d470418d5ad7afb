#include "platform/codec/encode_file.h"

#include "platform/codec/chunk_encoder.h"
#include "platform/codec/quiet_search.h"
#include "platform/failure.h"
#include "platform/system/folders.h"

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

StreamFacts factsOf(const std::vector<EncodedChunk>& chunks)
{
    StreamFacts facts;
    for (const auto& chunk : chunks) {
        facts.frames += chunk.frames;
        facts.bytes += chunk.bytes;
        facts.checksum.add(chunk.checksum, chunk.bytes);
    }
    return facts;
}

// One file's conversion.
class Encoding
{
public:
    Encoding(const SourceFile& file, const Mp3Settings& settings, OutputFile& part, const Report& report) :
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
        const auto plan = planChunks(frames, job_.clock, QuietSearch(source_, job_.clock));
        const auto chunks = encode(plan, workers, stop);
        requireFit(chunks, plan);
        writeTag(chunks);
    }

private:
    std::vector<EncodedChunk> encode(const std::vector<EncodeChunk>& plan, unsigned workers,
                                     const std::stop_token& stop)
    {
        std::vector<EncodedChunk> chunks(plan.size());
        runTasks(workers, plan.size(), stop, [&](std::size_t i, const std::stop_token& stopChunk) {
            chunks[i] = ChunkEncoder(job_, plan[i]).run(stopChunk);
        });
        return chunks;
    }

    // Every chunk fills its place to the byte, or the file is not to be trusted.
    void requireFit(const std::vector<EncodedChunk>& chunks, const std::vector<EncodeChunk>& plan) const
    {
        const auto place = [this](std::int64_t frame) {
            return bytesBefore(frame, kilobits(job_.settings), job_.clock);
        };
        for (std::size_t i = 0; i < chunks.size(); ++i) {
            const std::int64_t end = plan[i].first + chunks[i].frames;
            const bool isWhole = plan[i].isLast() || plan[i].end == end;
            if (!isWhole || chunks[i].bytes != place(end) - place(plan[i].first))
                throw Failure{57, "The encoder left gaps."};
        }
    }

    void writeTag(const std::vector<EncodedChunk>& chunks)
    {
        auto tag = chunks.back().tag;
        if (tag.empty())
            return;
        auto facts = factsOf(chunks);
        facts.samples = job_.clock.outputSamples(source_.frames());
        rewriteInfoTag(tag, facts);
        job_.part.write(std::as_bytes(std::span(tag)), 0);
    }

    WavSource source_;
    Progress progress_;
    EncodeJob job_;
};

}

void encodeFile(const Text& input, const Text& output, const Mp3Settings& settings, unsigned workers,
                const Report& report, const std::stop_token& stop, PartNotes& notes)
{
    if (isSameFile(input, output))
        throw Failure{75, "The output would replace its own source."};
    const SourceFile file(input);
    OutputFile part(output, notes);
    Encoding(file, settings, part, report).run(workers, stop);
    part.finish();
}

}
