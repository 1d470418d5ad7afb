// SPDX-License-Identifier: GPL-3.0-or-later
// The filter of a file dialog: name, vertical bar, pattern, and so on.
#pragma once

#include "platform/text.h"

#include <vector>

namespace desktop
{

struct DialogFilter {
    Text name;
    Text pattern;
};

// A name without a pattern at the end is left out.
std::vector<DialogFilter> dialogFilters(const Text& filter);

}
