// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop's notifications (org.freedesktop.Notifications), sent by a thread of their own.
#pragma once

#include "platform/text.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace desktop
{

// Shows one, and waits for the desktop's answer: some seconds at most. False where it does not take it.
bool isNotified(const Text& busAddress, const Text& title, const Text& message);

class Notifications
{
public:
    // An address of the session bus, as DBUS_SESSION_BUS_ADDRESS gives it; "" when there is none. Nothing is
    // connected before the first notification.
    explicit Notifications(Text busAddress) : busAddress_(std::move(busAddress)) {}
    ~Notifications(); // delivers what is waiting, or says it on standard error

    // From any thread; never waits. What the desktop does not take goes to standard error.
    void post(const Text& title, const Text& message);

private:
    struct Notification {
        Text title;
        Text message;
    };

    bool next(Notification& notification);
    bool isEnding();
    void deliverAll();

    Text busAddress_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Notification> waiting_;
    bool ending_ = false;
    std::thread deliverer_;
};

}
