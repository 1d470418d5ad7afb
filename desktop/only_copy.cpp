// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/only_copy.h"

#include "desktop/desktop_shell.h"
#include "desktop/notifications.h"
#include "desktop/second_start.h"
#include "files/errand.h"

#include <iostream>
#include <string>

namespace desktop
{

using namespace std::chrono_literals;

namespace
{

constexpr int noAnswerStatus = 1;

// The desktop itself may be what does not answer.
constexpr auto tellingTime = 2s;

[[noreturn]] void endUnanswered(pid_t first, const Text& busAddress)
{
    const Text message = "Velmora is running and does not answer: end it (process " + std::to_string(first) +
                         "), and start it again.";
    std::cerr << message << std::endl;
    files::Errand<bool>([=] { return isNotified(busAddress, "Velmora", message); }).result(tellingTime);
    _exit(noAnswerStatus);
}

}

// The other copy may be ending at this moment, or may have ended since it was asked.
OnlyCopy::OnlyCopy(const Environment& environment) : lock_(environment)
{
    if (lock_->holder() == 0)
        return;
    const Text busAddress = sessionBusAddress(environment);
    if (isAnsweredBy(lock_->holder(), busAddress))
        _exit(0);
    lock_.reset();
    lock_.emplace(environment);
    if (lock_->holder() != 0)
        endUnanswered(lock_->holder(), busAddress);
}

}
