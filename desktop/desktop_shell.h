// SPDX-License-Identifier: GPL-3.0-or-later
// The desktop around the program: other programs, and notifications over the session bus.
#pragma once

#include "desktop/notifications.h"
#include "desktop/places.h"
#include "platform/shell.h"

#include <sys/resource.h>

#include <optional>

namespace desktop
{

class DesktopShell final : public Shell
{
public:
    // `stackLimit` is the soft limit of the stack that started programs get.
    explicit DesktopShell(const Environment& environment, std::optional<rlim_t> stackLimit = std::nullopt);

    // A path that is a file is started as it is; otherwise its words are a program, by path or looked for in
    // the search path, and arguments.
    void startProgram(const Text& path) override;

    void notify(const Text& title, const Text& message) override;

private:
    Text searchPath_;
    std::optional<rlim_t> stackLimit_;
    Notifications notifications_;
};

// The session bus that runs; "" when there is none. Never one that a library would start on its own account.
Text sessionBusAddress(const Environment& environment);

// The system bus: the one that is named, or where every system has it (D-Bus, "Well-known Message Bus
// Instances").
Text systemBusAddress(const Environment& environment);

}
