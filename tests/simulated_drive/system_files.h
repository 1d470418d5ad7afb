// SPDX-License-Identifier: GPL-3.0-or-later
// The files in which the system tells of its drives, as they would read with the simulated ones.
#pragma once

#include <optional>
#include <string>

namespace simulated
{

// Nothing for every path that is no such file.
std::optional<std::string> systemFile(const char* path);

}
