// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/formats/wav_layout.h"

#include "platform/byte_order.h"

#include <algorithm>
#include <string_view>

namespace formats
{

namespace
{

constexpr int mostChunks = 1000;
constexpr std::int64_t unknownSize = 0xFFFFFFFF;
constexpr int extensible = 0xFFFE;
constexpr std::size_t extensibleBytes = 26;

// Reads the file chunk by chunk.
class Chunks
{
public:
    explicit Chunks(const std::shared_ptr<const files::InputFile>& file) : window_(file), size_(file->size())
    {
    }

    std::optional<WavLayout> layout()
    {
        if (!isWav())
            return std::nullopt;
        std::int64_t at = 12;
        for (int i = 0; i < mostChunks && at + 8 <= size_; ++i) {
            const std::int64_t size = number(at + 4, 4);
            if (name(at) == "data")
                return soundAt(at, size);
            if (name(at) == "fmt ")
                readFormat(at + 8, size);
            if (name(at) == "ds64")
                longSizeAt_ = at + 16;
            at += 8 + size + size % 2;
        }
        return std::nullopt;
    }

private:
    bool isWav()
    {
        const auto kind = name(0);
        layout_.isBigEndian = kind == "RIFX";
        isLong_ = kind == "RF64";
        return (kind == "RIFF" || kind == "RIFX" || kind == "RF64") && name(8) == "WAVE";
    }

    std::string_view name(std::int64_t at)
    {
        const auto* bytes = window_.view(at, 4);
        return bytes ? bytesFrom(bytes, 4) : std::string_view();
    }

    // Names are printable ASCII.
    bool isNamed(std::int64_t at)
    {
        const auto word = name(at);
        return word.size() == 4 && std::ranges::all_of(word, [](char c) { return c >= ' ' && c <= '~'; });
    }

    // 0 past the end of the file.
    std::int64_t number(std::int64_t at, std::size_t bytes)
    {
        const auto* from = window_.view(at, bytes);
        const auto stored = from ? bytesFrom(from, bytes) : std::string_view();
        return static_cast<std::int64_t>(layout_.isBigEndian ? fromBigEndian(stored)
                                                             : fromLittleEndian(stored));
    }

    void readFormat(std::int64_t at, std::int64_t size)
    {
        layout_.coding = static_cast<int>(number(at, 2));
        layout_.channels = static_cast<int>(number(at + 2, 2));
        if (layout_.coding != extensible || size < static_cast<std::int64_t>(extensibleBytes))
            return;
        layout_.places = static_cast<std::uint32_t>(number(at + 20, 4));
        layout_.coding = static_cast<int>(number(at + 24, 2));
    }

    WavLayout soundAt(std::int64_t at, std::int64_t size)
    {
        layout_.begin = at + 8;
        layout_.sizeAt = at + 4;
        if (isLong_ && size == unknownSize && longSizeAt_ != 0)
            size = longSize();
        const bool isEmpty = size == 0 && layout_.begin < size_ && !isNamed(layout_.begin);
        layout_.isUnfilled = isEmpty || (size == unknownSize && layout_.begin + size > size_);
        const std::int64_t left = size_ - layout_.begin;
        layout_.end = layout_.begin + (layout_.isUnfilled || size < 0 ? left : std::min(size, left));
        return layout_;
    }

    std::int64_t longSize()
    {
        layout_.sizeAt = longSizeAt_;
        layout_.sizeBytes = 8;
        return number(longSizeAt_, 8);
    }

    files::FileWindow window_;
    std::int64_t size_;
    WavLayout layout_;
    bool isLong_ = false;
    std::int64_t longSizeAt_ = 0; // in a file of more than 4 GB
};

}

std::uint8_t WavLayout::sizeByte(int place) const
{
    const std::int64_t most = sizeBytes == 4 ? unknownSize : INT64_MAX;
    const std::int64_t size = std::min(end - begin, most);
    return static_cast<std::uint8_t>(size >> 8 * (isBigEndian ? sizeBytes - 1 - place : place));
}

std::optional<WavLayout> wavLayout(const std::shared_ptr<const files::InputFile>& file)
{
    return Chunks(file).layout();
}

}
