// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/text.h"

#include <cstdlib>

// Empty for one that is not set, too.
inline Text environmentVariable(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}
