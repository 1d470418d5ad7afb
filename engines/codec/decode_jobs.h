// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes MP3 files to WAV files on worker threads, one job at a time, each with the paths it was opened
// with.
#pragma once

#include "engines/codec/conversion_queue.h"
#include "platform/part_notes.h"
#include "platform/post.h"
#include "platform/shell.h"
#include "platform/text.h"

#include <cstdint>
#include <functional>

namespace codec
{

class DecodeJobs
{
public:
    // Both calls run on the window thread. No progress comes after its `done`.
    struct DecodeEvents {
        std::function<void(std::int32_t)> progress; // thousandths of the file
        std::function<void()> done;                 // exactly once for each `start`
    };

    // `post`, `shell` and `notes` outlive the jobs. Their end, on the window thread, breaks off the running
    // one, and nothing is delivered afterwards.
    DecodeJobs(Post& post, Shell& shell, DecodeEvents events, PartNotes& notes = NoPartNotes::instance());

    // Names the next job. 0 when `input` is an MP3 file and `output` another file; never aborts a running
    // job.
    std::int16_t open(const Text& input, const Text& output);

    // Queues the job opened last, also when its `open` failed: its `done` comes all the same, and the desktop
    // is told.
    void start();

    // Frees the job whose `done` is being delivered; otherwise forgets what was opened and not started.
    void close();

    const Text& input() const { return job_.input; } // of the job opened last: the file that its name led to

    // 1000 while something is open, otherwise 0.
    std::int32_t length() const { return job_.isOpen || unfinished_ > 0 ? 1000 : 0; }

private:
    struct Decoding {
        std::uint64_t number = 0; // 0: nothing was opened
        Text input;
        Text output;
        bool isOpen = false;
    };

    void deliver(std::uint64_t number);

    DecodeEvents events_;
    PartNotes& notes_;
    std::uint64_t opened_ = 0;    // calls of `open`
    Decoding job_;                // opened last
    std::uint64_t delivered_ = 0; // the job whose `done` is being delivered
    int unfinished_ = 0;
    ConversionQueue queue_; // the last member: its conversion ends first
};

}
