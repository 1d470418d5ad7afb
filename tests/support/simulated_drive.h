// SPDX-License-Identifier: GPL-3.0-or-later
// A CD drive for tests: there while the object lives. Its disc, tray and troubles are a test's to choose;
// what it was asked and what was written to it can be looked at.
#pragma once

#include "platform/text.h"
#include "tests/simulated_drive/medium.h"
#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

// One folder for the whole run of tests, named before any thread could ask for it.
class SimulatedDrives
{
public:
    SimulatedDrives()
    {
        setenv(simulated::folderVariable, folder_.path().c_str(), 1);
        std::at_quick_exit(remove); // which comes to no destructor
    }

    Text statePath(int number) const { return folder_ / ("sr" + std::to_string(number)); }

private:
    static void remove();

    TemporaryFolder folder_;
};

inline const SimulatedDrives simulatedDrives;

inline void SimulatedDrives::remove()
{
    std::error_code ignored;
    std::filesystem::remove_all(simulatedDrives.folder_.path(), ignored);
}

class SimulatedDrive
{
public:
    // A track of a disc: its sound, a whole number of sectors, and what lies before it.
    struct Recorded {
        Text sound;
        bool isData = false;
        int session = 1;
        std::int32_t pause = 0; // sectors between it and the track before, that belong to neither
    };

    explicit SimulatedDrive(int number = 0, const Text& vendor = "ACME", const Text& product = "CD-RW 4224") :
        path_(simulatedDrives.statePath(number)), device_("/dev/sr" + std::to_string(number))
    {
        const int file = open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (ftruncate(file, sizeof(simulated::Drive)) == 0)
            state_ = static_cast<simulated::Drive*>(
                mmap(nullptr, sizeof(simulated::Drive), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        close(file);
        prepareLock();
        vendor.copy(state_->vendor, sizeof state_->vendor - 1);
        product.copy(state_->product, sizeof state_->product - 1);
        state_->canWrite = state_->canSimulate = true;
        state_->hangingCommand = -1;
        state_->writeErrorAt = simulated::never;
    }

    // Commands that hang come back: nothing of a test waits on.
    ~SimulatedDrive()
    {
        answerAgain();
        change([](simulated::Drive& drive) { drive.isGone = true; });
        std::filesystem::remove(path_);
        std::filesystem::remove(path_ + ".sectors");
        munmap(state_, sizeof(simulated::Drive));
    }
    SimulatedDrive(const SimulatedDrive&) = delete;
    SimulatedDrive& operator=(const SimulatedDrive&) = delete;

    const Text& device() const { return device_; }

    template <typename Change>
    void change(Change&& change)
    {
        simulated::Lock lock(*state_);
        change(*state_);
        lock.tell();
    }

    // A copy of the state as it is now.
    simulated::Drive now() const
    {
        const simulated::Lock lock(*state_);
        return *state_;
    }
    simulated::Medium medium() const { return now().medium; }
    int count(std::uint8_t command) const { return static_cast<int>(now().commands[command]); }

    void insert(const std::vector<Recorded>& tracks)
    {
        simulated::Medium medium{};
        medium.kind = simulated::Kind::pressed;
        medium.isClosed = true;
        std::int32_t end = 0;
        putFile(path_ + ".sectors", "");
        for (const Recorded& track : tracks) {
            if (track.session > medium.sessions + 1) {
                simulated::closeSession(medium, end, false);
                end = simulated::nextWritable(medium);
            }
            const auto sectors = static_cast<std::int32_t>(track.sound.size()) / simulated::sectorBytes;
            store(end + track.pause, track.sound);
            simulated::addTrack(medium, end + track.pause, sectors, track.isData);
            end += track.pause + sectors;
        }
        simulated::closeSession(medium, end, true);
        insert(medium);
    }

    void insertBlank(simulated::Kind kind = simulated::Kind::recordable, std::int32_t capacity = 359849)
    {
        simulated::Medium medium{};
        medium.kind = kind;
        medium.capacity = capacity;
        std::filesystem::remove(path_ + ".sectors");
        insert(medium);
    }

    void insert(const simulated::Medium& medium)
    {
        change([&](simulated::Drive& drive) {
            drive.medium = medium;
            drive.writing = {};
            drive.hasNewMedium = true;
            drive.trayIsOpen = false;
        });
    }

    void takeOut() { insert(simulated::Medium{}); }

    void openTray()
    {
        change([](simulated::Drive& drive) { drive.trayIsOpen = true; });
    }

    // Reading that sector fails so many times; -1 for ever.
    void damage(std::int32_t sector, std::int32_t failures = -1)
    {
        change([&](simulated::Drive& drive) {
            drive.medium.bad[drive.medium.badCount++] = {sector, failures};
        });
    }

    void hangOn(std::uint8_t command)
    {
        change([&](simulated::Drive& drive) { drive.hangingCommand = command; });
    }
    void answerAgain()
    {
        change([](simulated::Drive& drive) { drive.hangingCommand = -1; });
    }
    void waitUntilItHangs()
    {
        simulated::Lock lock(*state_);
        while (state_->hanging == 0)
            lock.wait();
    }

    // What lies there, silence where nothing was put.
    Text sectors(std::int32_t start, std::int32_t count) const
    {
        Text bytes(static_cast<std::size_t>(count) * simulated::sectorBytes, '\0');
        const int file = open((path_ + ".sectors").c_str(), O_RDONLY | O_CLOEXEC);
        (void)!pread(file, bytes.data(), bytes.size(), static_cast<off_t>(start) * simulated::sectorBytes);
        close(file);
        return bytes;
    }

    // The sound of a recorded track.
    Text track(int number) const
    {
        const auto disc = medium();
        const auto* const track = simulated::trackNumbered(disc, number);
        return track ? sectors(track->start, track->sectors) : Text();
    }

private:
    // Its state outlives a process that is killed in the middle.
    void prepareLock()
    {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        pthread_mutex_init(&state_->mutex, &attributes);
        pthread_condattr_t conditions;
        pthread_condattr_init(&conditions);
        pthread_condattr_setpshared(&conditions, PTHREAD_PROCESS_SHARED);
        pthread_cond_init(&state_->changed, &conditions);
    }

    void store(std::int32_t start, const Text& bytes) const
    {
        const int file = open((path_ + ".sectors").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        (void)!pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(start) * simulated::sectorBytes);
        close(file);
    }

    Text path_;
    Text device_;
    simulated::Drive* state_ = nullptr;
};
