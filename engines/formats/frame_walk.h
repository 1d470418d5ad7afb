// Steps from one Layer III frame header to the next, without decoding.
#pragma once

#include "engines/formats/mpeg_header.h"
#include "files/input_file.h"

#include <cstdint>
#include <memory>
#include <optional>

class FrameWalk
{
public:
    FrameWalk(std::shared_ptr<const InputFile> file, std::int64_t end) : window_(std::move(file)), end_(end)
    {
    }

    // The header at that byte, its `bytes` known also in free format; nothing where no frame begins.
    std::optional<MpegHeader> headerAt(std::int64_t at);

    // True when so many frames follow each other from that byte on that it is no accident.
    bool isStreamAt(std::int64_t at);

    // The first byte from `at` on, at most `range` bytes further, at which a stream begins.
    std::optional<std::int64_t> findStream(std::int64_t at, std::int64_t range);

private:
    std::optional<MpegHeader> plainHeaderAt(std::int64_t at);
    bool resolveFreeFormat(std::int64_t at, const MpegHeader& header);
    bool beginsLike(const MpegHeader& header, std::int64_t at);

    FileWindow window_;
    std::int64_t end_;
    int freeFormatBytes_ = 0; // of an unpadded frame; 0: not known yet
};
