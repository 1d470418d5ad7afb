#include "tests/simulated_drive/commands.h"

#include "tests/simulated_drive/mapped_drives.h"
#include "tests/simulated_drive/medium.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace simulated
{

namespace
{

using Bytes = std::vector<std::uint8_t>;

// clang-format off
constexpr Sense notPresent     {0x2, 0x3A, 0x01};
constexpr Sense trayOpen       {0x2, 0x3A, 0x02};
constexpr Sense unreadable     {0x3, 0x11, 0x05};
constexpr Sense writeFailed    {0x3, 0x0C, 0x00};
constexpr Sense unknownCommand {0x5, 0x20, 0x00};
constexpr Sense outOfRange     {0x5, 0x21, 0x00};
constexpr Sense notWritable    {0x5, 0x21, 0x02};
constexpr Sense invalidField   {0x5, 0x24, 0x00};
constexpr Sense wrongSequence  {0x5, 0x2C, 0x00};
constexpr Sense removalLocked  {0x5, 0x53, 0x02};
constexpr Sense wrongTrackMode {0x5, 0x64, 0x00};
constexpr Sense mediumChanged  {0x6, 0x28, 0x00};
// clang-format on

constexpr std::uint8_t leadOutNumber = 0xAA;
constexpr std::uint8_t nextTrackNumber = 0xFF;
constexpr std::int32_t leadInStart = -11077; // 97:34:23, as many discs have it

// One command on its way through the drive.
struct Call {
    Drive& drive;
    int number;
    std::span<const std::uint8_t> command;
    std::span<std::uint8_t> data;

    std::uint8_t at(std::size_t index) const { return index < command.size() ? command[index] : 0; }
    std::int32_t number16(std::size_t index) const { return at(index) << 8 | at(index + 1); }
    std::int32_t number24(std::size_t index) const { return at(index) << 16 | number16(index + 1); }
    std::int32_t number32(std::size_t index) const
    {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(at(index)) << 24 |
                                         static_cast<std::uint32_t>(number24(index + 1)));
    }

    Medium& medium() const { return drive.writing.simulates ? drive.rehearsal : drive.medium; }
    bool fromDrive() const { return !drive.trayIsOpen && drive.medium.kind != Kind::none; }
};

void add16(Bytes& bytes, int value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void add32(Bytes& bytes, std::int32_t value)
{
    add16(bytes, value >> 16);
    add16(bytes, value);
}

// Minute, second and frame of a sector; before the program area they count on from 90 minutes.
void addTime(Bytes& bytes, std::int32_t sector)
{
    const std::int32_t frames = sector >= -pregap ? sector + pregap : sector + 450150;
    for (const std::int32_t part : {frames / 75 / 60, frames / 75 % 60, frames % 75})
        bytes.push_back(static_cast<std::uint8_t>(part));
}

// The length that such answers begin with: of what follows it.
void setLength16(Bytes& bytes)
{
    const auto length = bytes.size() - 2;
    bytes[0] = static_cast<std::uint8_t>(length >> 8);
    bytes[1] = static_cast<std::uint8_t>(length);
}

std::size_t answer(const Call& call, const Bytes& bytes, std::size_t allowed)
{
    const auto count = std::min({bytes.size(), allowed, call.data.size()});
    std::copy_n(bytes.begin(), count, call.data.begin());
    return count;
}

void requireMedium(const Call& call)
{
    if (call.drive.trayIsOpen)
        throw trayOpen;
    if (call.drive.medium.kind == Kind::none)
        throw notPresent;
}

int profile(const Call& call)
{
    if (!call.fromDrive())
        return 0;
    switch (call.drive.medium.kind) {
    case Kind::recordable:
        return 0x09;
    case Kind::rewritable:
        return 0x0A;
    case Kind::dvd:
        return 0x11;
    default:
        return 0x08;
    }
}

std::size_t testUnitReady(Call&) { return 0; }

std::size_t requestSense(Call& call)
{
    Bytes bytes(18);
    bytes[0] = 0x70;
    bytes[7] = 10;
    return answer(call, bytes, call.at(4));
}

std::size_t inquiry(Call& call)
{
    Bytes bytes = {0x05, 0x80, 0x05, 0x32, 31, 0, 0, 0};
    const auto padded = [&](std::string_view text, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<std::uint8_t>(i < text.size() ? text[i] : ' '));
    };
    padded(call.drive.vendor, 8);
    padded(call.drive.product, 16);
    padded("1.00", 4);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(3)));
}

