// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/mp3_probe.h"

#include "engines/formats/frame_walk.h"
#include "engines/formats/mp3_tags.h"
#include "engines/formats/wav_layout.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace formats
{

namespace
{

constexpr std::int64_t searchRange = 64 * 1024;
constexpr std::int64_t resyncRange = 64 * 1024;

// Containers that may hold what looks like a stream, and are none.
// clang-format off
constexpr std::string_view containers[] = {
    "RIFF", "RIFX", "RF64", "riff", "FORM", "OggS", "fLaC", "caff", "MThd", ".snd", "wvpk", "MAC ", "TTA1",
    "#!AM", "FWS", "CWS", "ZWS", "FLV\1", "%PDF", "PK\3\4", "\x1A\x45\xDF\xA3",
    "\x30\x26\xB2\x75\x8E\x66\xCF\x11",
};
// clang-format on

bool isForeign(const Text& start)
{
    return start.substr(std::min<std::size_t>(start.size(), 4)) == "ftyp" ||
           std::ranges::any_of(containers, [&](std::string_view mark) { return start.starts_with(mark); });
}

// The bytes among which the frames are looked for.
std::optional<Mp3Place> soundOf(const std::shared_ptr<const files::InputFile>& file)
{
    files::FileBytes bytes(file);
    if (const auto wav = wavLayout(file); wav && wav->coding == WavLayout::mpegLayerThree)
        return Mp3Place{endOfLeadingTags(bytes, wav->begin), 0, wav->end, true, false};
    const std::int64_t start = endOfLeadingTags(bytes);
    if (isForeign(bytes.read(0, 8)) || isForeign(bytes.read(static_cast<std::uint64_t>(start), 8)))
        return std::nullopt;
    return Mp3Place{start, 0, startOfTrailingTags(bytes, file->size()), false, false};
}

class Prober
{
public:
    Prober(const std::shared_ptr<const files::InputFile>& file, const Mp3Place& place) :
        walk_(file, place.end)
    {
        facts_.place = place;
        sound_ = place.begin;
    }

    int channels()
    {
        countFrames();
        return channels_;
    }

    std::optional<Mp3Facts> facts()
    {
        const auto first = walk_.headerAt(facts_.place.begin);
        if (!first)
            return std::nullopt;
        first_ = *first;
        readInfoFrame();
        if (isInfoTrusted())
            believeInfo();
        else
            countFrames();
        if (facts_.stretches.empty() || facts_.stretches.front().frames == 0)
            return std::nullopt;
        trim();
        return facts_;
    }

private:
    void readInfoFrame();
    bool isInfoTrusted() const;
    void believeInfo();
    void countFrames();
    void count(const MpegHeader& header);
    void trim();
    std::int32_t averageRate() const;

    FrameWalk walk_;
    Mp3Facts facts_;
    MpegHeader first_;
    std::optional<InfoFrame> info_;
    std::int64_t sound_ = 0;           // byte of the first frame that holds sound
    std::optional<std::int32_t> rate_; // bits per second of the frames so far
    bool isConstant_ = true;
    int channels_ = 1; // of the widest frame so far
};

void Prober::readInfoFrame()
{
    info_ = walk_.infoFrameAt(facts_.place.begin, first_);
    sound_ = facts_.place.begin + (info_ ? first_.bytes : 0);
}

// A file that was cut, joined or appended to keeps an Info frame that no longer speaks of it.
bool Prober::isInfoTrusted() const
{
    if (!info_ || !info_->frames || !info_->bytes)
        return false;
    const std::int64_t bytes = *info_->bytes;
    return bytes == facts_.place.end - facts_.place.begin || bytes == facts_.place.end - sound_;
}

void Prober::believeInfo()
{
    facts_.stretches = {{*info_->frames, first_.rate, first_.samples}};
    const auto header = walk_.headerAt(sound_);
    const bool hasOwn = info_->isConstant && header && !header->isFreeFormat();
    facts_.bitsPerSecond = hasOwn ? header->bitsPerSecond : averageRate();
}

void Prober::countFrames()
{
    std::int64_t at = sound_;
    while (at < facts_.place.end) {
        const auto header = walk_.headerAt(at);
        const bool fits =
            header && (facts_.stretches.empty() || facts_.stretches.back().rate == header->rate ||
                       walk_.isStreamAt(at) || walk_.isFilledFrom(at));
        if (fits && at + header->bytes > facts_.place.end)
            break; // cut off: it is not decoded
        if (fits) {
            count(*header);
            at += header->bytes;
            continue;
        }
        facts_.isWhole = false;
        const auto next = walk_.findStream(at + 1, resyncRange);
        if (!next)
            break;
        at = *next;
    }
    const bool hasOwn = isConstant_ && rate_.value_or(0) != 0;
    facts_.bitsPerSecond = hasOwn ? *rate_ : averageRate();
}

void Prober::count(const MpegHeader& header)
{
    auto& stretches = facts_.stretches;
    if (stretches.empty() || stretches.back().rate != header.rate)
        stretches.push_back({0, header.rate, header.samples});
    ++stretches.back().frames;
    isConstant_ = isConstant_ && header.bitsPerSecond == rate_.value_or(header.bitsPerSecond);
    rate_ = header.bitsPerSecond;
    channels_ = std::max(channels_, header.channels);
}

// The decoder's own gapless rule: what it leaves out, frame by frame, as long as the frames are there.
void Prober::trim()
{
    if (!info_ || !info_->frames || facts_.stretches.size() > 1)
        return;
    facts_.skipAtStart = info_->skipAtStart();
    if (facts_.stretches.front().frames >= *info_->frames)
        facts_.skipAtEnd = info_->skipAtEnd();
}

std::int32_t Prober::averageRate() const
{
    double seconds = 0;
    for (const auto& stretch : facts_.stretches)
        seconds += static_cast<double>(stretch.frames) * stretch.samples / stretch.rate;
    if (seconds == 0)
        return 0;
    const double kilobits = static_cast<double>(facts_.place.end - sound_) * 8 / seconds / 1000;
    return static_cast<std::int32_t>(std::lround(kilobits) * 1000);
}

}

std::int64_t Mp3Facts::samples() const
{
    std::int64_t sum = 0;
    for (const auto& stretch : stretches)
        sum += stretch.frames * stretch.samples;
    return std::max<std::int64_t>(sum - skipAtStart - skipAtEnd, 0);
}

std::optional<Mp3Place> findMp3(const std::shared_ptr<const files::InputFile>& file)
{
    auto place = soundOf(file);
    if (!place)
        return std::nullopt;
    FrameWalk walk(file, place->end);
    const bool isFilled = walk.isFilledFrom(place->start);
    const auto first = isFilled ? std::optional(place->start) : walk.findStream(place->start, searchRange);
    place->isShort = isFilled && !walk.headerAt(place->start)->isFreeFormat();
    place->begin = first.value_or(0);
    return first ? place : std::nullopt;
}

int channelsAt(const Mp3Place& place, const std::shared_ptr<const files::InputFile>& file)
{
    return Prober(file, place).channels();
}

std::optional<Mp3Facts> probeMp3(const std::shared_ptr<const files::InputFile>& file)
{
    const auto place = findMp3(file);
    return place ? Prober(file, *place).facts() : std::nullopt;
}

}
