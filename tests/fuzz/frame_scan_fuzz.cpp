// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a file holds, looking for its frames ends, and the places that are found lie in order within it.
#include "engines/formats/frame_scan.h"
#include "engines/formats/mp3_probe.h"
#include "tests/fuzz/input.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const FuzzedFile fuzzed(bytes, size);
    const auto file = files::InputFile::openOrFail(fuzzed.path());
    if (const auto facts = formats::probeMp3(file)) {
        require(facts->samples() >= 0 && facts->bitsPerSecond >= 0);
        const int channels = formats::channelsAt(facts->place, file);
        require(channels == 1 || channels == 2);
    }
    const auto table = formats::scanFrames(file);
    if (!table)
        return 0;
    const auto& places = table->positions;
    require(!places.empty() && places.front() >= 0 && places.back() <= file->size());
    require(std::adjacent_find(places.begin(), places.end(), std::greater_equal<>()) == places.end());
    require(table->trim.begin >= 0 && table->trim.end <= table->frames() * table->first.samples);
    return 0;
}
