// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a file holds, it is refused or read to its end, and no sample exceeds full scale.
#include "engines/formats/wav_source.h"
#include "platform/failure.h"
#include "tests/fuzz/input.h"

#include <cmath>

namespace
{

void readSome(formats::WavSource& source)
{
    formats::SoundBlock block;
    for (int i = 0; i < 20; ++i) {
        source.read(block, 1000);
        for (const float sample : block.left)
            require(std::abs(sample) <= 32768.5f);
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const FuzzedFile fuzzed(bytes, size);
    const auto file = files::InputFile::openOrFail(fuzzed.path());
    succeeds([&] {
        formats::WavSource source(file);
        require(source.channels() >= 1 && source.channels() <= 2 && source.frames() >= 0);
        readSome(source);
        source.seek(source.frames() / 2);
        readSome(source);
    });
    return 0;
}
