// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/disc_writing.h"

#include "platform/out_of_memory.h"

namespace disc
{

namespace
{

constexpr std::int16_t whole = 100;
constexpr std::int16_t finished = 0;
constexpr std::int16_t failed = 1;

}

DiscWriting::DiscWriting(WritingJob job, Shell& shell, SleepLock& sleepLock, WritingEvents events) :
    job_(std::move(job)), shell_(shell), sleepLock_(sleepLock), events_(std::move(events)),
    writing_([this](const std::stop_token& stop) { run(stop); })
{
}

void DiscWriting::run(const std::stop_token& stop)
{
    sleepLock_.begin("Writing a disc");
    const bool isWritten = write(stop);
    job_.reset();
    sleepLock_.end();
    persisting([&] { events_.done(isWritten ? finished : failed); });
}

bool DiscWriting::write(const std::stop_token& stop)
{
    const auto tell = [&](std::string_view reason) {
        if (!stop.stop_requested())
            shell_.notify("The disc could not be written", Text(reason));
    };
    return toldInWords(tell, [&] {
        job_->run->write([this](std::int16_t percent) { report(percent); }, stop);
        report(whole);
    });
}

void DiscWriting::report(std::int16_t percent)
{
    if (percent <= reported_ || percent > whole)
        return;
    reported_ = percent;
    events_.progress(percent);
}

}
