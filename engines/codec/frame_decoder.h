// SPDX-License-Identifier: GPL-3.0-or-later
// libmpg123 on a source of bytes: gives 16-bit samples frame by frame.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace codec
{

// Where the decoder reads. The functions do not throw: -1 stands for a failed read.
class DecoderInput
{
public:
    virtual ~DecoderInput() = default;

    virtual std::int64_t read(void* bytes, std::size_t count) = 0;  // bytes read; 0 at the end
    virtual std::int64_t seek(std::int64_t offset, int whence) = 0; // as lseek
};

// Bytes that go by once.
class MemorySource final : public DecoderInput
{
public:
    explicit MemorySource(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    std::int64_t read(void* bytes, std::size_t count) override;
    std::int64_t seek(std::int64_t, int) override { return -1; }

private:
    std::vector<std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

struct SoundFormat {
    int rate = 0;     // hertz
    int channels = 0; // 1 or 2
};

class FrameDecoder
{
public:
    enum class Kind {
        // A file from its beginning: resynchronises where damaged, and trims what the encoder noted as
        // padding.
        File,
        // The same, of so few frames that none behind the first can prove it.
        ShortFile,
        // Frames cut out of a file: takes each as it comes.
        Frames,
    };

    FrameDecoder(DecoderInput& source, Kind kind); // fails with 57
    ~FrameDecoder();

    // The next frame's samples, channels interleaved, valid until the next call. Where the stream changes its
    // format on the way, they are converted to the format that it began with. False at the end.
    bool next(std::span<const std::int16_t>& samples);

    // Of the first frame; known after the first call of `next`.
    SoundFormat format() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}
