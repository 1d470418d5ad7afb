// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop's notifications (org.freedesktop.Notifications), sent by a thread of their own.
#pragma once

#include "platform/text.h"
#include "platform/worker.h"

namespace desktop
{

// Shows one, and waits for the desktop's answer: some seconds at most. False where it does not take it.
bool isNotified(const Text& busAddress, const Text& title, const Text& message);

class Notifications
{
public:
    // An address of the session bus, as DBUS_SESSION_BUS_ADDRESS gives it; "" when there is none. Nothing is
    // connected before the first notification.
    explicit Notifications(const Text& busAddress);

    // What is not delivered as soon as nobody notices goes to standard error.
    ~Notifications();

    // From any thread; never waits. What the desktop does not take goes to standard error.
    void post(const Text& title, const Text& message);

private:
    struct Outbox;

    std::shared_ptr<Outbox> outbox_;
    Worker worker_{Worker::AtEnd::abandons};
};

}
