// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/audio/cubeb_device.h"

#include "engines/audio/cubeb_client.h"
#include "engines/audio/thread_priority.h"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace audio
{

using namespace std::chrono_literals;

namespace
{

constexpr auto patienceAtExit = 500ms;

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
    void serve(CubebClient& client);
    bool waitForMore(const CubebClient& client); // false: it is time to leave
    bool hasMore() const { return quitting || !requests.empty(); }
};

void CubebDevice::Control::serve(CubebClient& client)
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

bool CubebDevice::Control::waitForMore(const CubebClient& client)
{
    std::unique_lock lock(mutex);
    changed.wait_until(lock, client.nextLook(), [this] { return hasMore(); });
    return !quitting;
}

void CubebDevice::Control::run()
{
    putBeforeOtherWork();
    {
        CubebClient client;
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

void CubebDevice::open(std::shared_ptr<Stream> stream) { ask(std::move(stream), true); }

void CubebDevice::close(std::shared_ptr<Stream> stream) { ask(std::move(stream), false); }

}
