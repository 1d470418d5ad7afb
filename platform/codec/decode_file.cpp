#include "platform/codec/decode_file.h"

#include "platform/codec/piece_decoder.h"
#include "platform/codec/wav_header.h"
#include "platform/failure.h"
#include "platform/system/folders.h"
#include "platform/system/output_file.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

namespace codec
{

namespace
{

constexpr std::int64_t framesInCut = 1024;
constexpr std::size_t bufferedSamples = 1 << 19;

// Gathers samples for large writes.
class SampleWriter
{
public:
    SampleWriter(OutputFile& to, std::int64_t at) : to_(to), at_(at) { buffer_.reserve(bufferedSamples); }

    void write(std::span<const std::int16_t> samples)
    {
        if (buffer_.size() + samples.size() > bufferedSamples)
            flush();
        buffer_.insert(buffer_.end(), samples.begin(), samples.end());
    }

    // The place in the file behind what was written.
    std::int64_t flush()
    {
        to_.write(std::as_bytes(std::span(buffer_)), at_);
        at_ += static_cast<std::int64_t>(buffer_.size() * sizeof(std::int16_t));
        buffer_.clear();
        return at_;
    }

private:
    OutputFile& to_;
    std::int64_t at_;
    std::vector<std::int16_t> buffer_;
};

void writeHeader(OutputFile& part, const SoundFormat& format, std::int64_t end)
{
    const auto header =
        wavHeader(format.rate, format.channels, end - static_cast<std::int64_t>(sizeof(WavHeader)));
    part.write(std::as_bytes(std::span(header)), 0);
}

// The file from its beginning, read in blocks.
class WholeFile final : public ByteSource
{
public:
    explicit WholeFile(const SourceFile& file) : file_(file), block_(1 << 16) {}

    std::int64_t position() const { return at_; }
    bool failed() const { return failed_; }

    std::int64_t read(void* bytes, std::size_t count) override
    {
        try {
            if (at_ < begin_ || at_ >= begin_ + filled_)
                fill();
        } catch (const Failure&) {
            failed_ = true;
            return -1;
        }
        const auto given = std::min(static_cast<std::int64_t>(count), begin_ + filled_ - at_);
        std::copy_n(block_.begin() + (at_ - begin_), given, static_cast<std::uint8_t*>(bytes));
        at_ += given;
        return given;
    }

    std::int64_t seek(std::int64_t offset, int whence) override
    {
        const std::int64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? at_ : file_.size();
        if (base + offset < 0)
            return -1;
        return at_ = base + offset;
    }

private:
    void fill()
    {
        begin_ = at_;
        filled_ = static_cast<std::int64_t>(file_.read(block_.data(), block_.size(), at_));
    }

    const SourceFile& file_;
    std::vector<std::uint8_t> block_;
    std::int64_t begin_ = 0;
    std::int64_t filled_ = 0;
    std::int64_t at_ = 0;
    bool failed_ = false;
};

void decodeFromStart(const SourceFile& file, OutputFile& part, Progress& progress,
                     const std::stop_token& stop)
{
    WholeFile source(file);
    FrameDecoder decoder(source, FrameDecoder::Kind::File);
    SampleWriter writer(part, sizeof(WavHeader));
    std::span<const std::int16_t> samples;
    std::int64_t known = 0;
    while (decoder.next(samples)) {
        throwIfStopped(stop);
        writer.write(samples);
        progress.add(source.position() - known);
        known = source.position();
    }
    if (source.failed())
        throw failure(57);
    if (decoder.format().rate == 0)
        throw Failure{57, "There is no sound in this file."};
    writeHeader(part, decoder.format(), writer.flush());
}

// One file decoded in pieces. A piece that cannot be decoded as it would be from the start spoils the whole.
class PiecewiseDecoding
{
public:
    PiecewiseDecoding(const SourceFile& file, const FrameTable& table, OutputFile& part, Progress& progress) :
        file_(file), table_(table), part_(part), progress_(progress)
    {
    }

    // False when it must be done from the start instead.
    bool run(unsigned workers, const std::stop_token& stop)
    {
        const std::int64_t pieces = (table_.frames() + framesInCut - 1) / framesInCut;
        runTasks(workers, static_cast<std::size_t>(pieces), stop,
                 [this](std::size_t piece, const std::stop_token& stopPiece) {
                     if (!isSpoilt_ && !decode(static_cast<std::int64_t>(piece) * framesInCut, stopPiece))
                         isSpoilt_ = true;
                 });
        if (isSpoilt_)
            return false;
        writeHeader(part_, {table_.first.rate, table_.first.channels}, placeOf(table_.trim.end));
        return true;
    }

private:
    bool decode(std::int64_t begin, const std::stop_token& stop)
    {
        const std::int64_t end = std::min(begin + framesInCut, table_.frames());
        SampleWriter writer(part_, placeOf(std::max(begin * table_.first.samples, table_.trim.begin)));
        PieceDecoder decoder(file_, table_, begin, end);
        std::span<const std::int16_t> samples;
        for (std::int64_t frame = begin; frame < end; ++frame) {
            throwIfStopped(stop);
            if (isSpoilt_ || !decoder.next(samples))
                return false;
            writer.write(trimmed(samples, frame));
        }
        writer.flush();
        progress_.add(table_.positions[end] - table_.positions[begin]);
        return true;
    }

    std::span<const std::int16_t> trimmed(std::span<const std::int16_t> samples, std::int64_t frame) const
    {
        const std::int64_t first = frame * table_.first.samples;
        const std::int64_t last = first + table_.first.samples;
        const auto from = std::clamp(table_.trim.begin, first, last) - first;
        const auto to = std::clamp(table_.trim.end, first, last) - first;
        const int channels = table_.first.channels;
        return samples.subspan(static_cast<std::size_t>(from * channels),
                               static_cast<std::size_t>(std::max<std::int64_t>(0, to - from) * channels));
    }

    std::int64_t placeOf(std::int64_t sample) const
    {
        const std::int64_t frameBytes = table_.first.channels * std::int64_t{sizeof(std::int16_t)};
        return static_cast<std::int64_t>(sizeof(WavHeader)) + (sample - table_.trim.begin) * frameBytes;
    }

    const SourceFile& file_;
    const FrameTable& table_;
    OutputFile& part_;
    Progress& progress_;
    std::atomic<bool> isSpoilt_ = false;
};

// False when the file must be decoded from its start; nothing is left then.
bool decodeInPieces(const SourceFile& file, const Text& output, unsigned workers, Progress& progress,
                    const std::stop_token& stop, PartNotes& notes)
{
    const auto table = scanFrames(file);
    if (!table || table->frames() < 2)
        return false;
    OutputFile part(output, notes);
    if (!PiecewiseDecoding(file, *table, part, progress).run(workers, stop))
        return false;
    part.finish();
    return true;
}

}

void decodeFile(const Text& input, const Text& output, unsigned workers, const Report& report,
                const std::stop_token& stop, PartNotes& notes)
{
    if (isSameFile(input, output))
        throw Failure{75, "The output would replace its own source."};
    const SourceFile file(input);
    if (!isMp3(file))
        throw Failure{57, "This is not an MP3 file."};
    Progress progress(file.size(), report);
    if (decodeInPieces(file, output, workers, progress, stop, notes))
        return;
    OutputFile part(output, notes);
    decodeFromStart(file, part, progress, stop);
    part.finish();
}

}
