#include "engines/formats/unfinished_wav.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace codec
{

namespace
{

constexpr int mostChunks = 1000;

// The name and the size of a part of the file.
struct Chunk {
    std::array<char, 8> bytes{};

    std::string_view name() const { return {bytes.data(), 4}; }

    std::int64_t size() const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 8; i > 4; --i)
            value = value << 8 | static_cast<std::uint8_t>(bytes[i - 1]);
        return value;
    }

    // Names are printable ASCII.
    bool isNamed() const
    {
        return std::all_of(name().begin(), name().end(), [](char c) { return c >= ' ' && c <= '~'; });
    }
};

// Unnamed past the end of the file.
Chunk chunkAt(const SourceFile& file, std::int64_t position)
{
    Chunk chunk;
    file.read(chunk.bytes.data(), chunk.bytes.size(), position);
    return chunk;
}

}

std::optional<std::int64_t> unfilledSoundSize(const SourceFile& file)
{
    if (chunkAt(file, 0).name() != "RIFF" || chunkAt(file, 8).name() != "WAVE")
        return std::nullopt;
    std::int64_t position = 12;
    for (int i = 0; i < mostChunks && position < file.size(); ++i) {
        const auto chunk = chunkAt(file, position);
        const auto behind = position + 8;
        if (chunk.name() == "data") {
            const bool isUnfilled =
                chunk.size() == 0 && behind < file.size() && !chunkAt(file, behind).isNamed();
            return isUnfilled ? std::optional(position + 4) : std::nullopt;
        }
        position = behind + chunk.size() + chunk.size() % 2;
    }
    return std::nullopt;
}

}
