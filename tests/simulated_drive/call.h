// SPDX-License-Identifier: GPL-3.0-or-later
// One command on its way through the drive, and what its answer is made of.
#pragma once

#include "tests/simulated_drive/commands.h"
#include "tests/simulated_drive/medium.h"

#include <cstdint>
#include <vector>

namespace simulated
{

using Bytes = std::vector<std::uint8_t>;

// clang-format off
inline constexpr Sense notPresent     {0x2, 0x3A, 0x01};
inline constexpr Sense trayOpen       {0x2, 0x3A, 0x02};
inline constexpr Sense unreadable     {0x3, 0x11, 0x05};
inline constexpr Sense writeFailed    {0x3, 0x0C, 0x00};
inline constexpr Sense unknownCommand {0x5, 0x20, 0x00};
inline constexpr Sense outOfRange     {0x5, 0x21, 0x00};
inline constexpr Sense notWritable    {0x5, 0x21, 0x02};
inline constexpr Sense invalidField   {0x5, 0x24, 0x00};
inline constexpr Sense wrongSequence  {0x5, 0x2C, 0x00};
inline constexpr Sense removalLocked  {0x5, 0x53, 0x02};
inline constexpr Sense wrongTrackMode {0x5, 0x64, 0x00};
inline constexpr Sense mediumChanged  {0x6, 0x28, 0x00};
// clang-format on

inline constexpr std::uint8_t leadOutNumber = 0xAA;
inline constexpr std::uint8_t nextTrackNumber = 0xFF;
inline constexpr std::int32_t leadInStart = -11077; // 97:34:23, as many discs have it

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
    bool hasDisc() const { return !drive.trayIsOpen && drive.medium.kind != Kind::none; }

    // What the drive takes for each of so many sectors.
    void takeTime(std::int32_t sectors, std::int32_t milliseconds) const;
};

void add16(Bytes& bytes, int value);
void add32(Bytes& bytes, std::int32_t value);

// Minute, second and frame of a sector; before the program area they count on from 90 minutes.
void addTime(Bytes& bytes, std::int32_t sector);

// Sets the length that such answers begin with: of what follows it.
void setLength16(Bytes& bytes);

// Hands over as much as was asked for.
std::size_t answer(const Call& call, const Bytes& bytes, std::size_t allowed);

// The drive by itself.
std::size_t testUnitReady(Call& call);
std::size_t requestSense(Call& call);
std::size_t inquiry(Call& call);
std::size_t startStop(Call& call);
std::size_t preventRemoval(Call& call);
std::size_t getConfiguration(Call& call);
std::size_t getEvent(Call& call);
std::size_t modeSense(Call& call);
std::size_t readBufferCapacity(Call& call);
std::size_t setSpeed(Call& call);
std::size_t accepted(Call& call);

// What the disc is.
std::size_t readCapacity(Call& call);
std::size_t readContents(Call& call);
std::size_t readDiscInformation(Call& call);
std::size_t readTrackInformation(Call& call);

// Its sound.
std::size_t readCd(Call& call);
std::size_t readCdTime(Call& call);
std::size_t readSubchannel(Call& call);

// What comes onto it.
std::size_t modeSelect(Call& call);
std::size_t sendCueSheet(Call& call);
std::size_t write(Call& call);
std::size_t synchronize(Call& call);
std::size_t closeTrackOrSession(Call& call);
std::size_t blank(Call& call);

}
