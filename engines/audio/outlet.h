// SPDX-License-Identifier: GPL-3.0-or-later
// A failover sink, one engine's way to the listener: the sound server, and a silent clock where there is
// none, or none that answers. The server is tried again from time to time.
#pragma once

#include "engines/audio/silent_clock.h"
#include "engines/audio/sound_output.h"

#include <memory>
#include <optional>

namespace audio
{

class Outlet
{
public:
    using TimePoint = Stream::Clock::time_point;

    // `bell` rings when `turn` has something to find.
    Outlet(SoundOutput& output, std::shared_ptr<Bell> bell) : output_(output), bell_(std::move(bell)) {}
    ~Outlet();

    // The stream that sounds; nullptr when the way is closed.
    const std::shared_ptr<Stream>& stream() const { return stream_; }

    // The stream for that rate: the present one, the one released last, or a new one, which sounds after
    // `start`.
    std::shared_ptr<Stream> streamFor(int rate);
    void start();

    void close();   // at once, with what is still unheard
    void release(); // and what is under way will be heard

    // Keeps things going. True when another stream has taken over: what the old one had is lost.
    bool turn(TimePoint now);

    TimePoint nextTurn(TimePoint now) const;

private:
    bool isLost(TimePoint now) const;
    bool isBack() const;
    void standIn(TimePoint now);
    void comeBack();
    void tryServer(TimePoint now);
    std::shared_ptr<Stream> newStream(int rate) const;
    std::shared_ptr<Stream> takeBack();
    void drop(std::shared_ptr<Stream>& stream);

    SoundOutput& output_;
    std::shared_ptr<Bell> bell_;
    std::shared_ptr<Stream> stream_;
    bool started_ = false;
    std::optional<SilentClock> clock_;  // while it drives `stream_`
    std::shared_ptr<Stream> candidate_; // on the server, silent, while the clock drives
    TimePoint nextTry_;
    std::shared_ptr<Stream> released_;
    TimePoint releasedUntil_;
};

}
