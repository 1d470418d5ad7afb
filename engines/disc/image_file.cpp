// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/image_file.h"

#include "engines/disc/cd_sound.h"
#include "files/input_file.h"

#include <algorithm>

namespace disc
{

namespace
{

class SectorFile final : public ImageFile
{
public:
    SectorFile(std::shared_ptr<const files::InputFile> file, bool swapped) :
        file_(std::move(file)), swapped_(swapped)
    {
    }

    std::int64_t bytes() const override { return file_->size(); }

    std::size_t read(std::span<std::byte> into, std::int64_t offset) override
    {
        const auto got = file_->read(into.data(), into.size(), offset);
        const auto filled = static_cast<std::size_t>(std::max<std::ptrdiff_t>(got, 0));
        for (std::size_t i = 0; swapped_ && i + 1 < filled; i += 2)
            std::swap(into[i], into[i + 1]);
        return filled;
    }

private:
    std::shared_ptr<const files::InputFile> file_;
    bool swapped_;
};

class WaveFile final : public ImageFile
{
public:
    explicit WaveFile(CdSound sound) : sound_(std::move(sound)) {}

    std::int64_t bytes() const override { return sound_.frames() * CdSound::frameBytes; }

    std::size_t read(std::span<std::byte> into, std::int64_t offset) override
    {
        sound_.seek(offset / CdSound::frameBytes);
        return sound_.read(into);
    }

private:
    CdSound sound_;
};

}

std::unique_ptr<ImageFile> ImageFile::open(const Text& path, CueSheet::Kind kind)
{
    if (kind == CueSheet::Kind::wave) {
        auto sound = CdSound::open(path);
        return sound ? std::make_unique<WaveFile>(std::move(*sound)) : nullptr;
    }
    auto file = files::InputFile::open(path);
    return file ? std::make_unique<SectorFile>(std::move(file), kind == CueSheet::Kind::motorola) : nullptr;
}

}
