// SPDX-License-Identifier: GPL-3.0-or-later
#include "modules/sound/cubeb_client.h"

#include "engines/audio/thread_priority.h"

#include <algorithm>
#include <cubeb/cubeb.h>
#include <string_view>
#include <thread>

namespace audio
{

using namespace std::chrono_literals;

namespace
{

// A new level must be heard at once, and a busy machine must not leave gaps: this is as much as the one
// allows, and enough for the other.
constexpr int latencyMilliseconds = 55;

// Never a short count: it would end the stream before its last sound is heard.
long giveSound(cubeb_stream*, void* stream, const void*, void* samples, long frames)
{
    const bool goesOn = static_cast<Stream*>(stream)->write(static_cast<std::int16_t*>(samples),
                                                            static_cast<std::size_t>(frames));
    if (!goesOn)
        return CUBEB_ERROR;
    return frames;
}

void noteState(cubeb_stream*, void* stream, cubeb_state state)
{
    if (state == CUBEB_STATE_ERROR)
        static_cast<Stream*>(stream)->fail();
}

bool isAlive(cubeb_stream* handle)
{
    std::uint64_t frames = 0;
    for (int time = 0; time < 5; ++time) {
        if (cubeb_stream_get_position(handle, &frames) == CUBEB_OK)
            return true;
        std::this_thread::sleep_for(5ms);
    }
    return false;
}

// The library ends the process when a PulseAudio server dies while a stream is being started: it goes on to
// ask how much room there is for the first sound. It does not ask for a stream that was stopped meanwhile.
void noteStateOnPulse(cubeb_stream* handle, void* stream, cubeb_state state)
{
    noteState(handle, stream, state);
    if (state != CUBEB_STATE_STARTED || isAlive(handle))
        return;
    cubeb_stream_stop(handle);
    static_cast<Stream*>(stream)->fail();
}

}

CubebClient::~CubebClient()
{
    while (!playing_.empty())
        close(playing_.back().stream);
    leave();
}

void CubebClient::leave()
{
    if (context_ != nullptr)
        cubeb_destroy(context_);
    context_ = nullptr;
}

bool CubebClient::start(Playing& playing)
{
    putBeforeOtherWork();
    if (context_ == nullptr && cubeb_init(&context_, "Velmora", nullptr) != CUBEB_OK)
        return false;
    cubeb_stream_params params{};
    params.format = CUBEB_SAMPLE_S16NE;
    params.rate = static_cast<std::uint32_t>(playing.stream->rate());
    params.channels = 2;
    params.layout = CUBEB_LAYOUT_STEREO;
    params.prefs = CUBEB_STREAM_PREF_NONE;
    const bool isPulse = std::string_view(cubeb_get_backend_id(context_)) == "pulse";
    const std::uint32_t latency = params.rate * latencyMilliseconds / 1000;
    if (cubeb_stream_init(context_, &playing.handle, "Velmora", nullptr, nullptr, nullptr, &params, latency,
                          giveSound, isPulse ? noteStateOnPulse : noteState,
                          playing.stream.get()) != CUBEB_OK)
        return false;
    if (cubeb_stream_start(playing.handle) == CUBEB_OK)
        return true;
    cubeb_stream_destroy(playing.handle);
    return false;
}

void CubebClient::open(std::shared_ptr<Stream> stream)
{
    Playing playing{std::move(stream)};
    if (start(playing)) {
        playing_.push_back(std::move(playing));
        return;
    }
    playing.stream->fail();
    // A new start asks anew which kinds of server there are, the best first.
    if (playing_.empty())
        leave();
}

void CubebClient::close(const std::shared_ptr<Stream>& stream)
{
    const auto found = std::ranges::find(playing_, stream, &Playing::stream);
    if (found == playing_.end())
        return;
    cubeb_stream_stop(found->handle);
    // What the library has asked its own thread to do with a stream just started must be done before it goes;
    // a server that lives is waited for by the stop.
    if (stream->hasFailed())
        std::this_thread::sleep_for(10ms);
    cubeb_stream_destroy(found->handle);
    playing_.erase(found);
}

void CubebClient::look()
{
    for (const auto& playing : playing_) {
        std::uint64_t frames = 0;
        if (cubeb_stream_get_position(playing.handle, &frames) == CUBEB_OK)
            playing.stream->heard(static_cast<std::int64_t>(frames), Stream::Clock::now());
    }
}

Stream::Clock::time_point CubebClient::nextLook() const
{
    auto next = Stream::Clock::time_point::max();
    for (const auto& playing : playing_)
        next = std::min(next, playing.stream->nextLook(Stream::Clock::now()));
    return next;
}

}
