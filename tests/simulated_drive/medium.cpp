// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/simulated_drive/medium.h"

namespace simulated
{

namespace
{

// Lead-out, lead-in and pause between two sessions.
constexpr std::int32_t gapAfterFirstSession = 6750 + 4500 + pregap;
constexpr std::int32_t gapAfterLaterSession = 2250 + 4500 + pregap;

}

bool isBlank(const Medium& medium) { return medium.trackCount == 0 && !medium.isSpoiled; }

bool hasOpenSession(const Medium& medium)
{
    return medium.trackCount > 0 && medium.tracks[medium.trackCount - 1].session > medium.sessions;
}

const Track* trackNumbered(const Medium& medium, int number)
{
    return number >= 1 && number <= medium.trackCount ? &medium.tracks[number - 1] : nullptr;
}

const Track* trackAt(const Medium& medium, std::int32_t sector)
{
    for (int i = medium.trackCount - 1; i >= 0; --i) {
        const Track& track = medium.tracks[i];
        const bool isFirst = i == 0;
        if (track.session <= medium.sessions && (sector >= track.start || isFirst))
            return sector < medium.leadOuts[track.session - 1] ? &track : nullptr;
    }
    return nullptr;
}

std::int32_t nextWritable(const Medium& medium)
{
    if (hasOpenSession(medium)) {
        const Track& last = medium.tracks[medium.trackCount - 1];
        return last.start + last.sectors + runOut + pregap;
    }
    if (medium.sessions == 0)
        return 0;
    return medium.leadOuts[medium.sessions - 1] +
           (medium.sessions == 1 ? gapAfterFirstSession : gapAfterLaterSession);
}

bool failsToRead(Medium& medium, std::int32_t sector)
{
    for (BadSector& bad : medium.bad) {
        if (&bad - medium.bad >= medium.badCount || bad.sector != sector || bad.failuresLeft == 0)
            continue;
        bad.failuresLeft -= bad.failuresLeft > 0;
        return true;
    }
    return false;
}

void addTrack(Medium& medium, std::int32_t start, std::int32_t sectors, bool isData)
{
    if (medium.trackCount < mostTracks)
        medium.tracks[medium.trackCount++] = {start, sectors, medium.sessions + 1, isData};
}

void closeSession(Medium& medium, std::int32_t leadOut, bool closesDisc)
{
    medium.leadOuts[medium.sessions++] = leadOut;
    medium.isClosed = closesDisc;
}

void erase(Medium& medium)
{
    const Kind kind = medium.kind;
    const std::int32_t capacity = medium.capacity;
    medium = {};
    medium.kind = kind;
    medium.capacity = capacity;
}

}
