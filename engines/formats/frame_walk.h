// SPDX-License-Identifier: GPL-3.0-or-later
// Steps from one Layer III frame to the next, without decoding.
#pragma once

#include "engines/formats/info_frame.h"
#include "files/input_file.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace formats
{

class FrameWalk
{
public:
    // The sound of `file` ends at byte `end`.
    FrameWalk(std::shared_ptr<const files::InputFile> file, std::int64_t end) :
        window_(std::move(file)), end_(end)
    {
    }

    // The header at that byte, its `bytes` known also in free format; nothing where no frame begins.
    std::optional<MpegHeader> headerAt(std::int64_t at);

    // Some bytes, valid until the next call; nullptr when the sound ends before.
    const std::uint8_t* bytesAt(std::int64_t at, std::size_t count);

    // What that frame notes; nothing when it is an ordinary one.
    std::optional<InfoFrame> infoFrameAt(std::int64_t at, const MpegHeader& header);

    // True when so many frames follow each other from that byte on that it is no accident.
    bool isStreamAt(std::int64_t at);

    // True when fewer frames than that fill the sound from that byte on; the last may be cut off, if it is
    // not the only one.
    bool isFilledFrom(std::int64_t at);

    // The first byte from `at` on, at most `range` bytes further, at which a stream begins.
    std::optional<std::int64_t> findStream(std::int64_t at, std::int64_t range);

private:
    std::optional<MpegHeader> plainHeaderAt(std::int64_t at);
    bool resolveFreeFormat(std::int64_t at, const MpegHeader& header);
    bool beginsLike(const MpegHeader& header, std::int64_t at);
    bool mayBeSound(std::int64_t at, const MpegHeader& header);
    bool repeats(std::int64_t at, std::int64_t before, const MpegHeader& header);

    files::FileWindow window_;
    std::int64_t end_;
    int freeFormatBytes_ = 0; // of an unpadded frame; 0: not known yet
};

}
