// SPDX-License-Identifier: GPL-3.0-or-later
// The drive's commands (SCSI MMC-5, SPC-3).
#pragma once

#include "tests/simulated_drive/drive_state.h"

#include <cstddef>
#include <span>

namespace simulated
{

// Why a command was refused.
struct Sense {
    std::uint8_t key, code, qualifier;
};

// Carries out the command at `number`'s drive. `data` goes to the drive or comes from it. Returns how many
// bytes came. Throws a `Sense`.
std::size_t carryOut(Drive& drive, int number, std::span<const std::uint8_t> command,
                     std::span<std::uint8_t> data);

}
