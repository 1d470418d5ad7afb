// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes MP3 files to WAV files on worker threads, one job at a time, each with the paths it was opened
// with.
#pragma once

#include "platform/part_notes.h"
#include "platform/post.h"
#include "platform/shell.h"
#include "platform/text.h"

#include <cstdint>
#include <functional>
#include <memory>

class DecodeJobs
{
public:
    // Both calls run on the window thread. No progress comes after its `done`.
    struct Events {
        std::function<void(std::int32_t)> progress; // thousandths of the file
        std::function<void()> done;                 // exactly once for each `start`
    };

    // `post`, `shell` and `notes` outlive the jobs.
    DecodeJobs(Post& post, Shell& shell, Events events, PartNotes& notes = NoPartNotes::instance());

    // On the window thread. Breaks off the running job; nothing is delivered afterwards.
    ~DecodeJobs();

    // Names the next job. 0 when `input` is an MP3 file and `output` another file; never aborts a running
    // job.
    std::int16_t open(const Text& input, const Text& output);

    // Queues the job opened last, also when its `open` failed: its `done` comes all the same, and the desktop
    // is told.
    void start();

    // Frees the job whose `done` is being delivered; otherwise forgets what was opened and not started.
    void close();

    const Text& input() const; // of the job opened last: the file that its name led to

    // 1000 while something is open, otherwise 0.
    std::int32_t length() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};
