#include "platform/disc/wav_output.h"

#include "platform/failure.h"

#include <algorithm>
#include <array>
#include <limits>

namespace
{

constexpr std::size_t headerBytes = 44;
constexpr std::int64_t mostSoundBytes = std::numeric_limits<std::uint32_t>::max() - headerBytes;

class Header
{
public:
    explicit Header(std::uint32_t soundBytes)
    {
        put("RIFF");
        put(soundBytes + static_cast<std::uint32_t>(headerBytes - 8), 4);
        put("WAVEfmt ");
        put(16, 4);
        put(1, 2); // PCM
        put(2, 2); // channels
        put(44100, 4);
        put(44100 * 4, 4);
        put(4, 2);
        put(16, 2);
        put("data");
        put(soundBytes, 4);
    }

    std::span<const std::byte> bytes() const { return bytes_; }

private:
    void put(std::string_view word)
    {
        for (const char letter : word)
            bytes_[filled_++] = static_cast<std::byte>(letter);
    }

    void put(std::uint32_t number, int bytes)
    {
        for (int i = 0; i < bytes; ++i, number >>= 8)
            bytes_[filled_++] = static_cast<std::byte>(number & 0xFF);
    }

    std::array<std::byte, headerBytes> bytes_{};
    std::size_t filled_ = 0;
};

}

WavOutput::WavOutput(const Text& path, PartNotes& notes) : output_(path, notes)
{
    output_.append(Header(0).bytes());
}

void WavOutput::append(std::span<const std::byte> samples)
{
    if (soundBytes() + static_cast<std::int64_t>(samples.size()) > mostSoundBytes)
        throw failure(61);
    output_.append(samples);
}

std::int64_t WavOutput::soundBytes() const
{
    return output_.bytes() - static_cast<std::int64_t>(headerBytes);
}

void WavOutput::finish()
{
    completeHeader();
    if (output_.replacesFile())
        output_.flush();
    output_.takePlace();
}

void WavOutput::breakOff()
{
    completeHeader();
    output_.takePlace();
}

void WavOutput::completeHeader()
{
    output_.rewriteStart(Header(static_cast<std::uint32_t>(soundBytes())).bytes());
    output_.startFlush();
}
