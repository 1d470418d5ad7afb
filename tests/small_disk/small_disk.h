// SPDX-License-Identifier: GPL-3.0-or-later
// What the small disk of a test is at the moment, for the calls that stand in its place.
#pragma once

#include "tests/support/system_calls.h"

#include <sys/types.h>

#include <atomic>

namespace [[gnu::visibility("hidden")]] smallDisk
{

struct Disk {
    systemCalls::Place folder;
    std::atomic<off_t> bytes = 0;
    std::atomic<bool> isReadOnly = false;
    std::atomic<bool> takesPieces = false;
};

Disk& disk();

bool holds(const char* path);
bool holds(int file);

// Whether a call of that name fails, as a failing disk is about it; the error is set then.
bool fails(const char* call, const char* path);
bool fails(const char* call, int file);

// Bytes of the disk that no file takes.
off_t room();

// What a write of so many bytes there would add to the file.
off_t growth(int file, off_t at, off_t bytes);

}
