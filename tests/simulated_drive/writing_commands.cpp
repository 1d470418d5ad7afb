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

bool comesInTheMiddle(const Writing& writing, std::int32_t start)
{
    return start != writing.next && !(writing.type == WriteType::sessionAtOnce && writing.trackCount == 0);
}

void storeSectors(const Call& call, std::int32_t start)
{
    const int file =
        open((statePath(call.number) + ".sectors").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::int32_t left = std::max(-start, 0) * sectorBytes; // the first pause is not kept
    const auto bytes = static_cast<std::int32_t>(call.data.size());
    if (left < bytes)
        (void)!pwrite(file, call.data.data() + left, static_cast<std::size_t>(bytes - left),
                      static_cast<off_t>(std::max(start, 0)) * sectorBytes);
    close(file);
}

void endSession(Call& call)
{
    Writing& writing = call.drive.writing;
    for (int i = 0; i < writing.trackCount; ++i)
        addTrack(call.medium(), writing.tracks[i].start, writing.tracks[i].sectors, writing.tracks[i].isData);
    closeSession(call.medium(), writing.leadOut, !writing.leavesOpen);
    writing = {};
}

WriteType writeType(int number)
{
    switch (number) {
    case 1:
        return WriteType::trackAtOnce;
    case 2:
        return WriteType::sessionAtOnce;
    default:
        return WriteType::none;
    }
}

}

std::size_t modeSelect(Call& call)
{
    constexpr std::size_t header = 8;
    if (call.data.size() < header + 4 || (call.data[header] & 0x3F) != 0x05)
        return 0;
    Drive& drive = call.drive;
    const std::uint8_t flags = call.data[header + 2];
    const bool simulates = (flags & 0x10) != 0;
    if (simulates && !drive.canSimulate)
        throw invalidField;
    if (simulates && !drive.writing.simulates)
        drive.rehearsal = drive.medium;
    drive.writing.simulates = simulates;
    drive.writing.type = writeType(flags & 15);
    drive.writing.leavesOpen = (call.data[header + 3] & 0xC0) == 0xC0;
    if (drive.writing.type == WriteType::trackAtOnce)
        drive.writing.next = nextWritable(call.medium());
    return 0;
}

std::size_t sendCueSheet(Call& call)
{
    Writing& writing = call.drive.writing;
    if (writing.type != WriteType::sessionAtOnce || !isBlank(call.medium()))
        throw wrongSequence;
    writing.trackCount = 0;
    for (std::size_t at = 0; at + 8 <= call.data.size(); at += 8) {
        const auto entry = call.data.subspan(at, 8);
        const std::int32_t sector = (entry[5] * 60 + entry[6]) * 75 + entry[7] - pregap;
        if ((entry[0] & 15) != 1 || entry[1] == 0 || (entry[1] != leadOutNumber && entry[2] != 1))
            continue;
        if (writing.trackCount > 0) {
            Track& before = writing.tracks[writing.trackCount - 1];
            before.sectors = sector - before.start;
        }
        if (entry[1] == leadOutNumber)
            writing.leadOut = sector;
        else if (writing.trackCount < mostTracks)
            writing.tracks[writing.trackCount++] = {sector, 0, 1, (entry[0] & 0x40) != 0};
    }
    writing.next = -pregap;
    if (writing.leadOut > call.medium().capacity)
        throw outOfRange;
    return 0;
}

std::size_t write(Call& call)
{
    Drive& drive = call.drive;
    Writing& writing = drive.writing;
    const std::int32_t start = call.number32(2);
    const std::int32_t count = call.number16(7);
    if (!drive.canWrite || writing.type == WriteType::none || call.medium().isClosed)
        throw wrongSequence;
    if (comesInTheMiddle(writing, start))
        throw notWritable;
    if (call.data.size() != static_cast<std::size_t>(count * sectorBytes))
        throw invalidField;
    call.takeTime(count, drive.millisecondsToWrite);
    if (drive.writeErrorAt >= start && drive.writeErrorAt < start + count)
        throw writeFailed;
    if (!writing.simulates)
        storeSectors(call, start);
    writing.next = start + count;
    drive.written += count;
    if (writing.type == WriteType::sessionAtOnce && writing.next >= writing.leadOut)
        endSession(call);
    return 0;
}

std::size_t synchronize(Call& call)
{
    Drive& drive = call.drive;
    Writing& writing = drive.writing;
    if (writing.type == WriteType::sessionAtOnce && writing.trackCount > 0) // broken off
        call.medium().isSpoiled = true;
    const std::int32_t start = nextWritable(call.medium());
    if (writing.type == WriteType::trackAtOnce && writing.next > start)
        addTrack(call.medium(), start, writing.next - start, false);
    writing.trackCount = 0;
    writing.next = writing.type == WriteType::trackAtOnce ? nextWritable(call.medium()) : 0;
    return 0;
}

std::size_t closeTrackOrSession(Call& call)
{
    constexpr int session = 2;
    Medium& medium = call.medium();
    if (call.at(2) != session || !hasOpenSession(medium))
        return 0;
    const Track& last = medium.tracks[medium.trackCount - 1];
    closeSession(medium, last.start + last.sectors + runOut, !call.drive.writing.leavesOpen);
    call.drive.writing = {};
    return 0;
}

std::size_t blank(Call& call)
{
    if (call.medium().kind != Kind::rewritable)
        throw invalidField;
    erase(call.drive.medium);
    return 0;
}

}
