// SPDX-License-Identifier: GPL-3.0-or-later
// The drives whose state files are there.
#pragma once

#include "tests/simulated_drive/drive_state.h"

#include <memory>
#include <optional>
#include <string>

namespace simulated
{

// A drive's number in a path of its device: 3 for "/dev/sr3". Nothing for every other path.
std::optional<int> driveNumber(const char* path);

// The path of the state file; it need not exist.
std::string statePath(int number);

// The drive that the open file `descriptor` stands for; nullptr for every other file. It stays mapped.
struct Opened {
    Drive* state = nullptr;
    int number = 0;
};
Opened openedDrive(int descriptor);

// To be told of every state file that was opened as a drive.
void noteOpened(int descriptor, int number);

}
