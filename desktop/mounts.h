// SPDX-License-Identifier: GPL-3.0-or-later
// The table of mounts, as proc(5) gives it in `mountinfo`.
#pragma once

#include "platform/text.h"

#include <string_view>
#include <vector>

namespace desktop
{

struct Mount {
    Text device; // major:minor
    Text folder;
    Text type;
    Text source; // a device, a share, or a mere word
};

// In the order of mounting, so that of two at one folder the later hides the earlier. Lines of another form
// are left out.
std::vector<Mount> mountsIn(std::string_view table);

// The device that `path` lies on; "" when no mount holds it.
Text deviceOf(const std::vector<Mount>& mounts, std::string_view path);

// Whether `path` is `folder` or lies in it.
bool liesIn(std::string_view path, std::string_view folder);

}
