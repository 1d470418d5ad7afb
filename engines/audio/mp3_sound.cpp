// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/opened_sound.h"

#include "engines/formats/mp3_probe.h"
#include "engines/formats/mpg123_decoder.h"

#include <algorithm>
#include <vector>

namespace audio
{

namespace
{

formats::FrameInput inputOf(const std::shared_ptr<const files::InputFile>& file,
                            const formats::Mp3Facts& facts)
{
    return {file, facts.place.begin, facts.place.end};
}

class Mp3Source final : public PcmSource
{
public:
    Mp3Source(const std::shared_ptr<const files::InputFile>& file, const formats::Mp3Facts& facts) :
        facts_(facts), decoder_(inputOf(file, facts), {.gapless = isEven(), .isShort = facts.place.isShort})
    {
    }

    bool isOpen() const { return decoder_.isOpen(); }

    std::size_t read(std::span<std::int16_t> samples) override { return decoder_.read(samples) / 2; }
    int rate() const override { return decoder_.rate(); }
    void seek(std::int64_t frame) override;

private:
    bool isEven() const { return facts_.stretches.size() == 1; }
    void skip(std::int64_t frames);

    formats::Mp3Facts facts_;
    formats::Mpg123Decoder decoder_;
};

// The decoder counts samples as if every frame were like the present one. Where that is not so, whole frames
// are counted, and what is left is decoded and dropped.
void Mp3Source::seek(std::int64_t frame)
{
    if (isEven()) {
        decoder_.seek(frame);
        return;
    }
    std::int64_t mpegFrame = 0;
    int rateThere = rate();
    for (const auto& stretch : facts_.stretches) {
        const std::int64_t whole = std::min(frame / stretch.samples, stretch.frames);
        mpegFrame += whole;
        frame -= whole * stretch.samples;
        rateThere = stretch.rate;
        if (whole < stretch.frames)
            break;
    }
    decoder_.seekFrame(mpegFrame, rateThere);
    skip(frame);
}

void Mp3Source::skip(std::int64_t frames)
{
    std::vector<std::int16_t> dropped(static_cast<std::size_t>(frames) * 2);
    std::span<std::int16_t> rest(dropped);
    while (!rest.empty()) {
        const int rateBefore = rate();
        const std::size_t samples = decoder_.read(rest);
        if (samples == 0 && rate() == rateBefore)
            return;
        rest = rest.subspan(samples);
    }
}

Timeline timelineOf(const formats::Mp3Facts& facts)
{
    std::vector<Timeline::Stretch> stretches;
    for (const auto& stretch : facts.stretches)
        stretches.push_back({stretch.frames * stretch.samples, stretch.rate});
    if (stretches.size() == 1)
        stretches.front().frames = facts.samples();
    return Timeline(std::move(stretches));
}

// In a damaged file the decoder finds more or fewer frames than the headers promise: its count holds.
void recount(formats::Mp3Facts& facts, const std::shared_ptr<const files::InputFile>& file)
{
    formats::Mpg123Decoder counter(inputOf(file, facts), {.gapless = false, .isShort = facts.place.isShort});
    const std::int64_t samples = counter.isOpen() ? counter.countSamples() : 0;
    auto& stretch = facts.stretches.front();
    stretch.frames = std::max(samples / stretch.samples, std::int64_t{1});
}

}

std::optional<OpenedSound> openMp3Sound(const Text& path)
{
    const auto file = files::InputFile::open(path);
    auto facts = file != nullptr ? formats::probeMp3(file) : std::nullopt;
    if (!facts)
        return std::nullopt;
    if (!facts->isWhole && facts->stretches.size() == 1)
        recount(*facts, file);
    auto source = std::make_shared<Mp3Source>(file, *facts);
    if (!source->isOpen())
        return std::nullopt;
    return OpenedSound{source, timelineOf(*facts), facts->bitsPerSecond, facts->stretches.front().samples};
}

}