std::size_t startStop(Call& call)
{
    const bool moves = (call.at(4) & 2) != 0;
    const bool starts = (call.at(4) & 1) != 0;
    if (moves && !starts && call.drive.isLocked)
        throw removalLocked;
    if (moves) {
        call.drive.hasNewMedium |= call.drive.trayIsOpen && starts;
        call.drive.trayIsOpen = !starts;
    }
    return 0;
}

std::size_t preventRemoval(Call& call)
{
    call.drive.isLocked = (call.at(4) & 1) != 0;
    return 0;
}

std::size_t readCapacity(Call& call)
{
    const Medium& medium = call.medium();
    Bytes bytes;
    add32(bytes, medium.sessions > 0 ? medium.leadOuts[medium.sessions - 1] - 1 : 0);
    add32(bytes, 2048);
    return answer(call, bytes, bytes.size());
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

void slowDown(std::int32_t sectors, std::int32_t milliseconds)
{
    if (milliseconds > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(sectors * milliseconds));
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
    slowDown(count, drive.millisecondsToWrite);
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
    slowDown(count, call.drive.millisecondsToRead);
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

void addFeature(Bytes& bytes, int code, bool isCurrent, const Bytes& data)
{
    add16(bytes, code);
    bytes.push_back(isCurrent ? 1 : 0);
    bytes.push_back(static_cast<std::uint8_t>(data.size()));
    bytes.insert(bytes.end(), data.begin(), data.end());
}

std::size_t getConfiguration(Call& call)
{
    const int current = profile(call);
    const bool canRecord = call.drive.canWrite && (current == 0x09 || current == 0x0A);
    const auto test = static_cast<std::uint8_t>(call.drive.canSimulate ? 4 : 0);
    Bytes profiles;
    for (const int known : {0x08, 0x09, 0x0A}) {
        add16(profiles, known);
        add16(profiles, known == current ? 0x100 : 0);
    }
    Bytes bytes(4);
    add16(bytes, 0);
    add16(bytes, current);
    addFeature(bytes, 0x00, true, profiles);
    addFeature(bytes, 0x01, true, {0, 0, 0, 7, 0, 0, 0, 0});
    addFeature(bytes, 0x03, true, {0x29, 0, 0, 0});
    addFeature(bytes, 0x1E, current != 0, {0, 0, 0, 0});
    addFeature(bytes, 0x2D, canRecord, {static_cast<std::uint8_t>(0x42 | test), 0, 0, 0});
    addFeature(bytes, 0x2E, canRecord, {static_cast<std::uint8_t>(0x62 | test), 0, 0, 0});
    const auto length = static_cast<std::int32_t>(bytes.size() - 4);
    bytes[2] = static_cast<std::uint8_t>(length >> 8);
    bytes[3] = static_cast<std::uint8_t>(length);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

std::size_t getEvent(Call& call)
{
    Bytes bytes = {0, 6, 4, 0x10, 0, 0, 0, 0};
    bytes[4] = call.drive.hasNewMedium ? 2 : 0;
    bytes[5] = static_cast<std::uint8_t>((call.drive.trayIsOpen ? 1 : 0) | (call.fromDrive() ? 2 : 0));
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
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

std::size_t readBufferCapacity(Call& call)
{
    Bytes bytes(4);
    add32(bytes, 2 * 1024 * 1024);
    add32(bytes, 2 * 1024 * 1024);
    setLength16(bytes);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
}

Bytes writeParameters()
{
    Bytes page(0x34);
    page[0] = 0x05;
    page[1] = 0x32;
    page[2] = 0x41;
    page[4] = 8;
    page[15] = 150;
    return page;
}

Bytes capabilities(const Call& call)
{
    constexpr int speeds[] = {4234, 2824, 1411, 706};
    const int writes = call.drive.canWrite ? 3 : 0;
    Bytes page = {0x2A, 0,    0x03, static_cast<std::uint8_t>(writes | (call.drive.canSimulate ? 4 : 0)),
                  0xF1, 0x77, 0x29, 0x23};
    for (const int value : {8467, 256, 2048, 8467, 0, speeds[0], speeds[0], 0, 0, 0, speeds[0], 4})
        add16(page, value);
    for (const int speed : speeds) {
        add16(page, 0);
        add16(page, speed);
    }
    page[1] = static_cast<std::uint8_t>(page.size() - 2);
    return page;
}

Bytes errorRecovery() { return {0x01, 0x0A, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0}; }

std::size_t modeSense(Call& call)
{
    Bytes page;
    switch (call.at(2) & 0x3F) {
    case 0x01:
        page = errorRecovery();
        break;
    case 0x05:
        page = writeParameters();
        break;
    case 0x2A:
        page = capabilities(call);
        break;
    default:
        throw invalidField;
    }
    Bytes bytes(8);
    bytes.insert(bytes.end(), page.begin(), page.end());
    setLength16(bytes);
    return answer(call, bytes, static_cast<std::size_t>(call.number16(7)));
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

std::size_t blank(Call& call)
{
    if (call.medium().kind != Kind::rewritable)
        throw invalidField;
    erase(call.drive.medium);
    return 0;
}

std::size_t setSpeed(Call& call)
{
    call.drive.writeSpeed = call.number16(4);
    return 0;
}

std::size_t accepted(Call&) { return 0; }

struct Command {
    std::uint8_t code;
    bool needsMedium;
    std::size_t (*carryOut)(Call& call);
};

// clang-format off
constexpr Command commands[] = {
    {0x00, true,  testUnitReady},
    {0x03, false, requestSense},
    {0x12, false, inquiry},
    {0x1B, false, startStop},
    {0x1E, false, preventRemoval},
    {0x25, true,  readCapacity},
    {0x2A, true,  write},
    {0x35, false, synchronize},
    {0x42, true,  readSubchannel},
    {0x43, true,  readContents},
    {0x46, false, getConfiguration},
    {0x4A, false, getEvent},
    {0x51, true,  readDiscInformation},
    {0x52, true,  readTrackInformation},
    {0x53, true,  accepted}, // RESERVE TRACK
    {0x54, true,  accepted}, // SEND OPC INFORMATION
    {0x55, false, modeSelect},
    {0x5A, false, modeSense},
    {0x5B, true,  closeTrackOrSession},
    {0x5C, false, readBufferCapacity},
    {0x5D, true,  sendCueSheet},
    {0xA1, true,  blank},
    {0xB9, true,  readCdTime},
    {0xBB, false, setSpeed},
    {0xBE, true,  readCd},
};
// clang-format on

const Command& commandOf(std::uint8_t code)
{
    for (const Command& command : commands)
        if (command.code == code)
            return command;
    throw unknownCommand;
}

void waitWhileHanging(Drive& drive, Lock& lock, std::uint8_t code)
{
    ++drive.hanging;
    lock.tell();
    while (drive.hangingCommand == code)
        lock.wait();
    --drive.hanging;
    lock.tell();
}

}

std::size_t carryOut(Drive& drive, int number, std::span<const std::uint8_t> command,
                     std::span<std::uint8_t> data)
{
    Lock lock(drive);
    Call call{drive, number, command, data};
    const std::uint8_t code = call.at(0);
    ++drive.commands[code];
    waitWhileHanging(drive, lock, code);
    const Command& known = commandOf(code);
    if (known.needsMedium && drive.hasNewMedium && call.fromDrive()) {
        drive.hasNewMedium = false;
        throw mediumChanged;
    }
    if (known.needsMedium)
        requireMedium(call);
    return known.carryOut(call);
}

}
