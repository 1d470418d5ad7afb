#include "engines/formats/wav_source.h"

#include "engines/formats/mix_down.h"
#include "engines/formats/wav_layout.h"
#include "platform/failure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sndfile.h>

namespace formats
{

namespace
{

constexpr float fullScale = 32768;
constexpr int maxChannels = 64;
constexpr int minRate = 1000;
constexpr int maxRate = 768000;

// No WAV coding packs more. A damaged header may announce hours in a few bytes.
constexpr std::int64_t maxFramesInByte = 8;

struct Closer {
    void operator()(SNDFILE* sound) const { sf_close(sound); }
};

// A file as libsndfile reads it, with a position of its own. A size that was never filled in reads as the
// largest one, which is taken for "up to the end of the file".
struct Reader {
    explicit Reader(const SourceFile& from) : file(from), layout(wavLayout(from.file())) {}

    const SourceFile& file;
    std::optional<WavLayout> layout;
    std::int64_t at = 0;
    bool failed = false;

    void fillSize(char* bytes, std::int64_t count) const
    {
        if (!layout || !layout->isUnfilled)
            return;
        for (std::int64_t i = 0; i < layout->sizeBytes; ++i)
            if (const auto to = layout->sizeAt + i; to >= at && to < at + count)
                bytes[to - at] = static_cast<char>(layout->sizeByte(static_cast<int>(i)));
    }
};

sf_count_t length(void* reader) { return static_cast<Reader*>(reader)->file.size(); }

sf_count_t seekTo(sf_count_t offset, int whence, void* userData)
{
    auto& reader = *static_cast<Reader*>(userData);
    const std::int64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? reader.at : reader.file.size();
    reader.at = std::max<std::int64_t>(0, base + offset);
    return reader.at;
}

sf_count_t readOn(void* bytes, sf_count_t count, void* userData)
{
    auto& reader = *static_cast<Reader*>(userData);
    try {
        const auto got =
            static_cast<std::int64_t>(reader.file.read(bytes, static_cast<std::size_t>(count), reader.at));
        reader.fillSize(static_cast<char*>(bytes), got);
        reader.at += got;
        return got;
    } catch (const Failure&) {
        reader.failed = true;
        return 0;
    }
}

sf_count_t writeNothing(const void*, sf_count_t, void*) { return 0; }

sf_count_t tell(void* reader) { return static_cast<Reader*>(reader)->at; }

Failure notWav(const char* reason) { return Failure{57, reason}; }

bool isWav(const SF_INFO& info)
{
    const int type = info.format & SF_FORMAT_TYPEMASK;
    return type == SF_FORMAT_WAV || type == SF_FORMAT_WAVEX || type == SF_FORMAT_RF64;
}

// A float file may hold anything; the encoder must not see what is no number, nor more than full scale.
float limited(float sample)
{
    if (std::abs(sample) <= fullScale)
        return sample;
    return std::isnan(sample) ? 0 : std::copysign(fullScale, sample);
}

}

struct WavSource::Parts {
    explicit Parts(const SourceFile& file) : reader(file) {}

    Reader reader;
    SF_INFO info{};
    std::unique_ptr<SNDFILE, Closer> sound;
    std::vector<MixWeights> weights;
    std::vector<float> interleaved;
    std::int64_t frames = 0;
    std::int64_t at = 0;

    // What libsndfile does not give, though announced, stays silent.
    void fill(std::size_t count)
    {
        interleaved.assign(count * weights.size(), 0);
        sf_readf_float(sound.get(), interleaved.data(), static_cast<sf_count_t>(count));
        if (reader.failed)
            throw failure(57);
        for (float& sample : interleaved)
            sample = limited(sample * fullScale);
    }

    void split(SoundBlock& block) const
    {
        const bool isMono = weights.size() == 1;
        const float* frame = interleaved.data();
        for (std::size_t i = 0; i < block.frames(); ++i, frame += weights.size()) {
            block.left[i] = weights.size() > 2 ? mixed(frame, &MixWeights::left) : frame[0];
            if (!isMono)
                block.right[i] = weights.size() > 2 ? mixed(frame, &MixWeights::right) : frame[1];
        }
    }

    float mixed(const float* frame, float MixWeights::*side) const
    {
        float sum = 0;
        for (std::size_t channel = 0; channel < weights.size(); ++channel)
            sum += frame[channel] * weights[channel].*side;
        return sum;
    }
};

WavSource::WavSource(const SourceFile& file) : parts_(new Parts(file))
{
    SF_VIRTUAL_IO io{length, seekTo, readOn, writeNothing, tell};
    parts_->sound.reset(sf_open_virtual(&io, SFM_READ, &parts_->info, &parts_->reader));
    if (!parts_->sound)
        throw notWav(sf_strerror(nullptr));
    const auto& info = parts_->info;
    if (!isWav(info))
        throw notWav("This is not a WAV file.");
    if (info.channels > maxChannels || info.samplerate < minRate || info.samplerate > maxRate)
        throw notWav("This number of channels or samples a second cannot be encoded.");
    parts_->weights = mixDown(info.channels);
    parts_->frames = std::min(info.frames, file.size() * maxFramesInByte);
}

WavSource::~WavSource() = default;

int WavSource::rate() const { return parts_->info.samplerate; }

int WavSource::channels() const { return std::min(parts_->info.channels, 2); }

std::int64_t WavSource::frames() const { return parts_->frames; }

void WavSource::seek(std::int64_t frame)
{
    if (sf_seek(parts_->sound.get(), frame, SEEK_SET) != frame)
        throw failure(57);
    parts_->at = frame;
}

void WavSource::read(SoundBlock& block, std::size_t frames)
{
    const std::int64_t left = parts_->frames - parts_->at;
    const auto count =
        static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(frames), left));
    block.left.resize(count);
    block.right.resize(count);
    parts_->fill(count);
    parts_->split(block);
    parts_->at += static_cast<std::int64_t>(count);
}

}
