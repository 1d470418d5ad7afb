// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/outlet.h"

#include <algorithm>

namespace audio
{

using namespace std::chrono_literals;

namespace
{

constexpr auto patience = 2s;    // with a server that gives no sign
constexpr auto tryAgain = 1s;    // a server that was lost
constexpr auto probation = 60ms; // that a server must sound steadily before it is trusted again

// The sound server counts what its own buffers hold only roughly, so a stream stays open a little longer.
constexpr auto linger = 200ms;

}

Outlet::~Outlet()
{
    close();
    drop(released_);
}

std::shared_ptr<Stream> Outlet::newStream(int rate) const
{
    return std::make_shared<Stream>(output_.sharedLevels(), bell_, rate);
}

void Outlet::drop(std::shared_ptr<Stream>& stream)
{
    if (stream == nullptr)
        return;
    stream->attach(nullptr);
    output_.device().close(stream);
    stream = nullptr;
}

std::shared_ptr<Stream> Outlet::streamFor(int rate)
{
    if (stream_ != nullptr && stream_->rate() == rate)
        return stream_;
    close();
    if (released_ != nullptr && released_->rate() == rate && !released_->hasFailed())
        return takeBack();
    drop(released_); // an output that takes a single stream must be free first
    stream_ = newStream(rate);
    return stream_;
}

// Its last sound may be on its way still; the next follows behind it.
std::shared_ptr<Stream> Outlet::takeBack()
{
    stream_ = std::move(released_);
    started_ = true;
    return stream_;
}

void Outlet::start()
{
    if (started_)
        return;
    started_ = true;
    output_.device().open(stream_);
}

void Outlet::close()
{
    drop(candidate_);
    if (!clock_)
        drop(stream_);
    clock_.reset();
    stream_ = nullptr;
    started_ = false;
}

void Outlet::release()
{
    drop(released_);
    if (!clock_) {
        released_ = std::move(stream_);
        releasedUntil_ = Stream::Clock::now() + linger;
        released_->setFlowing(false);
        released_->attach(nullptr);
    }
    close();
}

bool Outlet::isLost(TimePoint now) const
{
    return stream_->hasFailed() || now - stream_->lastSign() > patience;
}

bool Outlet::isBack() const
{
    return candidate_ != nullptr && !candidate_->hasFailed() && candidate_->heardTime() > probation;
}

void Outlet::standIn(TimePoint now)
{
    const int rate = stream_->rate();
    drop(stream_);
    stream_ = newStream(rate);
    clock_.emplace(stream_);
    nextTry_ = now + tryAgain;
}

void Outlet::comeBack()
{
    clock_.reset();
    stream_ = std::move(candidate_);
}

void Outlet::tryServer(TimePoint now)
{
    if (candidate_ != nullptr && candidate_->hasFailed())
        drop(candidate_);
    if (candidate_ != nullptr || now < nextTry_)
        return;
    nextTry_ = now + tryAgain;
    candidate_ = newStream(stream_->rate());
    output_.device().open(candidate_);
}

bool Outlet::turn(TimePoint now)
{
    if (released_ != nullptr && now >= releasedUntil_)
        drop(released_);
    if (stream_ == nullptr)
        return false;
    if (!clock_) {
        if (!isLost(now))
            return false;
        standIn(now);
        return true;
    }
    clock_->advance(now);
    tryServer(now);
    if (!isBack())
        return false;
    comeBack();
    return true;
}

Outlet::TimePoint Outlet::nextTurn(TimePoint now) const
{
    TimePoint next = TimePoint::max();
    if (released_ != nullptr)
        next = releasedUntil_;
    if (clock_)
        next = std::min(next, clock_->nextAdvance(now));
    return next;
}

}
