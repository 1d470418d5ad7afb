// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/decode_jobs.h"

#include "engines/codec/conversion_queue.h"
#include "engines/codec/decode_file.h"
#include "engines/formats/mp3_probe.h"
#include "files/file_to_open.h"
#include "files/folders.h"
#include "files/input_file.h"
#include "platform/failure.h"

namespace
{

bool isMp3(const Text& path)
{
    const auto file = files::InputFile::open(path);
    return file && formats::findMp3(file);
}

}

struct DecodeJobs::Parts {
    struct Job {
        std::uint64_t number = 0; // 0: nothing was opened
        Text input;
        Text output;
        bool isOpen = false;
    };

    Events events;
    PartNotes& notes;
    std::uint64_t opened = 0;    // calls of `open`
    Job job;                     // opened last
    std::uint64_t delivered = 0; // the job whose `done` is being delivered
    int unfinished = 0;
    codec::ConversionQueue queue; // the last member: its conversion ends first

    Parts(Post& post, Shell& shell, Events to, PartNotes& book) :
        events(std::move(to)), notes(book),
        queue(post, shell, "Decoding failed",
              {[this](std::int32_t position) { events.progress(position); },
               [this](std::uint64_t number) { finish(number); }})
    {
    }

    void finish(std::uint64_t number)
    {
        const Delivery ended{*this};
        --unfinished;
        delivered = number;
        events.done();
    }

    struct Delivery {
        Parts& parts;
        ~Delivery() { parts.delivered = 0; }
    };
};

DecodeJobs::DecodeJobs(Post& post, Shell& shell, Events events, PartNotes& notes) :
    parts_(std::make_unique<Parts>(post, shell, std::move(events), notes))
{
}

DecodeJobs::~DecodeJobs() = default;

std::int16_t DecodeJobs::open(const Text& input, const Text& output)
{
    auto job = files::answerOfFile<Parts::Job>(input, [output](const Text& path) {
        return Parts::Job{0, path, output, isMp3(path) && !files::isSameFile(path, output)};
    });
    parts_->job = std::move(job).value_or(Parts::Job{0, input, output, false});
    parts_->job.number = ++parts_->opened;
    return parts_->job.isOpen ? 0 : 1;
}

// Also what could not be opened is tried: the reason may have passed, and `done` must come.
void DecodeJobs::start()
{
    const auto& job = parts_->job;
    ++parts_->unfinished;
    parts_->queue.add({job.number, job.input,
                       [input = job.input, output = job.output,
                        &notes = parts_->notes](const codec::Report& report, const std::stop_token& stop) {
                           codec::decodeFile(input, output, codec::coreCount(), report, stop, notes);
                       }});
}

void DecodeJobs::close()
{
    if (parts_->delivered == 0 || parts_->delivered == parts_->job.number)
        parts_->job = {};
}

const Text& DecodeJobs::input() const { return parts_->job.input; }

std::int32_t DecodeJobs::length() const { return parts_->job.isOpen || parts_->unfinished > 0 ? 1000 : 0; }
