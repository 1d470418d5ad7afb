// SPDX-License-Identifier: GPL-3.0-or-later
// The sleep lock that a desktop gives: the login manager's (org.freedesktop.login1), or else the portal's
// (org.freedesktop.portal.Inhibit). Asked for by a thread of its own.
#pragma once

#include "platform/sleep_lock.h"
#include "platform/worker.h"

namespace desktop
{

class DesktopSleepLock final : public SleepLock
{
public:
    // Addresses of the buses; "" for one that there is not. Nothing is connected before the first `begin`.
    DesktopSleepLock(const Text& systemBus, const Text& sessionBus);
    ~DesktopSleepLock() override; // lets the system sleep

    void begin(const Text& reason) override;
    void end() override;

private:
    struct Asker;

    void keepStep();

    std::shared_ptr<Asker> asker_;
    Worker worker_{Worker::AtEnd::abandons};
};

}
