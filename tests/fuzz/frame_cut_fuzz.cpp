// SPDX-License-Identifier: GPL-3.0-or-later
// Frames cut out of a file sound, bit for bit, as they do when it is decoded from its start, unless one of
// all its frames breaks off in the decoder.
#include "engines/codec/piece_decoder.h"
#include "engines/formats/mp3_probe.h"
#include "platform/failure.h"
#include "tests/fuzz/input.h"

#include <algorithm>
#include <optional>

using namespace codec;
using namespace formats;

namespace
{

using Input = std::shared_ptr<const files::InputFile>;
using Samples = std::vector<std::int16_t>;

// nullopt when a frame may have broken off.
std::optional<Samples> decoded(const Input& file, const FrameTable& table, std::int64_t begin,
                               std::int64_t end)
{
    PieceDecoder decoder(file, table, begin, end);
    Samples all;
    std::span<const std::int16_t> samples;
    for (std::int64_t frame = begin; frame < end; ++frame) {
        if (!decoder.next(samples))
            return std::nullopt;
        all.insert(all.end(), samples.begin(), samples.end());
    }
    return all;
}

// Without the tags, as the program decodes: libmpg123 judges their length in its own way.
Samples decodedFromStart(const Input& file, int channels)
{
    const auto place = findMp3(file);
    Mpg123Decoder decoder({file, place->start, place->end},
                          {.channels = channels, .keepsRate = true, .isShort = place->isShort});
    Samples all;
    for (std::span<const std::int16_t> samples; decoder.next(samples);)
        all.insert(all.end(), samples.begin(), samples.end());
    return all;
}

void compare(const Input& file, const FrameTable& table)
{
    const auto all = decoded(file, table, 0, table.frames());
    if (!all)
        return;
    const auto channels = table.first.channels;
    require(Samples(all->begin() + table.trim.begin * channels, all->begin() + table.trim.end * channels) ==
            decodedFromStart(file, channels));
    for (std::int64_t begin = 8; begin < table.frames(); begin += 8) {
        const std::int64_t end = std::min(begin + 8, table.frames());
        const auto cut = decoded(file, table, begin, end);
        const auto inFrame = table.first.samples * channels;
        require(cut && std::equal(cut->begin(), cut->end(), all->begin() + begin * inFrame,
                                  all->begin() + end * inFrame));
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const FuzzedFile fuzzed(bytes, size);
    const auto file = files::InputFile::openOrFail(fuzzed.path());
    const auto table = scanFrames(file);
    if (table && table->frames() > 1)
        succeeds([&] { compare(file, *table); });
    return 0;
}
