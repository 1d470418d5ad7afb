#include "platform/audio/cubeb_device.h"

#include "platform/audio/thread_priority.h"

#include <algorithm>
#include <condition_variable>
#include <cubeb/cubeb.h>
#include <deque>
#include <mutex>
#include <vector>

using namespace std::chrono_literals;

namespace
{

// Under four busy programs on two cores 30 ms had no gap, 20 ms had.
constexpr int latencyMilliseconds = 40;

constexpr auto patienceAtExit = 500ms;

long giveSound(cubeb_stream*, void* stream, const void*, void* samples, long frames)
{
    static_cast<Stream*>(stream)->write(static_cast<std::int16_t*>(samples),
                                        static_cast<std::size_t>(frames));
    return frames; // always all: a short count would end the stream before its last sound is heard
}

void noteState(cubeb_stream*, void* stream, cubeb_state state)
{
    if (state == CUBEB_STATE_ERROR)
        static_cast<Stream*>(stream)->fail();
}

struct Playing {
    std::shared_ptr<Stream> stream;
    cubeb_stream* handle = nullptr;
};

// The server's client. Any call may block.
class Client
{
public:
    ~Client();

    void open(std::shared_ptr<Stream> stream);
    void close(const std::shared_ptr<Stream>& stream);
    void look(); // where the streams are

    Stream::Clock::time_point nextLook() const;

private:
    bool start(Playing& playing);
    void leave();

    cubeb* context_ = nullptr;
    std::vector<Playing> playing_;
};

Client::~Client()
{
    while (!playing_.empty())
        close(playing_.back().stream);
    leave();
}

void Client::leave()
{
    if (context_ != nullptr)
        cubeb_destroy(context_);
    context_ = nullptr;
}

bool Client::start(Playing& playing)
{
    if (context_ == nullptr && cubeb_init(&context_, "Velmora", nullptr) != CUBEB_OK)
        return false;
    cubeb_stream_params params{};
    params.format = CUBEB_SAMPLE_S16NE;
    params.rate = static_cast<std::uint32_t>(playing.stream->rate());
    params.channels = 2;
    params.layout = CUBEB_LAYOUT_STEREO;
    params.prefs = CUBEB_STREAM_PREF_NONE;
    const std::uint32_t latency = params.rate * latencyMilliseconds / 1000;
    if (cubeb_stream_init(context_, &playing.handle, "Velmora", nullptr, nullptr, nullptr, &params, latency,
                          giveSound, noteState, playing.stream.get()) != CUBEB_OK)
        return false;
    if (cubeb_stream_start(playing.handle) == CUBEB_OK)
        return true;
    cubeb_stream_destroy(playing.handle);
    return false;
}

void Client::open(std::shared_ptr<Stream> stream)
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

void Client::close(const std::shared_ptr<Stream>& stream)
{
    const auto found = std::ranges::find(playing_, stream, &Playing::stream);
    if (found == playing_.end())
        return;
    cubeb_stream_stop(found->handle);
    cubeb_stream_destroy(found->handle);
    playing_.erase(found);
}

void Client::look()
{
    for (const auto& playing : playing_) {
        std::uint64_t frames = 0;
        if (cubeb_stream_get_position(playing.handle, &frames) == CUBEB_OK)
            playing.stream->heard(static_cast<std::int64_t>(frames), Stream::Clock::now());
    }
}

Stream::Clock::time_point Client::nextLook() const
{
    auto next = Stream::Clock::time_point::max();
    for (const auto& playing : playing_)
        next = std::min(next, playing.stream->nextLook(Stream::Clock::now()));
    return next;
}

}

// What the two sides share.
struct CubebDevice::Control {
    struct Request {
        std::shared_ptr<Stream> stream;
        bool open;
    };

    std::mutex mutex; // never held in a call of the client
    std::condition_variable changed;
    std::deque<Request> requests;
    bool quitting = false;
    bool finished = false;

    void run();
    void serve(Client& client);
    bool waitForMore(const Client& client); // false: it is time to leave
    bool hasMore() const { return quitting || !requests.empty(); }
};

void CubebDevice::Control::serve(Client& client)
{
    std::unique_lock lock(mutex);
    while (!requests.empty()) {
        const Request request = std::move(requests.front());
        requests.pop_front();
        lock.unlock();
        if (request.open)
            client.open(request.stream);
        else
            client.close(request.stream);
        lock.lock();
    }
}

bool CubebDevice::Control::waitForMore(const Client& client)
{
    std::unique_lock lock(mutex);
    changed.wait_until(lock, client.nextLook(), [this] { return hasMore(); });
    return !quitting;
}

void CubebDevice::Control::run()
{
    putBeforeOtherWork();
    {
        Client client;
        do {
            serve(client);
            client.look();
        } while (waitForMore(client));
    }
    const std::lock_guard lock(mutex);
    finished = true;
    changed.notify_all();
}

CubebDevice::CubebDevice() : control_(std::make_shared<Control>()) {}

CubebDevice::~CubebDevice()
{
    if (!thread_.joinable())
        return;
    std::unique_lock lock(control_->mutex);
    control_->quitting = true;
    control_->changed.notify_all();
    const bool finished =
        control_->changed.wait_for(lock, patienceAtExit, [this] { return control_->finished; });
    lock.unlock();
    if (finished)
        thread_.join();
    else
        thread_.detach();
}

void CubebDevice::ask(std::shared_ptr<Stream> stream, bool open)
{
    const std::lock_guard lock(control_->mutex);
    control_->requests.push_back({std::move(stream), open});
    control_->changed.notify_all();
    if (!thread_.joinable())
        thread_ = std::thread([control = control_] { control->run(); });
}

void CubebDevice::open(std::shared_ptr<Stream> stream)
{
    ask(std::move(stream), true);
}

void CubebDevice::close(std::shared_ptr<Stream> stream)
{
    ask(std::move(stream), false);
}
