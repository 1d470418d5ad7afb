#include "engines/formats/frame_scan.h"

#include "engines/formats/side_info.h"

#include <algorithm>
#include <cstring>

namespace codec
{

namespace
{

// clang-format off
constexpr int kilobits[2][15] = {
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
    {0,  8, 16, 24, 32, 40, 48, 56,  64,  80,  96, 112, 128, 144, 160},
};
constexpr int rates[3] = {44100, 48000, 32000};
// clang-format on

constexpr int maxFrameBytes = 1441;
constexpr int maxFreeFormatBytes = 3460;
constexpr int searchedForStart = 65536;

// The decoder's own delay, which encoders leave out of the delay they note.
constexpr int decoderDelay = 529;

// Frames that the decoder warms up on before the first one that sounds. Where more lie before it, it skips
// them.
constexpr int warmUpFrames = 4;

std::uint32_t bigEndian(const std::uint8_t* b) { return b[0] << 24u | b[1] << 16u | b[2] << 8u | b[3]; }

std::uint32_t littleEndian(const std::uint8_t* b) { return b[3] << 24u | b[2] << 16u | b[1] << 8u | b[0]; }

bool begins(const std::uint8_t* bytes, std::string_view word)
{
    return std::memcmp(bytes, word.data(), word.size()) == 0;
}

// A window that moves over the file.
class Bytes
{
public:
    explicit Bytes(const SourceFile& file) : file_(file), window_(1 << 18) {}

    // nullptr when the file ends before.
    const std::uint8_t* at(std::int64_t position, std::size_t count)
    {
        const std::int64_t wanted = position + static_cast<std::int64_t>(count);
        if (position < begin_ || wanted > begin_ + static_cast<std::int64_t>(filled_)) {
            begin_ = position;
            filled_ = file_.read(window_.data(), window_.size(), position);
        }
        if (wanted > begin_ + static_cast<std::int64_t>(filled_))
            return nullptr;
        return window_.data() + (position - begin_);
    }

