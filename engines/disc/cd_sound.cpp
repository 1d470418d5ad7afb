#include "engines/disc/cd_sound.h"

#include "engines/disc/disc_contents.h"
#include "files/descriptor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <fcntl.h>
#include <sndfile.h>
#include <string_view>
#include <sys/stat.h>

namespace
{

constexpr std::int32_t fewestSectors = 300;

// The library reads the machine's own order, which is the disc's.
static_assert(std::endian::native == std::endian::little);

bool isRegular(const Descriptor& file)
{
    struct stat status;
    return fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode);
}

// The library takes many more kinds of file, and has to read far into some to say what they are.
bool hasWavHeader(const Descriptor& file)
{
    std::array<char, 12> bytes{};
    if (pread(file.number(), bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        return false;
    const std::string_view start(bytes.data(), bytes.size());
    const bool isRiff = start.starts_with("RIFF") || start.starts_with("RIFX") || start.starts_with("RF64");
    return isRiff && start.substr(8) == "WAVE";
}

bool fitsDisc(const SF_INFO& info)
{
    constexpr int wavTypes[] = {SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64};
    return std::ranges::count(wavTypes, info.format & SF_FORMAT_TYPEMASK) > 0 &&
           (info.format & SF_FORMAT_SUBMASK) == SF_FORMAT_PCM_16 && info.channels == 2 &&
           info.samplerate == 44100 && info.frames > 0;
}

}

struct CdSound::Opened {
    Opened(Text name, Descriptor wav) : path(std::move(name)), file(std::move(wav)) {}
    ~Opened() { sf_close(sound); }

    Text path;
    Descriptor file;
    SF_INFO info{};
    SNDFILE* sound = sf_open_fd(file.number(), SFM_READ, &info, SF_FALSE);
};

// A pipe or a device is not waited for.
std::optional<CdSound> CdSound::open(const Text& path)
{
    Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file || !isRegular(file) || !hasWavHeader(file))
        return std::nullopt;
    auto opened = std::make_unique<Opened>(path, std::move(file));
    if (opened->sound == nullptr || !fitsDisc(opened->info))
        return std::nullopt;
    return CdSound(std::move(opened));
}

CdSound::CdSound(std::unique_ptr<Opened> opened) : opened_(std::move(opened)) {}
CdSound::CdSound(CdSound&&) noexcept = default;
CdSound& CdSound::operator=(CdSound&&) noexcept = default;
CdSound::~CdSound() = default;

const Text& CdSound::path() const { return opened_->path; }

std::int64_t CdSound::frames() const { return opened_->info.frames; }

std::int64_t CdSound::sectors() const
{
    return std::max<std::int64_t>((frames() + sectorFrames - 1) / sectorFrames, fewestSectors);
}

void CdSound::seek(std::int64_t frame) { sf_seek(opened_->sound, frame, SEEK_SET); }

std::size_t CdSound::read(std::span<std::byte> samples)
{
    auto* const into = reinterpret_cast<short*>(samples.data());
    const auto got =
        sf_readf_short(opened_->sound, into, static_cast<sf_count_t>(samples.size() / frameBytes));
    return static_cast<std::size_t>(std::max<sf_count_t>(got, 0)) * frameBytes;
}
