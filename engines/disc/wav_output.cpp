// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/wav_output.h"

#include "platform/failure.h"

#include <limits>

namespace disc
{

namespace
{

constexpr std::int64_t mostSoundBytes =
    std::numeric_limits<std::uint32_t>::max() - sizeof(formats::WavHeader);

}

WavOutput::WavOutput(const Text& path, PartNotes& notes) : output_(files::outputNamed("It", path, notes)) {}

void WavOutput::append(std::span<const std::byte> samples)
{
    const auto count = static_cast<std::int64_t>(samples.size());
    if (soundBytes_ + count > mostSoundBytes)
        throw Failure(Trouble::diskFull);
    run_.write(samples);
    soundBytes_ += count;
}

void WavOutput::finish()
{
    complete();
    output_.force();
    output_.takePlace();
}

void WavOutput::breakOff()
{
    complete();
    output_.takeFreePlace();
}

void WavOutput::complete()
{
    run_.finish();
    blocks_.finish();
    const auto header = formats::wavHeader(44100, 2, soundBytes_);
    output_.write(std::as_bytes(std::span(header)), 0);
    output_.startForce();
}

}