    std::optional<FrameHeader> header(std::int64_t position)
    {
        const auto* bytes = at(position, 4);
        return bytes ? parseHeader(bytes) : std::nullopt;
    }

private:
    const SourceFile& file_;
    std::vector<std::uint8_t> window_;
    std::int64_t begin_ = 0;
    std::size_t filled_ = 0;
};

// ID3v2, section 3.1: ten bytes, four of them the size in seven bits each; a footer repeats the ten.
std::int64_t id3v2Bytes(Bytes& bytes, std::int64_t position)
{
    const auto* tag = bytes.at(position, 10);
    if (!tag || !begins(tag, "ID3") || tag[3] == 0xFF || tag[4] == 0xFF)
        return 0;
    if ((tag[6] | tag[7] | tag[8] | tag[9]) & 0x80)
        return 0;
    const std::int64_t size = tag[6] << 21 | tag[7] << 14 | tag[8] << 7 | tag[9];
    return 10 + size + (tag[5] & 0x10 ? 10 : 0);
}

std::int64_t afterLeadingTags(Bytes& bytes)
{
    std::int64_t position = 0;
    while (const auto tag = id3v2Bytes(bytes, position))
        position += tag;
    return position;
}

// APEv2 with a header, as it stands at a file's end.
std::int64_t apeBytes(Bytes& bytes, std::int64_t position)
{
    const auto* tag = bytes.at(position, 32);
    if (!tag || !begins(tag, "APETAGEX") || littleEndian(tag + 8) != 2000)
        return 0;
    if (std::any_of(tag + 24, tag + 32, [](std::uint8_t byte) { return byte != 0; }))
        return 0;
    return 32 + static_cast<std::int64_t>(littleEndian(tag + 12));
}

// True when nothing but known tags lies between `position` and the file's end.
bool endsCleanly(Bytes& bytes, std::int64_t position, std::int64_t size)
{
    position += apeBytes(bytes, position);
    if (position == size)
        return true;
    const auto* tag = bytes.at(position, 3);
    return tag && begins(tag, "TAG") && size - position == 128;
}

// What an encoder notes in a frame of silence at the front: the Xing header and LAME's extension of it.
struct InfoNote {
    std::uint32_t frames = 0; // 0: not told
    int delay = 0;
    int padding = 0;
};

std::optional<InfoNote> parseInfo(const std::uint8_t* frame, const FrameHeader& header)
{
    // The note stands where the side info of an unprotected frame ends, protected or not.
    const int noteAt =
        4 + (header.channels == 2 ? (header.isLowRate() ? 17 : 32) : (header.isLowRate() ? 9 : 17));
    if (header.bytes < noteAt + 8)
        return std::nullopt;
    if (std::any_of(frame + 6, frame + noteAt, [](std::uint8_t byte) { return byte != 0; }))
        return std::nullopt;
    if (!begins(frame + noteAt, "Info") && !begins(frame + noteAt, "Xing"))
        return std::nullopt;

    InfoNote note;
    const std::uint32_t flags = bigEndian(frame + noteAt + 4);
    if (flags & 1 && header.bytes >= noteAt + 12)
        note.frames = bigEndian(frame + noteAt + 8);

    int at = noteAt + 8;
    at += flags & 1 ? 4 : 0;   // frames
    at += flags & 2 ? 4 : 0;   // bytes
    at += flags & 4 ? 100 : 0; // places to seek to
    at += flags & 8 ? 4 : 0;   // quality
    if (header.bytes >= at + 24 && frame[at] != 0) {
        note.delay = frame[at + 21] << 4 | frame[at + 22] >> 4;
        note.padding = (frame[at + 22] & 15) << 8 | frame[at + 23];
    }
    return note;
}

std::optional<Trim> trimOf(const std::optional<InfoNote>& note, std::int64_t frames, int samples)
{
    const std::int64_t all = frames * samples;
    if (!note || note->frames == 0)
        return Trim{0, all};
    if (note->frames != frames)
        return std::nullopt;
    const Trim trim{note->delay + decoderDelay, std::min(all, all - note->padding + decoderDelay)};
    if (trim.begin >= trim.end || trim.begin / samples > warmUpFrames)
        return std::nullopt;
    return trim;
}

std::optional<InfoNote> readInfo(Bytes& bytes, std::int64_t position, const FrameHeader& header)
{
    const auto* frame = bytes.at(position, static_cast<std::size_t>(header.bytes));
    return frame ? parseInfo(frame, header) : std::nullopt;
}

bool mayFollow(const std::optional<FrameHeader>& header, const FrameHeader& first)
{
    return header && header->bytes > 0 && areAlike(*header, first);
}

// What the frames so far leave for the next.
class Reservoir
{
public:
    // False for a frame that reaches back past what the decoder keeps, which is what the last frame took from
    // the reservoir and brought itself: it finds there what frames long before happened to leave.
    bool take(const FrameHeader& header, int wanted)
    {
        const int taken = std::min(wanted, filled_);
        const bool isKept = taken <= kept_;
        kept_ = taken + header.mainData();
        filled_ = std::min(filled_ + header.mainData(), header.maxReservoir());
        return isKept;
    }

private:
    int filled_ = 0;
    int kept_ = 0;
};

// Where the run of frames at `position` ends; each frame's place is added to `table`. Nothing when a frame
// depends on others than those shortly before it.
std::optional<std::int64_t> collect(Bytes& bytes, std::int64_t position, std::int64_t size, FrameTable& table)
{
    Reservoir reservoir;
    for (;;) {
        const auto header = bytes.header(position);
        table.positions.push_back(position);
        if (!mayFollow(header, table.first) || position + header->bytes > size)
            return position;
        const auto* frame = bytes.at(position, static_cast<std::size_t>(header->sideInfo));
        if (!frame || !reservoir.take(*header, mainDataBegin(frame, *header)))
            return std::nullopt;
        position += header->bytes;
    }
}

// Free format does not tell its size: the next header like this one tells it.
int frameBytes(Bytes& bytes, std::int64_t position, const FrameHeader& header)
{
    if (header.bytes > 0)
        return header.bytes;
    for (int distance = header.sideInfo; distance < maxFreeFormatBytes; ++distance) {
        const auto next = bytes.header(position + distance);
        if (next && next->bytes == 0 && areAlike(*next, header))
            return distance;
    }
    return 0;
}

// Free format frames differ by their padding byte at most.
bool isLikelyLength(int bytes, int first, const FrameHeader& header)
{
    return bytes > 0 && (header.bytes > 0 || std::abs(bytes - first) <= 1);
}

bool startsRun(Bytes& bytes, std::int64_t position, std::int64_t size)
{
    const auto first = bytes.header(position);
    if (!first)
        return false;
    const int firstBytes = frameBytes(bytes, position, *first);
    for (int frame = 0; frame < 4; ++frame) {
        const auto header = bytes.header(position);
        if (!header || !areAlike(*header, *first))
            return frame > 0 && endsCleanly(bytes, position, size);
        const int length = frameBytes(bytes, position, *header);
        if (!isLikelyLength(length, firstBytes, *header) || position + length > size)
            return frame > 0;
        position += length;
    }
    return true;
}

bool isOtherFormat(const std::uint8_t* start)
{
    return begins(start, "RIFF") || begins(start, "OggS") || begins(start, "fLaC") ||
           begins(start + 4, "ftyp");
}

}

std::optional<FrameHeader> parseHeader(const std::uint8_t* bytes)
{
    const std::uint32_t bits = bigEndian(bytes);
    const unsigned version = bits >> 19 & 3; // 0: 2.5, 2: 2, 3: 1
    const unsigned layer = bits >> 17 & 3;
    const unsigned bitrate = bits >> 12 & 15;
    const unsigned rate = bits >> 10 & 3;
    if (bits >> 21 != 0x7FF || version == 1 || layer != 1 || bitrate == 15 || rate == 3)
        return std::nullopt;

    const bool low = version != 3;
    FrameHeader header;
    header.bits = bits;
    header.rate = rates[rate] >> (low ? (version == 0 ? 2 : 1) : 0);
    header.channels = (bits >> 6 & 3) == 3 ? 1 : 2;
    header.samples = low ? 576 : 1152;
    header.sideInfo =
        4 + (header.isProtected() ? 2 : 0) + (header.channels == 2 ? (low ? 17 : 32) : (low ? 9 : 17));
    if (bitrate == 0)
        return header;
    header.bytes = header.samples / 8 * 1000 * kilobits[low][bitrate] / header.rate + (bits >> 9 & 1);
    if (header.bytes < header.sideInfo || header.bytes > maxFrameBytes)
        return std::nullopt;
    return header;
}

bool areAlike(const FrameHeader& one, const FrameHeader& other)
{
    return one.rate == other.rate && one.channels == other.channels;
}

std::optional<FrameTable> scanFrames(const SourceFile& file)
{
    Bytes bytes(file);
    std::int64_t position = afterLeadingTags(bytes);
    const auto first = bytes.header(position);
    if (!first || first->bytes == 0)
        return std::nullopt;

    FrameTable table;
    table.first = *first;
    const auto note = readInfo(bytes, position, *first);
    if (note)
        position += first->bytes;
    const auto end = collect(bytes, position, file.size(), table);
    const auto trim = trimOf(note, table.frames(), first->samples);
    if (!end || !trim || !endsCleanly(bytes, *end, file.size()))
        return std::nullopt;
    table.trim = *trim;
    return table;
}

bool isMp3(const SourceFile& file)
{
    Bytes bytes(file);
    const auto start = afterLeadingTags(bytes);
    const auto* front = bytes.at(start, 8);
    if (!front || isOtherFormat(front))
        return false;
    for (auto position = start; position < start + searchedForStart && position < file.size(); ++position)
        if (startsRun(bytes, position, file.size()))
            return true;
    return false;
}

}
