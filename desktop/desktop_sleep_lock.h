// SPDX-License-Identifier: GPL-3.0-or-later
// The sleep lock that a desktop gives: the login manager's (org.freedesktop.login1), or else the portal's
// (org.freedesktop.portal.Inhibit). Asked for by a thread of its own.
#pragma once

#include "platform/sleep_lock.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace desktop
{

class DesktopSleepLock final : public SleepLock
{
public:
    // Addresses of the buses; "" for one that there is not. Nothing is connected before the first `begin`.
    DesktopSleepLock(Text systemBus, Text sessionBus) :
        systemBus_(std::move(systemBus)), sessionBus_(std::move(sessionBus))
    {
    }
    ~DesktopSleepLock() override; // lets the system sleep

    void begin(const Text& reason) override;
    void end() override;

private:
    void keepStep();

    Text systemBus_;
    Text sessionBus_;
    std::mutex mutex_;
    std::condition_variable changed_;
    int wanted_ = 0;
    Text reason_;
    bool ending_ = false;
    std::thread asker_;
};

}
