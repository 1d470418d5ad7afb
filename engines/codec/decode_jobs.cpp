// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/decode_jobs.h"

#include "engines/codec/decode_file.h"
#include "engines/formats/mp3_probe.h"
#include "files/file_to_open.h"
#include "files/folders.h"
#include "files/input_file.h"

namespace codec
{

namespace
{

bool isMp3(const Text& path)
{
    const auto file = files::InputFile::open(path);
    return file && formats::findMp3(file);
}

}

DecodeJobs::DecodeJobs(Post& post, Shell& shell, DecodeEvents events, PartNotes& notes) :
    events_(std::move(events)), notes_(notes),
    queue_(post, shell, "Decoding failed",
           {[this](std::int32_t position) { events_.progress(position); },
            [this](std::uint64_t number) { deliver(number); }})
{
}

void DecodeJobs::deliver(std::uint64_t number)
{
    struct Delivery {
        DecodeJobs& jobs;
        ~Delivery() { jobs.delivered_ = 0; }
    };
    const Delivery ended{*this};
    --unfinished_;
    delivered_ = number;
    events_.done();
}

std::int16_t DecodeJobs::open(const Text& input, const Text& output)
{
    auto job = files::answerOfFile<Decoding>(input, [output](const Text& path) {
        return Decoding{0, path, output, isMp3(path) && !files::isSameFile(path, output)};
    });
    job_ = std::move(job).value_or(Decoding{0, input, output, false});
    job_.number = ++opened_;
    return job_.isOpen ? 0 : 1;
}

// Also what could not be opened is tried: the reason may have passed, and `done` must come.
void DecodeJobs::start()
{
    ++unfinished_;
    queue_.add({job_.number, job_.input,
                [input = job_.input, output = job_.output, &notes = notes_](const Report& report,
                                                                            const std::stop_token& stop) {
                    decodeFile(input, output, coreCount(), report, stop, notes);
                }});
}

void DecodeJobs::close()
{
    if (delivered_ == 0 || delivered_ == job_.number)
        job_ = {};
}

}
