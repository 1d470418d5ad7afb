// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/decode_file.h"

#include "engines/codec/piece_decoder.h"
#include "engines/formats/mp3_probe.h"
#include "engines/formats/wav_header.h"
#include "files/block_writer.h"
#include "files/folders.h"
#include "platform/failure.h"

#include <algorithm>
#include <atomic>

namespace codec
{

namespace
{

// Frames of one piece: 7 to 107 seconds of music.
constexpr std::int64_t smallestPiece = 256;
constexpr std::int64_t largestPiece = 4096;

constexpr std::int64_t framesInReport = 128;

using Input = std::shared_ptr<const files::InputFile>;

void writeHeader(files::OutputFile& part, int rate, int channels, std::int64_t end)
{
    const auto header = formats::wavHeader(rate, channels, end - std::int64_t{sizeof(formats::WavHeader)});
    part.write(std::as_bytes(std::span(header)), 0);
}

// Everything that `decoder` has. Gives the place in the file behind it.
std::int64_t decodeAll(formats::Mpg123Decoder& decoder, files::OutputFile& part, Progress& progress,
                       const std::stop_token& stop)
{
    files::BlockWriter blocks(part, 1);
    files::BlockWriter::Run run(blocks, sizeof(formats::WavHeader));
    std::span<const std::int16_t> samples;
    for (std::int64_t known = 0; decoder.next(samples); known = decoder.position()) {
        throwIfStopped(stop);
        run.write(std::as_bytes(samples));
        progress.add(decoder.position() - known);
    }
    if (decoder.hasFailed())
        throw files::brokenOff();
    const auto end = run.finish();
    blocks.finish();
    return end;
}

// From behind the tags on: where the first frame is, the decoder finds out by its own rule.
void decodeFromStart(const Input& file, const formats::Mp3Place& place, files::OutputFile& part,
                     Progress& progress, const std::stop_token& stop)
{
    const int channels = formats::channelsAt(place, file);
    formats::Mpg123Decoder decoder({file, place.start, place.end},
                                   {.channels = channels, .keepsRate = true, .isShort = place.isShort});
    if (!decoder.isOpen())
        throw decoder.hasFailed() ? files::brokenOff()
                                  : Failure{Trouble::deviceInputOutput, "There is no sound in this file."};
    const auto end = decodeAll(decoder, part, progress, stop);
    writeHeader(part, decoder.rate(), channels, end);
}

// Where the pieces of a file begin and the last one ends. Large ones first, for the frames before each are
// decoded for nothing; small ones last, so that no core waits long for another.
std::vector<std::int64_t> pieceBorders(std::int64_t frames, unsigned workers)
{
    std::vector<std::int64_t> borders{0};
    while (borders.back() < frames) {
        const auto share = (frames - borders.back()) / (2 * std::max(1u, workers));
        const auto piece = std::clamp(share, smallestPiece, largestPiece) / windowTurn;
        borders.push_back(std::min(frames, borders.back() + piece * windowTurn));
    }
    return borders;
}

// One file decoded in pieces. A piece that cannot be decoded as it would be from the start spoils the whole.
class PiecewiseDecoding
{
public:
    PiecewiseDecoding(const Input& file, const formats::FrameTable& table, files::OutputFile& part,
                      Progress& progress) :
        file_(file),
        table_(table), part_(part), progress_(progress)
    {
    }

    // False when it must be done from the start instead.
    bool run(unsigned workers, const std::stop_token& stop)
    {
        const auto end = placeOf(table_.trim.end);
        part_.makeRoom(end);
        const auto borders = pieceBorders(table_.frames(), workers);
        files::BlockWriter blocks(part_, workers);
        runTasks(workers, borders.size() - 1, stop, [&](std::size_t piece, const std::stop_token& stopPiece) {
            if (!isSpoilt_ && !decode(borders[piece], borders[piece + 1], blocks, stopPiece))
                isSpoilt_ = true;
        });
        if (isSpoilt_)
            return false;
        blocks.finish();
        writeHeader(part_, table_.first.rate, table_.first.channels, end);
        return true;
    }

private:
    bool decode(std::int64_t begin, std::int64_t end, files::BlockWriter& blocks, const std::stop_token& stop)
    {
        files::BlockWriter::Run run(blocks,
                                    placeOf(std::max(begin * table_.first.samples, table_.trim.begin)));
        PieceDecoder decoder(file_, table_, begin, end);
        std::span<const std::int16_t> samples;
        std::int64_t known = begin;
        for (std::int64_t frame = begin; frame < end; ++frame) {
            throwIfStopped(stop);
            if (isSpoilt_ || !decoder.next(samples))
                return false;
            run.write(std::as_bytes(trimmed(samples, frame)));
            if (const auto done = frame + 1; done == end || done - known == framesInReport) {
                progress_.add(table_.placeOf(done) - table_.placeOf(known));
                known = done;
            }
        }
        run.finish();
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
        return static_cast<std::int64_t>(sizeof(formats::WavHeader)) +
               (sample - table_.trim.begin) * frameBytes;
    }

    const Input& file_;
    const formats::FrameTable& table_;
    files::OutputFile& part_;
    Progress& progress_;
    std::atomic<bool> isSpoilt_ = false;
};

// False when the file must be decoded from its start; nothing is left then.
bool decodeInPieces(const Input& file, const Text& output, unsigned workers, Progress& progress,
                    const std::stop_token& stop, PartNotes& notes)
{
    const auto table = formats::scanFrames(file);
    if (!table || table->frames() < 2)
        return false;
    auto part = files::outputNamed(output, output, notes);
    if (!PiecewiseDecoding(file, *table, part, progress).run(workers, stop))
        return false;
    part.finish();
    return true;
}

}

void decodeFile(const Text& input, const Text& output, unsigned workers, const Report& report,
                const std::stop_token& stop, PartNotes& notes)
{
    if (files::isSameFile(input, output))
        throw Failure{Trouble::pathOrFileAccess, "The output would replace its own source."};
    const auto file = files::InputFile::openOrFail(input);
    const auto place = formats::findMp3(file);
    if (!place)
        throw Failure{Trouble::deviceInputOutput, "This is not an MP3 file."};
    Progress progress(file->size(), report);
    if (decodeInPieces(file, output, workers, progress, stop, notes))
        return;
    auto part = files::outputNamed(output, output, notes);
    decodeFromStart(file, *place, part, progress, stop);
    part.finish();
}

}
