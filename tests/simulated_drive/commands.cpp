// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/commands.h"

#include "tests/simulated_drive/call.h"

namespace simulated
{

namespace
{

void requireMedium(const Call& call)
{
    if (call.drive.trayIsOpen)
        throw trayOpen;
    if (call.drive.medium.kind == Kind::none)
        throw notPresent;
}

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
    if (known.needsMedium && drive.hasNewMedium && call.hasDisc()) {
        drive.hasNewMedium = false;
        throw mediumChanged;
    }
    if (known.needsMedium)
        requireMedium(call);
    return known.carryOut(call);
}

}
