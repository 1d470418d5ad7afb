// SPDX-License-Identifier: GPL-3.0-or-later
// A simulated CD drive and what is in it: one file that the drive maps, and the test that owns it.
//
// The environment's VELMORA_SIMULATED_DRIVES names a folder. While it holds a file `sr0`, there is a drive
// /dev/sr0; the sectors of its disc lie in `sr0.sectors`, sector n at n * 2352.
#pragma once

#include <pthread.h>

#include <cstdint>

namespace simulated
{

inline constexpr const char* folderVariable = "VELMORA_SIMULATED_DRIVES";

inline constexpr int mostTracks = 99;
inline constexpr int mostBadSectors = 64;
inline constexpr std::int32_t sectorBytes = 2352;
inline constexpr std::int32_t never = 0x7FFFFFFF;

enum class Kind : std::int32_t { none, pressed, recordable, rewritable, dvd };

struct Track {
    std::int32_t start;
    std::int32_t sectors;
    std::int32_t session; // from 1
    bool isData;
};

struct BadSector {
    std::int32_t sector;
    std::int32_t failuresLeft; // of reading it; -1 for ever
};

struct Medium {
    Kind kind;
    bool isClosed;         // no session can follow
    bool isSpoiled;        // a session was begun and cannot be ended
    std::int32_t capacity; // where the lead-out begins at the latest
    std::int32_t trackCount;
    Track tracks[mostTracks]; // those of a session that is not closed yet come last
    std::int32_t sessions;    // closed ones
    std::int32_t leadOuts[mostTracks];
    std::int32_t badCount;
    BadSector bad[mostBadSectors];
};

enum class WriteType : std::int32_t { none, trackAtOnce, sessionAtOnce };

// The writing under way, as the write parameters, the cue sheet and the write commands made it.
struct Writing {
    WriteType type;
    bool simulates;
    bool leavesOpen;
    std::int32_t next;    // sector; of the track or session that is being written
    std::int32_t leadOut; // of the session
    std::int32_t trackCount;
    Track tracks[mostTracks];
};

struct Drive {
    pthread_mutex_t mutex;
    pthread_cond_t changed;

    char vendor[9];
    char product[17];
    bool canWrite;
    bool canSimulate;
    bool isGone;
    bool trayIsOpen;
    bool isLocked;
    bool hasNewMedium; // nobody was told yet

    std::int32_t hangingCommand;      // that operation code is not answered; -1 none
    std::int32_t hanging;             // how many commands wait for that
    std::int32_t millisecondsToRead;  // a sector
    std::int32_t millisecondsToWrite; // a sector
    std::int32_t writeErrorAt;        // sector; `never`
    std::int32_t written;             // sectors that came, simulated ones too
    std::int32_t opened;              // how often
    std::uint32_t commands[256];      // how often each operation code came
    std::int32_t writeSpeed;          // kB/s, as set last

    Medium medium;
    Medium rehearsal; // stands in for the medium while writing is simulated
    Writing writing;
};

// Held while the drive's state is read or changed.
class Lock
{
public:
    explicit Lock(Drive& drive) : drive_(drive)
    {
        if (pthread_mutex_lock(&drive_.mutex) != 0)
            pthread_mutex_consistent(&drive_.mutex);
    }
    ~Lock() { pthread_mutex_unlock(&drive_.mutex); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void wait() { pthread_cond_wait(&drive_.changed, &drive_.mutex); }
    void tell() { pthread_cond_broadcast(&drive_.changed); }

private:
    Drive& drive_;
};

}
