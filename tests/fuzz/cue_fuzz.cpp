// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a CUE sheet: what is read of it holds together, and so does the disc that it makes of files of
// any length.
#include "engines/disc/image_layout.h"
#include "tests/fuzz/input.h"

#include <algorithm>
#include <cstring>

namespace
{

// The first bytes stand for the lengths of the files.
std::int64_t takenLength(std::string_view& bytes)
{
    std::int64_t length = 0;
    const std::size_t count = std::min(bytes.size(), sizeof length);
    std::memcpy(&length, bytes.data(), count);
    bytes.remove_prefix(count);
    return length & INT64_MAX;
}

void checkSheet(const disc::CueSheet& sheet)
{
    require(!sheet.tracks.empty() && sheet.tracks.size() <= 99);
    for (const auto& track : sheet.tracks) {
        require(std::ranges::count(track.indexes, 1, &disc::CueSheet::Index::number) == 1);
        for (const auto& index : track.indexes)
            require(index.file < sheet.files.size() && index.sector >= 0);
    }
}

void checkLayout(const disc::CueSheet& sheet, const disc::ImageLayout& layout)
{
    std::int32_t end = 0;
    for (const auto& extent : layout.extents) {
        require(extent.start == end && extent.sectors > 0 && extent.offset >= 0);
        require(!extent.file || (*extent.file < sheet.files.size() && extent.bytesOfSector >= 2048));
        end = extent.end();
    }
    require(end == layout.contents.leadOut && end <= disc::mostSectors);
    const auto count = static_cast<std::size_t>(sheet.tracks.back().number);
    require(layout.contents.tracks.size() == count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& track = layout.contents.tracks[i];
        const bool isLast = i + 1 == count;
        require(track.sectors >= 0);
        require(track.start + track.sectors == (isLast ? end : layout.contents.tracks[i + 1].start));
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = asText(data, size);
    const std::int64_t lengths[] = {takenLength(text), takenLength(text), 300 * disc::sectorBytes, 0};
    const auto sheet = disc::cueSheetIn(text);
    if (!sheet)
        return 0;
    checkSheet(*sheet);
    std::vector<std::int64_t> bytes;
    for (std::size_t i = 0; i < sheet->files.size(); ++i)
        bytes.push_back(lengths[i % std::size(lengths)]);
    if (const auto layout = disc::layoutOf(*sheet, bytes))
        checkLayout(*sheet, *layout);
    return 0;
}
