// SPDX-License-Identifier: GPL-3.0-or-later
// The optical drives of this computer, as the system lists them. None is touched: a drive may be in use, or
// hang.
#pragma once

#include "platform/text.h"

#include <vector>

namespace disc
{

struct OpticalDevice {
    Text path;            // "/dev/sr0"
    Text name;            // "Vendor Model (/dev/sr0)"
    bool records = false; // CD-R

    bool operator==(const OpticalDevice&) const = default;
};

// In the order of their numbers, each once, whatever other names it has.
std::vector<OpticalDevice> opticalDevices();

// The drives that the text of /proc/sys/dev/cdrom/info lists, by the names of their nodes in /dev.
struct ListedDrive {
    Text node;
    bool records = false;

    bool operator==(const ListedDrive&) const = default;
};
std::vector<ListedDrive> drivesIn(std::string_view cdromInfo);

}
