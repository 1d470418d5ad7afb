// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/cd_sound.h"

#include "engines/disc/disc_contents.h"
#include "engines/formats/wav_file.h"

#include <algorithm>
#include <bit>

namespace disc
{

namespace
{

constexpr std::int32_t fewestSectors = 300;

// The library reads the machine's own order, which is the disc's.
static_assert(std::endian::native == std::endian::little);

bool fitsDisc(const formats::WavFile& wav)
{
    return wav.isOpen() && wav.isPcm16() && wav.channels() == 2 && wav.rate() == 44100 && wav.frames() > 0;
}

}

struct CdSound::Opened {
    Opened(Text name, std::shared_ptr<const files::InputFile> file) :
        path(std::move(name)), wav(std::move(file))
    {
    }

    Text path;
    formats::WavFile wav;
};

std::optional<CdSound> CdSound::open(const Text& path)
{
    const auto file = files::InputFile::open(path);
    if (!file)
        return std::nullopt;
    auto opened = std::make_unique<Opened>(path, file);
    if (!fitsDisc(opened->wav))
        return std::nullopt;
    return CdSound(std::move(opened));
}

CdSound::CdSound(std::unique_ptr<Opened> opened) : opened_(std::move(opened)) {}
CdSound::CdSound(CdSound&&) noexcept = default;
CdSound& CdSound::operator=(CdSound&&) noexcept = default;
CdSound::~CdSound() = default;

const Text& CdSound::path() const { return opened_->path; }

std::int64_t CdSound::frames() const { return opened_->wav.frames(); }

std::int64_t CdSound::sectors() const
{
    return std::max<std::int64_t>((frames() + sectorFrames - 1) / sectorFrames, fewestSectors);
}

void CdSound::seek(std::int64_t frame) { opened_->wav.seek(frame); }

std::size_t CdSound::read(std::span<std::byte> samples)
{
    auto* const into = reinterpret_cast<std::int16_t*>(samples.data());
    return opened_->wav.read(std::span(into, samples.size() / sizeof(std::int16_t))) * frameBytes;
}

}
