// SPDX-License-Identifier: GPL-3.0-or-later
// A desk for discs: folders of its own, a window thread that the test plays, and the desktop's services as
// recording fakes.
#pragma once

#include "engines/disc/busy_devices.h"
#include "engines/disc/disc_folders.h"
#include "engines/disc/disc_reader.h"
#include "engines/disc/disc_writer.h"
#include "engines/disc/image_drive.h"
#include "engines/disc/image_recorder.h"
#include "engines/disc/reader_table.h"
#include "platform/part_notes.h"
#include "platform/post.h"
#include "platform/shell.h"
#include "platform/sleep_lock.h"
#include "tests/support/disc_sounds.h"
#include "tests/support/temporary_folder.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <set>
#include <vector>

// Keeps what is posted until the test lets it run.
class PlayedWindow final : public Post
{
public:
    void post(std::function<void()> call) override
    {
        const std::lock_guard guard(mutex_);
        calls_.push_back(std::move(call));
        posted_.notify_one();
    }

    // Runs the calls as they come until the condition holds; false when that takes too long.
    template <typename Condition>
    bool runUntil(Condition holds)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!holds())
            if (!runNext(end))
                return false;
        return true;
    }

    // Runs what has been posted by now.
    void runPosted()
    {
        while (runNext({}))
            continue;
    }

private:
    bool runNext(std::chrono::steady_clock::time_point end)
    {
        std::unique_lock guard(mutex_);
        if (!posted_.wait_until(guard, end, [&] { return !calls_.empty(); }))
            return false;
        const auto call = std::move(calls_.front());
        calls_.pop_front();
        guard.unlock();
        call();
        return true;
    }

    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<std::function<void()>> calls_;
};

class ToldShell final : public Shell
{
public:
    void startProgram(const Text&) override {}
    void notify(const Text& title, const Text& message) override
    {
        const std::lock_guard guard(mutex_);
        told_.push_back(title + " | " + message);
    }

    std::vector<Text> told() const
    {
        const std::lock_guard guard(mutex_);
        return told_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Text> told_;
};

class CountedSleepLock final : public SleepLock
{
public:
    void begin(const Text&) override { ++held, ++begun; }
    void end() override { --held; }

    std::atomic<int> held = 0;
    std::atomic<int> begun = 0;
};

class RememberedParts final : public PartNotes
{
public:
    void note(const Text& partPath) override
    {
        const std::lock_guard guard(mutex_);
        open_.insert(partPath);
    }
    void done(const Text& partPath) override
    {
        const std::lock_guard guard(mutex_);
        open_.erase(partPath);
    }

    std::set<Text> open() const
    {
        const std::lock_guard guard(mutex_);
        return open_;
    }

private:
    mutable std::mutex mutex_;
    std::set<Text> open_;
};

struct DiscDesk {
    TemporaryFolder folder;
    disc::DiscFolders folders{folder / "Music", folder / "home"};
    Text discs = folders.music + "/Velmora Discs";
    Text output = folder / "output";
    PlayedWindow window;
    ToldShell shell;
    CountedSleepLock sleepLock;
    RememberedParts parts;
    std::shared_ptr<disc::BusyDevices> devices = std::make_shared<disc::BusyDevices>();
    std::vector<std::shared_ptr<disc::ReaderDrive>> readers; // real drives
    std::vector<std::shared_ptr<disc::WriterDrive>> writers; // real recorders

    DiscDesk()
    {
        for (const Text& each : {folders.home, discs, output})
            std::filesystem::create_directories(each);
    }

    std::unique_ptr<ACD> reader()
    {
        auto table = std::make_shared<disc::ReaderTable>(
            std::vector<disc::ListReaders>{[this] { return readers; }, disc::imagesIn(folders)}, devices);
        return disc::makeDiscReader(table, devices, window, shell, parts, sleepLock);
    }

    std::unique_ptr<ACDWRITE> writer()
    {
        return disc::makeDiscWriter([this] { return writers; }, disc::makeImageRecorder(folders, parts),
                                    devices, window, shell, sleepLock);
    }
};

// Counts and keeps what the reader or the writer tells its window.
template <typename Control>
struct Heard {
    PlayedWindow& window;
    std::vector<std::int32_t> progress;
    int done = 0;

    Heard(PlayedWindow& itsWindow, Control& control) : window(itsWindow)
    {
        control.Progress.calls([this](auto position) { progress.push_back(position); });
        control.Done.calls([this](auto...) { ++done; });
    }

    bool end()
    {
        return window.runUntil([&] { return done > 0; });
    }

    bool rises() const
    {
        for (std::size_t i = 1; i < progress.size(); ++i)
            if (progress[i] <= progress[i - 1])
                return false;
        return true;
    }
};
