// SPDX-License-Identifier: GPL-3.0-or-later
// What a disc answers about itself, and how a session comes onto it (MMC-5, ECMA-130).
#pragma once

#include "tests/simulated_drive/drive_state.h"

namespace simulated
{

inline constexpr std::int32_t pregap = 150;        // sectors before a track
inline constexpr std::int32_t runOut = 2;          // behind a track that was written at once
inline constexpr std::int32_t fewestSectors = 300; // that a track has

bool isBlank(const Medium& medium);
bool hasOpenSession(const Medium& medium);

// The track with that number; nullptr when there is none.
const Track* trackNumbered(const Medium& medium, int number);

// The track that the sector lies in, with the pause before it; nullptr outside every closed session.
const Track* trackAt(const Medium& medium, std::int32_t sector);

// Where the next track's sound would begin.
std::int32_t nextWritable(const Medium& medium);

// Whether reading that sector fails, this time.
bool failsToRead(Medium& medium, std::int32_t sector);

void addTrack(Medium& medium, std::int32_t start, std::int32_t sectors, bool isData);

// Closes the session that the newest tracks make.
void closeSession(Medium& medium, std::int32_t leadOut, bool closesDisc);

void erase(Medium& medium);

}
