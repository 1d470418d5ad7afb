// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/wav_output.h"

#include "engines/formats/wav_header.h"
#include "platform/failure.h"

#include <limits>

namespace disc
{

namespace
{

constexpr std::int64_t headerBytes = sizeof(formats::WavHeader);
constexpr std::int64_t mostSoundBytes = std::numeric_limits<std::uint32_t>::max() - headerBytes;

formats::WavHeader headerOf(std::int64_t soundBytes) { return formats::wavHeader(44100, 2, soundBytes); }

}

WavOutput::WavOutput(const Text& path, PartNotes& notes) : output_(files::outputNamed("It", path, notes))
{
    const auto header = headerOf(0);
    output_.append(std::as_bytes(std::span(header)));
}

void WavOutput::append(std::span<const std::byte> samples)
{
    if (soundBytes() + static_cast<std::int64_t>(samples.size()) > mostSoundBytes)
        throw Failure(Trouble::diskFull);
    output_.append(samples);
}

std::int64_t WavOutput::soundBytes() const { return output_.bytes() - headerBytes; }

void WavOutput::finish()
{
    completeHeader();
    output_.force();
    output_.takePlace();
}

void WavOutput::breakOff()
{
    completeHeader();
    output_.takeFreePlace();
}

void WavOutput::completeHeader()
{
    const auto header = headerOf(soundBytes());
    output_.write(std::as_bytes(std::span(header)), 0);
    output_.startForce();
}

}
