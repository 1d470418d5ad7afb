// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/call.h"

#include <utility>

namespace simulated
{

namespace
{

std::uint8_t control(const Track& track) { return track.isData ? 0x14 : 0x10; }

void addAddress(Bytes& bytes, const Call& call, std::int32_t sector)
{
    const bool asTime = (call.at(1) & 2) != 0;
    if (!asTime)
        return add32(bytes, sector);
    bytes.push_back(0);
    addTime(bytes, sector);
}

int closedTracks(const Medium& medium)
{
    int count = 0;
    while (count < medium.trackCount && medium.tracks[count].session <= medium.sessions)
        ++count;
    return count;
}

Bytes shortContents(const Call& call)
{
    const Medium& medium = call.medium();
    const int last = closedTracks(medium);
    Bytes bytes = {0, 0, 1, static_cast<std::uint8_t>(last)};
    for (int track = 1; track <= last; ++track) {
        if (track < call.at(6))
            continue;
        const Track& entry = medium.tracks[track - 1];
        bytes.insert(bytes.end(), {0, control(entry), static_cast<std::uint8_t>(track), 0});
        addAddress(bytes, call, entry.start);
    }
    bytes.insert(bytes.end(), {0, control(medium.tracks[last - 1]), leadOutNumber, 0});
    addAddress(bytes, call, medium.leadOuts[medium.sessions - 1]);
    return bytes;
}

int firstTrackOfSession(const Medium& medium, int session)
{
    int track = 1;
    while (medium.tracks[track - 1].session < session)
        ++track;
    return track;
}

Bytes sessionContents(const Call& call)
{
    const Medium& medium = call.medium();
    const int first = firstTrackOfSession(medium, medium.sessions);
    const Track& track = medium.tracks[first - 1];
    Bytes bytes = {0,
                   0,
                   1,
                   static_cast<std::uint8_t>(medium.sessions),
                   0,
                   control(track),
                   static_cast<std::uint8_t>(first),
                   0};
    addAddress(bytes, call, track.start);
    return bytes;
}

void addPoint(Bytes& bytes, int session, std::uint8_t flags, int point)
{
    bytes.insert(bytes.end(), {static_cast<std::uint8_t>(session), flags, 0, static_cast<std::uint8_t>(point),
                               0, 0, 0, 0});
}

void addSession(Bytes& bytes, const Medium& medium, int session)
{
    const int first = firstTrackOfSession(medium, session);
    int last = first;
    while (last < medium.trackCount && medium.tracks[last].session == session)
        ++last;
    const std::uint8_t flags = control(medium.tracks[first - 1]);
    for (const auto& [point, track] : {std::pair(0xA0, first), std::pair(0xA1, last)}) {
        addPoint(bytes, session, flags, point);
        bytes.insert(bytes.end(), {static_cast<std::uint8_t>(track), 0, 0});
    }
    addPoint(bytes, session, flags, 0xA2);
    addTime(bytes, medium.leadOuts[session - 1]);
    for (int track = first; track <= last; ++track) {
        addPoint(bytes, session, control(medium.tracks[track - 1]), track);
        addTime(bytes, medium.tracks[track - 1].start);
    }
}

Bytes fullContents(const Call& call)
{
    const Medium& medium = call.medium();
    Bytes bytes = {0, 0, 1, static_cast<std::uint8_t>(medium.sessions)};
    for (int session = 1; session <= medium.sessions; ++session)
        addSession(bytes, medium, session);
    return bytes;
}

// The writer's information that is pressed into a blank disc.
Bytes pregroove(const Call& call)
{
    if (call.medium().kind != Kind::recordable && call.medium().kind != Kind::rewritable)
        throw invalidField;
    Bytes bytes = {0,
                   0,
                   0,
                   0,
                   0xD0,
                   0x40,
                   static_cast<std::uint8_t>(call.medium().kind == Kind::rewritable ? 0xC0 : 0x80),
                   0};
    addTime(bytes, leadInStart);
    bytes.push_back(0);
    addTime(bytes, call.medium().capacity);
    bytes.resize(28);
    return bytes;
}

int discStatus(const Medium& medium)
{
    if (isBlank(medium))
        return 0;
    return medium.isClosed || medium.kind == Kind::pressed ? 2 : 1;
}

int lastSessionStatus(const Medium& medium)
{
    if (medium.isSpoiled || hasOpenSession(medium))
        return 1;
    return medium.isClosed || medium.kind == Kind::pressed ? 3 : 0;
}

}

std::size_t readCapacity(Call& call)
{
    const Medium& medium = call.medium();
    Bytes bytes;
    add32(bytes, medium.sessions > 0 ? medium.leadOuts[medium.sessions - 1] - 1 : 0);
    add32(bytes, 2048);
    return answer(call, bytes, bytes.size());
}

std::size_t readContents(Call& call)
{
    const int format = (call.at(2) & 15) != 0 ? call.at(2) & 15 : call.at(9) >> 6;
    if (format > 4 || format == 3)
        throw invalidField;
    if (format < 3 && call.medium().sessions == 0)
        throw invalidField;
    constexpr Bytes (*answers[])(const Call&) = {shortContents, sessionContents, fullContents, nullptr,
                                                 pregroove};
    Bytes bytes = answers[format](call);
    setLength16(bytes);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

std::size_t readDiscInformation(Call& call)
{
    const Medium& medium = call.medium();
    const bool canGoOn = discStatus(medium) == 1;
    const int sessions = medium.sessions + (canGoOn || isBlank(medium) ? 1 : 0);
    const int last = medium.trackCount + (canGoOn || isBlank(medium) ? 1 : 0);
    Bytes bytes(16);
    bytes[2] = static_cast<std::uint8_t>((medium.kind == Kind::rewritable ? 16 : 0) |
                                         lastSessionStatus(medium) << 2 | discStatus(medium));
    bytes[3] = 1;
    bytes[4] = static_cast<std::uint8_t>(sessions);
    bytes[5] = static_cast<std::uint8_t>(last);
    bytes[6] = static_cast<std::uint8_t>(last);
    bytes[7] = 0x20;
    bytes.push_back(0);
    addTime(bytes, isBlank(medium) ? leadInStart : nextWritable(medium) - pregap);
    bytes.push_back(0);
    addTime(bytes, medium.capacity);
    bytes.resize(34);
    setLength16(bytes);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

std::size_t readTrackInformation(Call& call)
{
    const Medium& medium = call.medium();
    const int asked = call.number32(2) == nextTrackNumber ? medium.trackCount + 1 : call.number32(2);
    const Track* const track = trackNumbered(medium, asked);
    const bool isNext = asked == medium.trackCount + 1 && !medium.isClosed && medium.kind != Kind::pressed;
    if (track == nullptr && !isNext)
        throw invalidField;
    const std::int32_t start = track ? track->start : nextWritable(medium);
    const std::int32_t free = track || medium.isSpoiled ? 0 : medium.capacity - start;
    Bytes bytes = {0,
                   0,
                   static_cast<std::uint8_t>(asked),
                   static_cast<std::uint8_t>(track ? track->session : medium.sessions + 1),
                   0,
                   0,
                   0,
                   0};
    bytes[5] =
        static_cast<std::uint8_t>((track && track->isData ? 4 : 0) | (!track && medium.isSpoiled ? 0x20 : 0));
    bytes[6] = static_cast<std::uint8_t>(track ? 0x0F : 0x4F);
    bytes[7] = !track && !medium.isSpoiled ? 1 : 0;
    for (const std::int32_t value : {start, track ? 0 : start, free, 0, track ? track->sectors : free, 0})
        add32(bytes, value);
    bytes.resize(36);
    setLength16(bytes);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

}
