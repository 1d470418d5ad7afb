// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/image_file.h"

#include "engines/disc/cd_sound.h"
#include "files/descriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace disc
{

namespace
{

class SectorFile final : public ImageFile
{
public:
    SectorFile(files::Descriptor file, bool swapped) : file_(std::move(file)), swapped_(swapped) {}

    std::int64_t bytes() const override
    {
        struct stat status;
        return fstat(file_.number(), &status) == 0 ? status.st_size : 0;
    }

    std::size_t read(std::span<std::byte> into, std::int64_t offset) override
    {
        const std::size_t filled = fill(into, offset);
        for (std::size_t i = 0; swapped_ && i + 1 < filled; i += 2)
            std::swap(into[i], into[i + 1]);
        return filled;
    }

private:
    std::size_t fill(std::span<std::byte> into, std::int64_t offset) const
    {
        std::size_t filled = 0;
        while (filled < into.size()) {
            const auto got = pread(file_.number(), into.data() + filled, into.size() - filled,
                                   offset + static_cast<std::int64_t>(filled));
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                break;
            filled += static_cast<std::size_t>(got);
        }
        return filled;
    }

    files::Descriptor file_;
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

// A pipe or a device is not waited for.
std::unique_ptr<ImageFile> ImageFile::open(const Text& path, CueSheet::Kind kind)
{
    if (kind == CueSheet::Kind::wave) {
        auto sound = CdSound::open(path);
        return sound ? std::make_unique<WaveFile>(std::move(*sound)) : nullptr;
    }
    files::Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (!file || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return nullptr;
    return std::make_unique<SectorFile>(std::move(file), kind == CueSheet::Kind::motorola);
}

}
