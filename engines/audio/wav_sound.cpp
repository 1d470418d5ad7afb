#include "engines/audio/opened_sound.h"

#include "engines/formats/stereo_mix.h"
#include "files/input_file.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sndfile.h>
#include <string_view>
#include <vector>

namespace
{

constexpr int wavTypes[] = {SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64};

// The engine that asks for it counts in frames of MPEG.
constexpr int stepFrames = 1152;

std::int16_t toSample(float value)
{
    const float scaled = std::clamp(value * 32768, -32768.0F, 32767.0F);
    return static_cast<std::int16_t>(std::lrint(scaled));
}

// The library takes many more kinds of file, and has to read far into some to say what they are.
bool hasWavHeader(const InputFile& file)
{
    std::array<char, 12> bytes{};
    file.read(bytes.data(), bytes.size(), 0);
    const std::string_view start(bytes.data(), bytes.size());
    const bool isRiff = start.starts_with("RIFF") || start.starts_with("RIFX") || start.starts_with("RF64");
    return isRiff && start.substr(8) == "WAVE";
}

class WavSource final : public PcmSource
{
public:
    explicit WavSource(std::shared_ptr<const InputFile> file) : file_(std::move(file)), window_(file_)
    {
        open();
        rate_ = info_.samplerate;
    }
    ~WavSource() override { sf_close(sound_); }

    bool isOpen() const { return sound_ != nullptr; }
    std::int64_t frames() const { return info_.frames; }
    std::int32_t bitsPerSecond() const;

    std::size_t read(std::span<std::int16_t> samples) override;
    int rate() const override { return rate_; }
    void seek(std::int64_t frame) override;

private:
    static sf_count_t length(void* self) { return static_cast<WavSource*>(self)->file_->size(); }
    static sf_count_t seekBytes(sf_count_t offset, int whence, void* self);
    static sf_count_t readBytes(void* into, sf_count_t count, void* self);
    static sf_count_t tellBytes(void* self) { return static_cast<WavSource*>(self)->at_; }

    void open();
    bool isFloat() const;
    std::size_t readStereo(std::span<std::int16_t> samples);
    std::size_t readMixed(std::span<std::int16_t> samples);

    std::shared_ptr<const InputFile> file_;
    FileWindow window_;
    std::int64_t at_ = 0; // byte
    SNDFILE* sound_ = nullptr;
    SF_INFO info_{};
    int rate_ = 0;
    std::optional<StereoMix> mix_;
    std::vector<float> unmixed_;
};

void WavSource::open()
{
    SF_VIRTUAL_IO io{length, seekBytes, readBytes, nullptr, tellBytes};
    at_ = 0;
    info_ = {};
    sound_ = sf_open_virtual(&io, SFM_READ, &info_, this);
    const bool isWav =
        sound_ != nullptr && std::ranges::count(wavTypes, info_.format & SF_FORMAT_TYPEMASK) > 0;
    if (isWav && info_.samplerate > 0) {
        mix_.emplace(info_.channels);
        return;
    }
    sf_close(sound_);
    sound_ = nullptr;
}

sf_count_t WavSource::seekBytes(sf_count_t offset, int whence, void* self)
{
    auto& source = *static_cast<WavSource*>(self);
    const std::int64_t from = whence == SEEK_SET ? 0 : (whence == SEEK_END ? length(self) : source.at_);
    source.at_ = std::max<std::int64_t>(from + offset, 0);
    return source.at_;
}

sf_count_t WavSource::readBytes(void* into, sf_count_t count, void* self)
{
    auto& source = *static_cast<WavSource*>(self);
    const auto got = source.window_.read(into, static_cast<std::size_t>(count), source.at_);
    source.at_ += got;
    return got;
}

bool WavSource::isFloat() const
{
    const int coding = info_.format & SF_FORMAT_SUBMASK;
    return coding == SF_FORMAT_FLOAT || coding == SF_FORMAT_DOUBLE;
}

std::int32_t WavSource::bitsPerSecond() const
{
    const double seconds = static_cast<double>(info_.frames) / info_.samplerate;
    const int stated = sf_current_byterate(sound_);
    const double bytes = stated > 0 || seconds == 0 ? stated : static_cast<double>(file_->size()) / seconds;
    return static_cast<std::int32_t>(std::clamp(bytes * 8, 0.0, 2147483647.0));
}

std::size_t WavSource::read(std::span<std::int16_t> samples)
{
    const bool isReady = info_.channels == 2 && !isFloat();
    return isReady ? readStereo(samples) : readMixed(samples);
}

std::size_t WavSource::readStereo(std::span<std::int16_t> samples)
{
    const auto wanted = static_cast<sf_count_t>(samples.size() / 2);
    return static_cast<std::size_t>(std::max<sf_count_t>(sf_readf_short(sound_, samples.data(), wanted), 0));
}

std::size_t WavSource::readMixed(std::span<std::int16_t> samples)
{
    const auto channels = static_cast<std::size_t>(info_.channels);
    const std::size_t wanted = samples.size() / 2;
    unmixed_.resize(wanted * channels);
    const auto got = sf_readf_float(sound_, unmixed_.data(), static_cast<sf_count_t>(wanted));
    const auto frames = static_cast<std::size_t>(std::max<sf_count_t>(got, 0));
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const auto mixed = (*mix_)(std::span(unmixed_).subspan(frame * channels, channels));
        samples[frame * 2] = toSample(mixed.left);
        samples[frame * 2 + 1] = toSample(mixed.right);
    }
    return frames;
}

// Some codings cannot be entered in the middle: they are read again from their start.
void WavSource::seek(std::int64_t frame)
{
    if (sf_seek(sound_, frame, SEEK_SET) == frame)
        return;
    sf_close(sound_);
    open();
    std::array<std::int16_t, 2048> passed;
    for (std::int64_t left = frame; sound_ != nullptr && left > 0;) {
        const auto part = std::min<std::int64_t>(left, passed.size() / 2);
        const auto got = read(std::span(passed).first(static_cast<std::size_t>(part) * 2));
        if (got == 0)
            return;
        left -= static_cast<std::int64_t>(got);
    }
}

}

std::optional<OpenedSound> openWavSound(const Text& path)
{
    const auto file = InputFile::open(path);
    if (file == nullptr || !hasWavHeader(*file))
        return std::nullopt;
    auto source = std::make_shared<WavSource>(file);
    if (!source->isOpen())
        return std::nullopt;
    return OpenedSound{source, Timeline({{source->frames(), source->rate()}}), source->bitsPerSecond(),
                       stepFrames};
}
