// SPDX-License-Identifier: GPL-3.0-or-later
// A case that this machine cannot run. It says so, and is not counted as passed.
#pragma once

#include <string>

// `why` follows the name of the running case in what is printed. The case returns then. Defined in
// test_main.cpp.
void skipCase(const std::string& why);
