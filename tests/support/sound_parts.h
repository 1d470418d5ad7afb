// SPDX-License-Identifier: GPL-3.0-or-later
// What the engines are given in place of the program around them, and the engines on it.
#pragma once

#include "engines/audio/mpg123_play.h"
#include "engines/audio/sndfile_control.h"
#include "engines/audio/sound_output.h"
#include "engines/audio/unopened_files.h"
#include "platform/activity.h"
#include "platform/part_notes.h"
#include "platform/post.h"
#include "platform/shell.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/timing.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

// Counts the calls that would wake the window's thread.
class CountedPost final : public Post
{
public:
    void post(std::function<void()> call) override
    {
        const std::lock_guard lock(mutex_);
        calls_.push_back(std::move(call));
    }

    std::size_t count() const
    {
        const std::lock_guard lock(mutex_);
        return calls_.size();
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::function<void()>> calls_;
};

class NotedShell final : public Shell
{
public:
    void startProgram(const Text&) override {}
    void notify(const Text& title, const Text& message) override { notes.push_back(title + "|" + message); }

    std::vector<Text> notes;
};

class CountedActivity final : public Activity
{
public:
    void begin() override { ++running; }
    void end() override { --running; }

    std::atomic<int> running{0};
};

// Both engines on one output.
struct SoundParts {
    TemporaryFolder folder;
    CountedPost post;
    NotedShell shell;
    CountedActivity activity;
    audio::SoundOutput output{folder / "state/levels", activity};
    audio::UnopenedFiles unopened{shell};
    std::unique_ptr<Mp3Play> mp3 =
        audio::makeMpg123Play(output, post, shell, NoPartNotes::instance(), unopened);
    std::unique_ptr<MMControl> wav = audio::makeSndfileControl(output, unopened);

    void openWav(const Text& path)
    {
        wav->setFileName(path);
        wav->setCommand("Open");
    }

    double milliseconds(std::int32_t frame) const
    {
        return static_cast<double>(frame) * mp3->FrameDuration();
    }
    double mp3Milliseconds() const { return milliseconds(mp3->CurrentFrame()); }
    bool mp3WentOn(std::int32_t frame, std::chrono::steady_clock::time_point then) const
    {
        return wentOn(mp3Milliseconds(), milliseconds(frame), then);
    }
};
