// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/call.h"

#include "tests/simulated_drive/mapped_drives.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

namespace simulated
{

namespace
{

// Byte for byte from the disc, silence where nothing was put.
void loadSectors(const Call& call, std::int32_t start, std::int32_t count, std::span<std::uint8_t> to)
{
    const int file = open((statePath(call.number) + ".sectors").c_str(), O_RDONLY | O_CLOEXEC);
    const auto size = static_cast<std::size_t>(count * sectorBytes);
    std::fill_n(to.begin(), size, std::uint8_t{0});
    if (file >= 0 && start >= 0)
        (void)!pread(file, to.data(), size, static_cast<off_t>(start) * sectorBytes);
    close(file);
}

std::size_t readSectors(Call& call, std::int32_t start, std::int32_t count)
{
    constexpr std::uint8_t soundOnly = 1;
    const int type = call.at(1) >> 2 & 7;
    if (call.data.size() < static_cast<std::size_t>(count * sectorBytes))
        throw invalidField;
    call.takeTime(count, call.drive.millisecondsToRead);
    for (std::int32_t sector = start; sector < start + count; ++sector) {
        const Track* const track = trackAt(call.medium(), sector);
        if (track == nullptr)
            throw outOfRange;
        if (track->isData && type == soundOnly)
            throw wrongTrackMode;
        if (failsToRead(call.medium(), sector))
            throw unreadable;
    }
    loadSectors(call, start, count, call.data);
    return static_cast<std::size_t>(count * sectorBytes);
}

}

std::size_t readCd(Call& call) { return readSectors(call, call.number32(2), call.number24(6)); }

std::size_t readCdTime(Call& call)
{
    const auto sector = [&](std::size_t at) {
        return (call.at(at) * 60 + call.at(at + 1)) * 75 + call.at(at + 2) - pregap;
    };
    return readSectors(call, sector(3), sector(6) - sector(3));
}

// READ SUB-CHANNEL: a drive that plays nothing.
std::size_t readSubchannel(Call& call)
{
    Bytes bytes(call.at(3) == 1 ? 16 : 24);
    bytes[1] = 0x15; // no audio status
    bytes[3] = static_cast<std::uint8_t>(bytes.size() - 4);
    bytes[4] = call.at(3);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

}
